// The board: an inlaid playing field of 10 x 10 squares in a raised, mitred frame.
//
// The playing surface is the plane y = 0.2265 and its squares cover x and z from -5 to 5;
// square (column X, row Y) with X + Y even is dark, so the corners at (-5, -5) and (5, 5)
// are dark. The frame rises a little above the squares, runs out to +-5.6 with a rounded
// outer edge, and its sides go down to y = 0. One image covers the top as seen from above
// (x to the right, z upward in the picture); the frame's walls and the bottom borrow the
// frame's part of it.

#include <cmath>
#include <string>

#include "assets.h"
#include "wood.h"
#include "xfile.h"

namespace makeassets {

namespace {

constexpr double kHalf = 5.0;       // squares from -5 to 5
constexpr double kExtent = 5.6;     // frame out to +-5.6; the image covers this square
constexpr double kLip = 0.025;      // frame top above the squares
constexpr double kFlat = 0.45;      // width of the frame's flat top
constexpr double kRound = 0.15;     // radius of its rounded outer edge
constexpr double kLipBand = 0.012;  // image band, beside the squares, for the lip's wall
constexpr int kImageSize = 1024;

// Image coordinates of a point of the top seen from above.
double imageU(double x) {
  return (x + kExtent) / (2 * kExtent);
}
double imageV(double z) {
  return (kExtent - z) / (2 * kExtent);
}

// Light maple and darker walnut for the squares, a red-brown rosewood for the frame and
// boxwood for the inlaid line around the field.
const Species kMaple{{0.90, 0.77, 0.56}, {0.78, 0.60, 0.40}, 8.0, 0.40, 0.08};
const Species kWalnut{{0.46, 0.29, 0.17}, {0.30, 0.17, 0.09}, 7.0, 0.60, 0.11};
const Species kRosewood{{0.40, 0.19, 0.10}, {0.24, 0.10, 0.05}, 6.0, 0.80, 0.10};
const Species kBoxwood{{0.92, 0.82, 0.60}, {0.84, 0.72, 0.50}, 9.0, 0.30, 0.04};

class BoardImage {
 public:
  BoardImage() : noise_(0x0B0A4D5EEDull) {
    for (int i = 0; i < 100; ++i) {
      squares_[i] = Plank(1000 + i, 0.6, 0.1, 1.6, 0.05, 0.4);
    }
    for (int i = 0; i < 4; ++i) sides_[i] = Plank(2000 + i, 0.3, 0.6, 2.5, 0.03, 0.03);
  }

  // Colour of the top at world (x, z).
  Rgb operator()(double x, double z) const {
    if (std::abs(x) < kHalf && std::abs(z) < kHalf) return square(x, z);
    return frame(x, z);
  }

 private:
  Rgb square(double x, double z) const {
    const int col = static_cast<int>(std::floor(x + kHalf));
    const int row = static_cast<int>(std::floor(z + kHalf));
    const bool dark = (col + row) % 2 == 0;
    const Plank& plank = squares_[row * 10 + col];
    // Dark squares run their grain across the board, light ones along it: each square
    // reads as its own inlaid piece even where the colours come close.
    const Rgb c = dark ? wood(noise_, kWalnut, plank, x, z) : wood(noise_, kMaple, plank, z, x);
    // A fine joint where two pieces meet.
    const double fx = x + kHalf - col, fz = z + kHalf - row;
    const double edge = std::min(std::min(fx, 1 - fx), std::min(fz, 1 - fz));
    return c * (1 - 0.30 * (1 - smoothstep(0.0, 0.02, edge)));
  }

  Rgb frame(double x, double z) const {
    // Which side of the frame: the diagonals are the mitre joints.
    int side;
    double along, out;
    if (std::abs(x) > std::abs(z)) {
      side = x > 0 ? 0 : 1;
      along = z;
      out = std::abs(x) - kHalf;
    } else {
      side = z > 0 ? 2 : 3;
      along = x;
      out = std::abs(z) - kHalf;
    }
    Rgb c = wood(noise_, kRosewood, sides_[side], along, out + 0.1 * side);
    // Inlaid line: boxwood between two thin dark bands.
    auto band = [](double lo, double hi, double t) {
      const double w = 0.005;
      return smoothstep(lo - w, lo + w, t) * (1 - smoothstep(hi - w, hi + w, t));
    };
    const Rgb box = wood(noise_, kBoxwood, sides_[side], along * 1.7, out * 3.0);
    const Rgb ebony{0.10, 0.06, 0.04};
    c = mix(c, ebony, band(0.075, 0.095, out));
    c = mix(c, box, band(0.095, 0.125, out));
    c = mix(c, ebony, band(0.125, 0.145, out));
    // The lip's edge beside the squares and the outer rounding are a shade darker,
    // as handled edges of an oiled frame are.
    c = c * (1 - 0.25 * (1 - smoothstep(0.0, 0.03, out)));
    c = c * (1 - 0.10 * smoothstep(kFlat, kExtent - kHalf, out));
    return c;
  }

