#include "wood.h"

#include <cmath>

namespace makeassets {

Plank::Plank(uint64_t seed, double pithRange, double depthLo, double depthHi, double shadeRange,
             double slopeRange) {
  Random rng(seed);
  pith = rng.range(-pithRange, pithRange);
  depth = rng.range(depthLo, depthHi);
  ox = rng.range(0, 200);
  oy = rng.range(0, 200);
  shade = 1 + rng.range(-shadeRange, shadeRange);
  slope = rng.range(-slopeRange, slopeRange);
}

Rgb wood(const Noise& noise, const Species& species, const Plank& plank, double along,
         double across) {
  // Rings are circles around the log's axis, wobbled by slow noise so that they wander
  // like real growth; the face cuts them into stripes, and where the saw runs at a slant
  // to the log into arches.
  const double warp = 0.12 * noise.fbm(along * 0.35 + plank.ox, across * 0.8 + plank.oy, 3);
  const double b = across - plank.pith + warp;
  const double depth = plank.depth + plank.slope * along;
  double r = std::sqrt(b * b + depth * depth);
  r += 0.015 * noise(along * 1.1 + plank.oy, across * 4.0 + plank.ox);
  // Years differ: the rings' spacing drifts from one to the next.
  double year = r * species.rings;
  year += 0.8 * noise(year * 0.37 + plank.ox, plank.oy);
  const double phase = fract(year);
  // Late wood darkens towards the end of each year and stops at the next ring's start.
  const double late = smoothstep(0.40, 0.86, phase) * (1 - smoothstep(0.86, 1.0, phase));
  // Fibres: streaks stretched along the grain, kept a few pixels wide so that they
  // do not shimmer when the texture is drawn smaller than its size.
  const double fibre = noise.fbm(along * 1.5 + plank.ox, across * 13.0 + plank.oy, 2) +
                       0.4 * noise(along * 3.0 + plank.oy, across * 27.0 + plank.ox);
  const double drift = noise.fbm(along * 0.25 + plank.oy, across * 0.5 + plank.ox, 3);
  Rgb c = mix(species.early, species.late, late * species.figure);
  return c * ((1 + species.fibre * fibre + 0.10 * drift) * plank.shade);
}

}  // namespace makeassets
