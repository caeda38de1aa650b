// The pieces: a turned disc with a recessed top, a raised rounded rim and grooves round
// its side. A man is one disc, a king two stacked, so the disc is exactly one height step
// tall and its bottom edge is rounded too: two stacked discs show a notch between them.
//
// The control scales the model by 0.23 about its origin and stands it on the surface,
// so the model is built in world units and divided by that factor at the end. Its bottom
// is at y = 0.
//
// Texture coordinates unroll the turned profile onto a disc of the image: the centre of
// the top is the image's centre, and the arc length along the profile, over the rim and
// down the side, grows outward. The image's rings therefore line up with the geometry's.

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "assets.h"
#include "image.h"
#include "noise.h"
#include "xfile.h"

namespace makeassets {

namespace {

constexpr double kRadius = 0.4175;            // 0.835 across: fits a square with room
constexpr double kHeight = scene::kDiscStep;  // two discs stack exactly
constexpr double kRecess = 0.010;             // depth of the recessed top
constexpr double kFloor = 0.22;               // radius of the recessed floor
constexpr double kCrestIn = 0.29;             // the raised rim's flat top
constexpr double kCrestOut = 0.335;
constexpr double kShoulder = 0.055;  // height of the rim's rounding
constexpr double kFoot = 0.04;       // height of the bottom rounding
constexpr double kFootIn = 0.03;     // how far the bottom rounding comes in
constexpr double kGrooveDepth = 0.007;
constexpr double kGrooveHalfWidth = 0.009;
constexpr double kGrooves[] = {0.078, 0.117};
constexpr int kSegments = 24;        // round enough with smooth normals
constexpr double kSideRho = 0.94;    // image radius at the end of the profile
constexpr double kBottomRho = 0.97;  // image radius used for the flat underside
constexpr int kImageSize = 512;

struct ProfilePoint {
  double r, y;
  bool ring = true;       // false: shapes the normals and the image's arc length, but no ring
  double nr = 0, ny = 0;  // outward normal
  double s = 0;           // arc length from the top's centre
};

// The turned profile from the centre of the top, outward over the rim and down the side
// to the edge of the underside. One smooth curve: normals average the two segments at
// each point.
std::vector<ProfilePoint> profile() {
  std::vector<ProfilePoint> p;
  auto add = [&](double r, double y, bool ring = true) {
    if (!p.empty() && std::hypot(r - p.back().r, y - p.back().y) < 1e-9) return;
    p.push_back({r, y, ring});
  };
  // Only the rings that the silhouette and the shading need: the flat floor is one fan, the
  // cove one band, the rim's rounding two; the points between them only bend the normals.
  const double floorY = kHeight - kRecess;
  add(0, floorY);
  add(kFloor * 0.85, floorY, false);
  add(kFloor, floorY);
  // The cove rising from the floor to the rim.
  for (int i = 1; i <= 2; ++i) {
    const double t = static_cast<double>(i) / 2;
    add(kFloor + (kCrestIn - kFloor) * t, floorY + kRecess * (0.5 - 0.5 * std::cos(M_PI * t)),
        false);
  }
  add(kCrestOut, kHeight);
  // The rim rounds over into the side: a quarter ellipse.
  const double a = kRadius - kCrestOut, b = kShoulder;
  for (int i = 1; i <= 3; ++i) {
    const double phi = (M_PI / 2) * i / 3;
    add(kCrestOut + a * std::sin(phi), kHeight - b + b * std::cos(phi), i != 1);
  }
  // The side, downward: straight but for its grooves, each a cosine dip.
  std::vector<double> ys{kHeight - kShoulder, kFoot};
  for (double c : kGrooves) {
    for (int i = -1; i <= 1; ++i) ys.push_back(c + kGrooveHalfWidth * i);
  }
  std::sort(ys.begin(), ys.end(), [](double l, double r) { return l > r; });
  for (double y : ys) {
    double r = kRadius;
    for (double c : kGrooves) {
      const double d = std::abs(y - c);
      if (d < kGrooveHalfWidth) {
        r -= kGrooveDepth * (0.5 + 0.5 * std::cos(M_PI * d / kGrooveHalfWidth));
      }
    }
    add(r, y);
  }
  // The foot rounds in to the flat underside.
  for (int i = 1; i <= 2; ++i) {
    const double phi = (M_PI / 2) * i / 2;
    add(kRadius - kFootIn + kFootIn * std::cos(phi), kFoot - kFoot * std::sin(phi));
  }

  for (size_t i = 0; i < p.size(); ++i) {
    // Outward normal of a segment: the direction of travel (dr, dy), which runs outward
    // over the top and down the side, turned a quarter toward the outside: (-dy, dr).
    auto segmentNormal = [&](size_t from) {
      const double dr = p[from + 1].r - p[from].r, dy = p[from + 1].y - p[from].y;
      const double len = std::hypot(dr, dy);
      return std::pair{-dy / len, dr / len};
    };
    double nr = 0, ny = 0;
    if (i > 0) {
      auto [r, y] = segmentNormal(i - 1);
      nr += r;
      ny += y;
    }
    if (i + 1 < p.size()) {
      auto [r, y] = segmentNormal(i);
      nr += r;
      ny += y;
    }
    const double len = std::hypot(nr, ny);
    p[i].nr = nr / len;
    p[i].ny = ny / len;
    if (i > 0) p[i].s = p[i - 1].s + std::hypot(p[i].r - p[i - 1].r, p[i].y - p[i - 1].y);
  }
  return p;
}

MeshBuilder discMesh(const std::vector<ProfilePoint>& prof) {
  const double scale = 1.0 / scene::kPieceScale;
  const double total = prof.back().s;
  MeshBuilder mesh;
  std::vector<std::vector<uint32_t>> rings;
  for (const ProfilePoint& p : prof) {
    if (!p.ring) continue;
    const double rho = kSideRho * p.s / total;
    std::vector<uint32_t> ring;
    for (int j = 0; j < kSegments; ++j) {
      const double th = 2 * M_PI * j / kSegments;
      const double c = std::cos(th), s = std::sin(th);
      Vertex v;
      v.pos = Vec3{p.r * c, p.y, p.r * s} * scale;
      v.normal = {p.nr * c, p.ny, p.nr * s};
      v.u = 0.5 + 0.5 * rho * c;
      v.v = 0.5 - 0.5 * rho * s;
      ring.push_back(mesh.add(v));
    }
    rings.push_back(ring);
  }
  for (size_t k = 0; k + 1 < rings.size(); ++k) {
    for (int j = 0; j < kSegments; ++j) {
      const int n = (j + 1) % kSegments;
      mesh.facing({rings[k][j], rings[k][n], rings[k + 1][n], rings[k + 1][j]});
    }
  }
  // The flat underside, a fan around its centre.
  Vertex centre;
  centre.normal = {0, -1, 0};
  centre.u = 0.5 + 0.5 * kBottomRho;
  centre.v = 0.5;
  std::vector<uint32_t> rim;
  for (int j = 0; j < kSegments; ++j) {
    const double th = 2 * M_PI * j / kSegments;
    Vertex v;
    v.pos = Vec3{prof.back().r * std::cos(th), 0, prof.back().r * std::sin(th)} * scale;
    v.normal = {0, -1, 0};
    v.u = 0.5 + 0.5 * kBottomRho * std::cos(th);
    v.v = 0.5 - 0.5 * kBottomRho * std::sin(th);
    rim.push_back(mesh.add(v));
  }
  for (int j = 0; j < kSegments; ++j) {
    // Each triangle gets its own centre vertex, read at the image ring beside its edge.
    const double th = 2 * M_PI * (j + 0.5) / kSegments;
    centre.u = 0.5 + 0.5 * kBottomRho * std::cos(th);
    centre.v = 0.5 - 0.5 * kBottomRho * std::sin(th);
    const uint32_t c = mesh.add(centre);
    mesh.facing({c, rim[j], rim[(j + 1) % kSegments]});
  }
  return mesh;
}

// How a colour of piece is finished.
struct Finish {
  Rgb base;        // the material itself, lit from straight above
  Rgb streak;      // its grain or veining
  double streaks;  // how much of it
  Rgb engraving;   // colour of the cut lines on the top
  Rgb sheen;       // what the polished rim adds
  uint64_t seed;
};

const Finish kIvory{{0.95, 0.91, 0.80}, {0.86, 0.80, 0.66}, 0.35,
                    {0.66, 0.55, 0.40}, {0.04, 0.04, 0.04}, 0x1F0E7ull};
const Finish kEbony{{0.135, 0.105, 0.090}, {0.24, 0.17, 0.12}, 0.45,
                    {0.44, 0.34, 0.22},    {0.10, 0.09, 0.08}, 0xEB0A7ull};

// Soft band of width `w` centred on `c`, 1 inside and 0 outside.
double ring(double x, double c, double w, double soft) {
  return smoothstep(c - w / 2 - soft, c - w / 2 + soft, x) *
         (1 - smoothstep(c + w / 2 - soft, c + w / 2 + soft, x));
}

Image pieceImage(const std::vector<ProfilePoint>& prof, const Finish& f) {
  const double total = prof.back().s;
  // Arc length of a profile point that first reaches `r` (on the top) or goes below `y`
  // (on the side): where each feature sits in the image.
  auto sAtRadius = [&](double r) {
    for (const auto& p : prof) {
      if (p.r >= r) return p.s;
    }
    return total;
  };
  // Height of the profile at arc length s.
  auto heightAt = [&](double s) {
    for (size_t i = 1; i < prof.size(); ++i) {
      if (prof[i].s >= s) {
        const double t = (s - prof[i - 1].s) / (prof[i].s - prof[i - 1].s);
        return lerp(prof[i - 1].y, prof[i].y, t);
      }
    }
    return prof.back().y;
  };
  auto sAtHeight = [&](double y) {
    for (const auto& p : prof) {
      if (p.r > kRadius - 1e-3 && p.y <= y) return p.s;
    }
    return total;
  };
  const double sFloor = sAtRadius(kFloor), sCrestIn = sAtRadius(kCrestIn),
               sCrestOut = sAtRadius(kCrestOut), sSide = sAtHeight(kHeight - kShoulder),
               sFoot = sAtHeight(kFoot);
  const Noise noise(f.seed);
  Image image(kImageSize, kImageSize);
  image.paint(3, [&](double u, double v) {
    const double dx = (u - 0.5) * 2, dy = (0.5 - v) * 2;
    const double rho = std::hypot(dx, dy);
    // Material: slow clouding and straight streaks across the whole piece.
    const double cloud = noise.fbm(u * 5, v * 5, 3);
    const double streak = smoothstep(0.05, 0.6, noise.fbm(u * 2.5 + 7, v * 28, 2));
    Rgb c = mix(f.base, f.streak, f.streaks * streak) * (1 + 0.05 * cloud);
    if (rho > kSideRho + 0.005) return c * 0.9;  // the underside
    const double s = rho / kSideRho * total;
    if (s < sFloor) {
      // The recessed top, in world units from its centre: two rings turned into the
      // surface and a polished spot in the middle, broad enough not to flicker when the
      // disc is small on the screen.
      const double r = s;
      const double soft = 0.006;
      const double cut = ring(r, 0.186, 0.024, soft) + ring(r, 0.118, 0.018, soft);
      c = mix(c, f.engraving, 0.7 * std::clamp(cut, 0.0, 1.0));
      c = c + f.sheen * (0.6 * (1 - smoothstep(0.03, 0.06, r)));
      // The floor darkens a little toward the cove.
      c = c * (1 - 0.10 * smoothstep(kFloor - 0.04, kFloor, r));
    } else if (s < sCrestIn) {
      // The cove, in the rim's shade at its foot.
      c = c * (0.86 + 0.14 * smoothstep(sFloor, sCrestIn, s));
    } else if (s < sSide) {
      // The polished rim, brightest on its flat top.
      const double top = 1 - smoothstep(sCrestOut, sSide, s);
      c = c + f.sheen * top;
    } else if (s < sFoot) {
      // The side: each groove darker in its depth, the ridges between them catch light.
      const double y = heightAt(s);
      double groove = 0;
      for (double g : kGrooves) {
        groove = std::max(groove, 1 - smoothstep(0, kGrooveHalfWidth * 1.1, std::abs(y - g)));
      }
      c = c * (1 - 0.45 * groove) + f.sheen * (0.6 * (1 - groove));
    } else {
      c = c * 0.75;  // the foot, in the shade of whatever it stands on
    }
    return c;
  });
  return image;
}

bool writePiece(const std::string& dir, const std::string& model, const std::string& texture,
                const std::string& name, const Finish& finish, const Material& material) {
  const auto prof = profile();
  Material m = material;
  m.texture = texture;
  if (!writeX(dir + "/" + model, name, discMesh(prof), {m})) return false;
  return pieceImage(prof, finish).writePng(dir + "/" + texture);
}

}  // namespace

bool writePieces(const std::string& dir) {
  // White material at full diffuse: its top shows the image as it is. The sides, which
  // face away from the light, get a little glow so that ivory stays ivory there.
  const Material ivory{"Ivory", {1, 1, 1, 1}, 0, {0, 0, 0}, {0.10, 0.10, 0.09}, ""};
  const Material ebony{"Ebony", {1, 1, 1, 1}, 0, {0, 0, 0}, {0.18, 0.17, 0.16}, ""};
  return writePiece(dir, "white.x", "piecewhite.png", "WhitePiece", kIvory, ivory) &&
         writePiece(dir, "black.x", "pieceblack.png", "BlackPiece", kEbony, ebony);
}

}  // namespace makeassets
