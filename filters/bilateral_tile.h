// The bilateral filter on one tile of a plane.
#ifndef VOREL_FILTERS_BILATERAL_TILE_H_
#define VOREL_FILTERS_BILATERAL_TILE_H_

#include <cstdint>

#include "filters/bilateral_area.h"
#include "filters/plane_tile.h"
#include "filters/range_weights.h"
#include "filters/window_taps.h"

// Weights and weighted samples summed so far for every sample of a tile; both wrap.
struct tile_sums {
  alignas(64) uint32_t weight[kTileRows][kLanes];
  alignas(64) uint32_t value[kTileRows][kLanes];
};

// Scratch of filter_tile(); one on the stack (17 KB) serves all tiles of a call. Tiles start out
// filled, because narrow ones are computed at full width too.
struct tile_workspace {
  plane_tile centre{};
  plane_tile window{};
  tile_sums sums;
  window_taps taps;
};

// Filters the samples of `area`, rounding those of `interior` in single precision. The plane's
// spans are at least 0 and below 2^30.
void filter_tile(const bilateral_plane& plane, const tile_area& area, const plane_area& interior,
                 const range_weights& weights, tile_workspace* work);

#endif  // VOREL_FILTERS_BILATERAL_TILE_H_