  Noise noise_;
  Plank squares_[100];
  Plank sides_[4];
};

// One point of the frame's cross-section: `out` from the squares' edge, height `y`, the
// outward normal as (outward, up), and the distance `t` from the squares' edge at which
// the image is read for it.
struct ProfilePoint {
  double out, y, nOut, nUp, t;
};

void addFrame(MeshBuilder& mesh) {
  const double top = scene::kSurface + kLip;
  std::vector<std::vector<ProfilePoint>> runs;
  // The lip's wall facing the squares.
  runs.push_back({{0, scene::kSurface, -1, 0, 0}, {0, top, -1, 0, kLipBand}});
  // The flat top, the rounded edge and the outer wall, one smooth run. The wall reads
  // the image backward from the edge, so the grain folds over the edge unbroken.
  std::vector<ProfilePoint> outer;
  outer.push_back({0, top, 0, 1, kLipBand});
  outer.push_back({kFlat, top, 0, 1, kFlat});
  const int arcSteps = 8;
  for (int i = 1; i <= arcSteps; ++i) {
    const double a = (M_PI / 2) * i / arcSteps;
    outer.push_back({kFlat + kRound * std::sin(a), top - kRound + kRound * std::cos(a), std::sin(a),
                     std::cos(a), kFlat + (kExtent - kHalf - kFlat) * i / arcSteps});
  }
  const double wallTop = top - kRound;
  outer.push_back({kExtent - kHalf, 0, 1, 0, kExtent - kHalf - wallTop});
  runs.push_back(outer);

  // Four sides, each the profile swept along a straight edge and cut at 45 degrees.
  const Vec3 outward[4] = {{1, 0, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, -1}};
  const Vec3 alongDir[4] = {{0, 0, 1}, {0, 0, 1}, {1, 0, 0}, {1, 0, 0}};
  for (int s = 0; s < 4; ++s) {
    const Vec3 o = outward[s], a = alongDir[s];
    auto vertex = [&](const ProfilePoint& p, double end) {
      const double reach = kHalf + p.out;  // half length of the side at this point
      Vertex v;
      v.pos = o * reach + a * (end * reach);
      v.pos.y = p.y;
      v.normal = o * p.nOut + Vec3{0, p.nUp, 0};
      // The image point at distance t keeps the mitre on the image's diagonal.
      const Vec3 img = o * (kHalf + p.t) + a * (end * (kHalf + p.t));
      v.u = imageU(img.x);
      v.v = imageV(img.z);
      return v;
    };
    for (const auto& run : runs) {
      std::vector<uint32_t> lo, hi;
      for (const ProfilePoint& p : run) {
        lo.push_back(mesh.add(vertex(p, -1)));
        hi.push_back(mesh.add(vertex(p, 1)));
      }
      for (size_t i = 0; i + 1 < run.size(); ++i) {
        mesh.facing({lo[i], lo[i + 1], hi[i + 1], hi[i]});
      }
    }
  }
}

void addPlayingSurface(MeshBuilder& mesh) {
  // Ten by ten quads, one per square, so that each square's corners are real vertices.
  const double y = scene::kSurface;
  for (int row = 0; row < 10; ++row) {
    for (int col = 0; col < 10; ++col) {
      const double x0 = col - kHalf, z0 = row - kHalf;
      std::vector<uint32_t> corners;
      for (auto [dx, dz] : {std::pair{0, 0}, {0, 1}, {1, 1}, {1, 0}}) {
        Vertex v;
        v.pos = {x0 + dx, y, z0 + dz};
        v.normal = {0, 1, 0};
        v.u = imageU(v.pos.x);
        v.v = imageV(v.pos.z);
        corners.push_back(mesh.add(v));
      }
      mesh.face(corners);
    }
  }
}

void addBottom(MeshBuilder& mesh) {
  // The underside shows a long-grained strip of the frame's near side.
  std::vector<uint32_t> corners;
  for (auto [sx, sz] : {std::pair{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}) {
    Vertex v;
    v.pos = {sx * kExtent, 0, sz * kExtent};
    v.normal = {0, -1, 0};
    v.u = imageU(sx * (kHalf - 0.1));
    v.v = imageV(-(kHalf + 0.30 + 0.12 * sz));
    corners.push_back(mesh.add(v));
  }
  mesh.facing(corners);
}

}  // namespace

bool writeBoard(const std::string& dir) {
  MeshBuilder mesh;
  addPlayingSurface(mesh);
  addFrame(mesh);
  addBottom(mesh);
  Material wood{"BoardWood", {1, 1, 1, 1}, 0, {0, 0, 0}, {0, 0, 0}, "board.jpg"};
  if (!writeX(dir + "/board.x", "Board", mesh, {wood})) return false;

  const BoardImage top;
  Image image(kImageSize, kImageSize);
  image.paint(2, [&](double u, double v) {
    return top(-kExtent + u * 2 * kExtent, kExtent - v * 2 * kExtent);
  });
  return image.writeJpg(dir + "/board.jpg", 90);
}

}  // namespace makeassets
