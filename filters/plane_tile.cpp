#include "filters/plane_tile.h"

#include <algorithm>
#include <cstring>

namespace {

ptrdiff_t mirror_index(ptrdiff_t index, ptrdiff_t size) {
  if (index >= 0 && index < size) return index;
  if (size == 1) return 0;
  // Mirrored again and again, the plane repeats there and back.
  const ptrdiff_t period = 2 * (size - 1);
  const ptrdiff_t distance = (index < 0 ? -index : index) % period;
  return distance < size ? distance : period - distance;
}

void fill_row(const uint8_t* src, ptrdiff_t width, ptrdiff_t col, ptrdiff_t cols, uint8_t* dst) {
  if (col >= 0 && col + kTilePitch <= width) {
    std::memcpy(dst, src + col, kTilePitch);  // of fixed size: two moves
    return;
  }
  const ptrdiff_t inside_first = std::clamp<ptrdiff_t>(-col, 0, cols);
  const ptrdiff_t inside_end = std::clamp<ptrdiff_t>(width - col, inside_first, cols);
  for (ptrdiff_t x = 0; x < inside_first; ++x) dst[x] = src[mirror_index(col + x, width)];
  if (inside_first < inside_end) {
    std::memcpy(dst + inside_first, src + col + inside_first,
                static_cast<size_t>(inside_end - inside_first));
  }
  for (ptrdiff_t x = inside_end; x < cols; ++x) dst[x] = src[mirror_index(col + x, width)];
}

}  // namespace

void fill_tile(const source_plane& plane, const tile_area& area, plane_tile* tile) {
  for (int32_t y = 0; y < area.rows; ++y) {
    const ptrdiff_t source_row = mirror_index(static_cast<ptrdiff_t>(area.row) + y, plane.height);
    fill_row(plane.samples + source_row * plane.width, plane.width, area.col, area.cols,
             tile->rows[y]);
  }
}
