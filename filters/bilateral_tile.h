// The bilateral filter on one tile of a plane.
#ifndef VOREL_FILTERS_BILATERAL_TILE_H_
#define VOREL_FILTERS_BILATERAL_TILE_H_

#include <cstdint>

#include "filters/plane_tile.h"
#include "filters/range_weights.h"
#include "filters/window_taps.h"

// Weights and weighted samples summed so far for every sample of a tile; both wrap.
struct TileSums {
  alignas(64) uint32_t weight[kTileRows][kLanes];
  alignas(64) uint32_t value[kTileRows][kLanes];
};

// Scratch of filter_tile(); one on the stack (17 KB) serves all tiles of a call. Tiles start out
// filled, because narrow ones are computed at full width too.
struct TileWorkspace {
  PlaneTile centre{};
  PlaneTile window{};
  TileSums sums;
  WindowTaps taps;
};

// Half extents of the window, both at least 0 and below 2^30.
struct Spans {
  int32_t row;
  int32_t col;
};

struct TileArea {
  int32_t row;
  int32_t col;
  int32_t rows;  // at most kTileRows
  int32_t cols;  // at most kLanes
};

// Filters the samples of `area` to the same place of `dst`, which has the plane's size.
void filter_tile(const SourcePlane& plane, uint8_t* dst, const TileArea& area, const Spans& spans,
                 const RangeWeights& weights, TileWorkspace* work);

#endif  // VOREL_FILTERS_BILATERAL_TILE_H_
