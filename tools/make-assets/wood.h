// Wood: growth rings, fibres and slow colour drift, seen on a sawn face.
#pragma once

#include <cstdint>

#include "image.h"
#include "noise.h"

namespace makeassets {

struct Species {
  Rgb early;      // light early wood
  Rgb late;       // darker late wood of each ring
  double rings;   // growth rings per world unit
  double figure;  // how strongly the late wood shows, 0..1
  double fibre;   // strength of the fibre streaks along the grain
};

// One piece of wood cut from a log. The log's axis runs along the grain, `pith` across it
// and `depth` below the face, which decides whether rings show as stripes or arches.
struct Plank {
  double pith = 0;
  double depth = 1;
  double slope = 0;       // the saw's angle to the log: depth changes along the grain
  double ox = 0, oy = 0;  // where in the noise this plank was cut
  double shade = 1;       // brightness of this plank against its neighbours
  Plank() = default;
  Plank(uint64_t seed, double pithRange, double depthLo, double depthHi, double shadeRange,
        double slopeRange);
};

// Colour at `along` and `across` the grain, in world units on the face of the plank.
Rgb wood(const Noise& noise, const Species& species, const Plank& plank, double along,
         double across);

}  // namespace makeassets
