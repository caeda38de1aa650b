#include "noise.h"

#include <cmath>
#include <numeric>

namespace makeassets {

uint64_t Random::next() {
  uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
  return z ^ (z >> 31);
}

double Random::uniform() {
  return static_cast<double>(next() >> 11) * (1.0 / 9007199254740992.0);
}

Noise::Noise(uint64_t seed) {
  std::array<uint8_t, 256> p{};
  std::iota(p.begin(), p.end(), 0);
  Random rng(seed);
  for (int i = 255; i > 0; --i) {
    const int j = static_cast<int>(rng.next() % static_cast<uint64_t>(i + 1));
    std::swap(p[i], p[j]);
  }
  for (int i = 0; i < 512; ++i) perm_[i] = p[i & 255];
}

namespace {

double fade(double t) {
  return t * t * t * (t * (t * 6 - 15) + 10);
}

double grad2(int hash, double x, double y) {
  // Eight directions around the circle.
  switch (hash & 7) {
    case 0:
      return x + y;
    case 1:
      return x - y;
    case 2:
      return -x + y;
    case 3:
      return -x - y;
    case 4:
      return 1.4142 * x;
    case 5:
      return -1.4142 * x;
    case 6:
      return 1.4142 * y;
    default:
      return -1.4142 * y;
  }
}

double grad3(int hash, double x, double y, double z) {
  const int h = hash & 15;
  const double u = h < 8 ? x : y;
  const double v = h < 4 ? y : (h == 12 || h == 14 ? x : z);
  return ((h & 1) ? -u : u) + ((h & 2) ? -v : v);
}

}  // namespace

double Noise::operator()(double x, double y) const {
  const double fx = std::floor(x), fy = std::floor(y);
  const int xi = static_cast<int>(fx) & 255, yi = static_cast<int>(fy) & 255;
  x -= fx;
  y -= fy;
  const double u = fade(x), v = fade(y);
  const int a = perm_[xi] + yi, b = perm_[xi + 1] + yi;
  const double n00 = grad2(perm_[a], x, y), n10 = grad2(perm_[b], x - 1, y);
  const double n01 = grad2(perm_[a + 1], x, y - 1), n11 = grad2(perm_[b + 1], x - 1, y - 1);
  return 0.7 * lerp(lerp(n00, n10, u), lerp(n01, n11, u), v);
}

double Noise::operator()(double x, double y, double z) const {
  const double fx = std::floor(x), fy = std::floor(y), fz = std::floor(z);
  const int xi = static_cast<int>(fx) & 255, yi = static_cast<int>(fy) & 255,
            zi = static_cast<int>(fz) & 255;
  x -= fx;
  y -= fy;
  z -= fz;
  const double u = fade(x), v = fade(y), w = fade(z);
  const int a = perm_[xi] + yi, aa = perm_[a] + zi, ab = perm_[a + 1] + zi;
  const int b = perm_[xi + 1] + yi, ba = perm_[b] + zi, bb = perm_[b + 1] + zi;
  const double x0 = lerp(grad3(perm_[aa], x, y, z), grad3(perm_[ba], x - 1, y, z), u);
  const double x1 = lerp(grad3(perm_[ab], x, y - 1, z), grad3(perm_[bb], x - 1, y - 1, z), u);
  const double x2 =
      lerp(grad3(perm_[aa + 1], x, y, z - 1), grad3(perm_[ba + 1], x - 1, y, z - 1), u);
  const double x3 =
      lerp(grad3(perm_[ab + 1], x, y - 1, z - 1), grad3(perm_[bb + 1], x - 1, y - 1, z - 1), u);
  return 0.9 * lerp(lerp(x0, x1, v), lerp(x2, x3, v), w);
}

double Noise::fbm(double x, double y, int octaves, double gain) const {
  double sum = 0, amp = 1, norm = 0;
  for (int i = 0; i < octaves; ++i) {
    sum += amp * (*this)(x, y);
    norm += amp;
    amp *= gain;
    // Rotate a little between octaves so the lattice does not line up.
    const double nx = 1.6 * x + 1.2 * y + 17.3, ny = -1.2 * x + 1.6 * y + 5.1;
    x = nx;
    y = ny;
  }
  return sum / norm;
}

double Noise::fbm(double x, double y, double z, int octaves, double gain) const {
  double sum = 0, amp = 1, norm = 0;
  for (int i = 0; i < octaves; ++i) {
    sum += amp * (*this)(x, y, z);
    norm += amp;
    amp *= gain;
    x = 2.0 * x + 11.7;
    y = 2.0 * y + 3.1;
    z = 2.0 * z + 7.9;
  }
  return sum / norm;
}

double clamp01(double v) {
  return v < 0 ? 0 : (v > 1 ? 1 : v);
}

double smoothstep(double edge0, double edge1, double x) {
  const double t = clamp01((x - edge0) / (edge1 - edge0));
  return t * t * (3 - 2 * t);
}

double lerp(double a, double b, double t) {
  return a + (b - a) * t;
}

double fract(double v) {
  return v - std::floor(v);
}

}  // namespace makeassets
