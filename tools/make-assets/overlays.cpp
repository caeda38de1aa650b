// Flat overlays laid on the board: the soft shadow under each piece and the three field
// markers.
//
// The shadow is drawn with destination x source colour, so its image is a multiplier:
// white leaves the board alone and grey darkens it. Its material is white, which under
// the light from above is at full brightness, so the image's grey is what the board gets.
//
// Markers are drawn with source x source alpha + destination x destination: the square
// under a marker enters squared, a little darker, and the marker adds its image's colour
// scaled by its material's alpha. Their images are black where they add nothing.

#include <algorithm>
#include <cmath>
#include <string>

#include "assets.h"
#include "image.h"
#include "noise.h"
#include "xfile.h"

namespace makeassets {

namespace {

// A flat square at height y, centred on the origin, facing up, with the whole image on it.
MeshBuilder flatSquare(double side, double y) {
  MeshBuilder mesh;
  const double h = side / 2;
  std::vector<uint32_t> corners;
  for (auto [sx, sz] : {std::pair{-1, -1}, {-1, 1}, {1, 1}, {1, -1}}) {
    Vertex v;
    v.pos = {sx * h, y, sz * h};
    v.normal = {0, 1, 0};
    v.u = (sx + 1) / 2.0;
    v.v = (1 - sz) / 2.0;
    corners.push_back(mesh.add(v));
  }
  mesh.face(corners);  // clockwise from above: (-,-) (-,+) (+,+) (+,-)
  return mesh;
}

// In world units.
constexpr double kShadowSide = 1.10;
constexpr double kShadowLift = 0.0003;  // above the surface, below the lowest marker
constexpr double kMarkerSide = 0.96;

}  // namespace

bool writeShadow(const std::string& dir) {
  const double y = (scene::kSurface + kShadowLift - scene::kShadowHeight) / scene::kShadowScale;
  const MeshBuilder mesh = flatSquare(kShadowSide / scene::kShadowScale, y);
  const Material m{"Shadow", {1, 1, 1, 1}, 0, {0, 0, 0}, {0, 0, 0}, "shadow2.png"};
  if (!writeX(dir + "/shadow.x", "Shadow", mesh, {m})) return false;

  // A disc's soft shadow: nearly flat in the middle, falling off smoothly, and fully
  // white well before the edge of the square so that the quad's outline never shows.
  Image image(128, 128);
  image.paint(3, [](double u, double v) {
    const double r = std::hypot(u - 0.5, v - 0.5) * kShadowSide;  // world units
    const double core = std::exp(-std::log(2.0) * std::pow(r / 0.46, 5.0));
    const double fade = 1 - smoothstep(0.45, 0.535, r);
    const double dark = 0.50 * core * fade;
    return Rgb{1 - dark, 1 - dark * 1.02, 1 - dark * 1.05};
  });
  return image.writePng(dir + "/shadow2.png");
}

namespace {

struct MarkerStyle {
  const char* model;
  const char* image;
  const char* name;
  Rgb colour;
  double alpha;  // material alpha: how strongly the image adds
  double fill;   // glow over the middle of the field
  double dot;    // a round spot in the middle
  bool corners;  // frame only at the corners
};

// Distance to the border of a rounded square of half size `half` and corner radius `rad`,
// negative inside.
double roundedBox(double x, double y, double half, double rad) {
  const double qx = std::abs(x) - (half - rad), qy = std::abs(y) - (half - rad);
  const double ox = std::max(qx, 0.0), oy = std::max(qy, 0.0);
  return std::hypot(ox, oy) + std::min(std::max(qx, qy), 0.0) - rad;
}

Image markerImage(const MarkerStyle& style) {
  Image image(128, 128);
  image.paint(3, [&](double u, double v) {
    // Quad-relative coordinates, -0.5 .. 0.5.
    const double x = u - 0.5, y = v - 0.5;
    const double d = roundedBox(x, y, 0.445, 0.09);  // the frame's centre line
    double frame = 1 - smoothstep(0.028, 0.040, std::abs(d));
    if (style.corners) {
      // Brackets: keep the frame near the corners and open the middle of each side.
      const double along = std::min(std::abs(x), std::abs(y));
      frame *= smoothstep(0.16, 0.22, along);
    }
    // A glow that runs inward from the frame.
    const double inside = std::max(-d, 0.0);
    const double glow = d < 0 ? 0.45 * std::exp(-inside / 0.06) : 0.0;
    const double spot = style.dot * (1 - smoothstep(0.09, 0.12, std::hypot(x, y)));
    const double body = d < 0.03 ? style.fill : 0.0;
    const double k = std::min(1.0, frame + glow * (style.corners ? 0.6 : 1.0) + spot + body);
    return style.colour * k;
  });
  return image;
}

}  // namespace

bool writeMarkers(const std::string& dir) {
  const MarkerStyle styles[] = {
      // Under a carried piece: the field it would land on.
      {"hl.x", "hl.png", "HoverMarker", {0.30, 1.00, 0.35}, 0.95, 0.16, 0.0, false},
      // Where a picked-up piece may go, and fields that the host points out.
      {"hl2.x", "hl2.png", "TargetMarker", {1.00, 0.82, 0.25}, 0.85, 0.06, 0.55, false},
      // The last move's destination.
      {"hl3.x", "hl3.png", "LastMoveMarker", {1.00, 0.42, 0.12}, 0.90, 0.05, 0.0, true},
  };
  for (const MarkerStyle& s : styles) {
    const MeshBuilder mesh = flatSquare(kMarkerSide, 0);
    const Material m{s.name, {1, 1, 1, s.alpha}, 0, {0, 0, 0}, {0, 0, 0}, s.image};
    if (!writeX(dir + "/" + s.model, s.name, mesh, {m})) return false;
    if (!markerImage(s).writePng(dir + "/" + s.image)) return false;
  }
  return true;
}

}  // namespace makeassets
