// Procedural noise for the generated textures: gradient noise and fractal sums.
// Everything is seeded, so a run of make-assets always writes the same files.
#pragma once

#include <array>
#include <cstdint>

namespace makeassets {

// Small deterministic random source (splitmix64).
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}
  uint64_t next();
  // Uniform in [0, 1).
  double uniform();
  // Uniform in [lo, hi).
  double range(double lo, double hi) { return lo + (hi - lo) * uniform(); }

 private:
  uint64_t state_;
};

// Gradient noise in two and three dimensions, roughly in [-1, 1], zero at lattice points.
class Noise {
 public:
  explicit Noise(uint64_t seed);
  double operator()(double x, double y) const;
  double operator()(double x, double y, double z) const;
  // Sum of octaves, each twice the frequency and `gain` times the amplitude of the last,
  // normalised so that the result stays roughly in [-1, 1].
  double fbm(double x, double y, int octaves, double gain = 0.5) const;
  double fbm(double x, double y, double z, int octaves, double gain = 0.5) const;

 private:
  std::array<uint8_t, 512> perm_{};
};

double clamp01(double v);
double smoothstep(double edge0, double edge1, double x);
double lerp(double a, double b, double t);
double fract(double v);

}  // namespace makeassets
