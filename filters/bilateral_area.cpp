#include "filters/bilateral_area.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "filters/bilateral_tile.h"
#include "filters/plane_tile.h"
#include "filters/range_weights.h"
#include "platform/byte_lanes.h"

namespace {

// From 2^30 on 2 * span + 1 wraps and is negative too: the window is empty, the value sum 0.
bool is_window(int32_t span) { return span >= 0 && span < 1 << 30; }

void clear_area(const plane_area& area, int32_t width, uint8_t* dst) {
  for (int32_t row = area.row_first; row < area.row_end; ++row) {
    std::memset(dst + static_cast<ptrdiff_t>(row) * width + area.col_first, 0,
                static_cast<size_t>(area.col_end - area.col_first));
  }
}

plane_area inside(const bilateral_plane& plane, const plane_margins& margins) {
  return {margins.top, plane.height - margins.bottom, margins.left, plane.width - margins.right};
}

// The interior's width is a multiple of 8, and its windows lie inside the plane.
plane_margins border(const bilateral_plane& plane) {
  const int32_t width = std::max(plane.width - 2 * plane.span_col, 0) / 8 * 8;
  const int32_t left = (plane.width - width) / 2;
  return {plane.span_row, plane.span_row, left, plane.width - width - left};
}

void filter_area(const bilateral_plane& plane, const plane_area& area, const plane_area& interior,
                 RangeWeightSource source) {
  const range_weights weights = source == RangeWeightSource::kPolynomial
                                    ? polynomial_weights(*plane.tuning)
                                    : stored_weights(*plane.tuning);
  tile_workspace work;
  for (int32_t row = area.row_first; row < area.row_end; row += kTileRows) {
    const int32_t rows = std::min(kTileRows, area.row_end - row);
    for (int32_t col = area.col_first; col < area.col_end; col += kLanes) {
      const int32_t cols = std::min(kLanes, area.col_end - col);
      filter_tile(plane, {row, col, rows, cols}, interior, weights, &work);
    }
  }
}

}  // namespace

void filter_interior(const bilateral_plane& plane, const plane_margins& margins,
                     RangeWeightSource source) {
  const plane_area area = inside(plane, margins);
  if (area.row_first >= area.row_end || area.col_first >= area.col_end) return;
  if (!is_window(plane.span_row) || !is_window(plane.span_col)) {
    return clear_area(area, plane.width, plane.dst);
  }
  filter_area(plane, area, area, source);
}

void filter_plane(const bilateral_plane& plane, RangeWeightSource source) {
  const plane_area whole = inside(plane, {});
  if (whole.row_end <= 0 || whole.col_end <= 0) return;
  if (!is_window(plane.span_row) || !is_window(plane.span_col)) {
    return clear_area(whole, plane.width, plane.dst);
  }
  filter_area(plane, whole, inside(plane, border(plane)), source);
}

void filter_plane(const bilateral_plane& plane) {
  // Kept: from 16 on the stored weights, which are not built for such a threshold.
  const bool stored = plane.tuning->val_delta_th >= 16;
  filter_plane(plane, stored ? RangeWeightSource::kStored : RangeWeightSource::kPolynomial);
}
