// A piece of a plane, copied out together with its surroundings.
#ifndef VOREL_FILTERS_PLANE_TILE_H_
#define VOREL_FILTERS_PLANE_TILE_H_

#include <cstddef>
#include <cstdint>

#include "filters/window_taps.h"
#include "platform/byte_lanes.h"

struct source_plane {
  const uint8_t* samples;  // rows of `width` bytes
  int32_t height;
  int32_t width;
};

// Filtered rows of a tile; it is kLanes columns wide.
inline constexpr int32_t kTileRows = 32;
inline constexpr ptrdiff_t kTilePitch = 64;
static_assert(kLanes + kPartSize - 1 <= kTilePitch);

struct plane_tile {
  alignas(64) uint8_t rows[kTileRows + kPartSize - 1][kTilePitch];
};

// Samples [row_first, row_end) x [col_first, col_end) of a plane.
struct plane_area {
  int32_t row_first;
  int32_t row_end;
  int32_t col_first;
  int32_t col_end;
};

// `rows` x `cols` samples from (row, col) on. A filtered tile has at most kTileRows x kLanes.
struct tile_area {
  int32_t row;
  int32_t col;
  int32_t rows;
  int32_t cols;
};

// Copies an area that may lie outside the plane: outside its edges the plane is mirrored, the edge
// itself not repeated, until the index is inside. With one row or column every index is 0. Bytes
// behind the columns may be overwritten.
void fill_tile(const source_plane& plane, const tile_area& area, plane_tile* tile);

#endif  // VOREL_FILTERS_PLANE_TILE_H_
