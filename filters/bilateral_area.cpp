#include "filters/bilateral_area.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "filters/bilateral_tile.h"
#include "filters/byte_lanes.h"
#include "filters/plane_tile.h"
#include "filters/range_weights.h"

namespace {

// From 2^30 on 2 * span + 1 wraps and is negative too: the window is empty, the value sum 0.
bool is_window(int32_t span) { return span >= 0 && span < 1 << 30; }

// Samples [row_first, row_end) x [col_first, col_end) of a plane.
struct Area {
  int32_t row_first;
  int32_t row_end;
  int32_t col_first;
  int32_t col_end;
};

void clear_area(const Area& area, int32_t width, uint8_t* dst) {
  for (int32_t row = area.row_first; row < area.row_end; ++row) {
    std::memset(dst + static_cast<ptrdiff_t>(row) * width + area.col_first, 0,
                static_cast<size_t>(area.col_end - area.col_first));
  }
}

}  // namespace

void filter_area(const BilateralPlane& plane, const PlaneMargins& margins,
                 RangeWeightSource source) {
  const Area area{margins.top, plane.height - margins.bottom, margins.left,
                  plane.width - margins.right};
  if (area.row_first >= area.row_end || area.col_first >= area.col_end) return;
  if (!is_window(plane.span_row) || !is_window(plane.span_col)) {
    return clear_area(area, plane.width, plane.dst);
  }
  const RangeWeights weights = source == RangeWeightSource::kPolynomial
                                   ? polynomial_weights(*plane.tuning)
                                   : stored_weights(*plane.tuning);
  TileWorkspace work;
  for (int32_t row = area.row_first; row < area.row_end; row += kTileRows) {
    const int32_t rows = std::min(kTileRows, area.row_end - row);
    for (int32_t col = area.col_first; col < area.col_end; col += kLanes) {
      const int32_t cols = std::min(kLanes, area.col_end - col);
      filter_tile(plane, {row, col, rows, cols}, weights, &work);
    }
  }
}

void filter_plane(const BilateralPlane& plane) {
  // Kept: from 16 on the stored weights, which are not built for such a threshold.
  const bool stored = plane.tuning->val_delta_th >= 16;
  filter_area(plane, {}, stored ? RangeWeightSource::kStored : RangeWeightSource::kPolynomial);
}
