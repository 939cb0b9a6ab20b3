#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "filters/bilateral_tile.h"
#include "filters/byte_lanes.h"
#include "filters/plane_tile.h"
#include "filters/range_weights.h"
#include "vorel/filters.h"

namespace {

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

void filter_area(const SourcePlane& plane, uint8_t* dst, const Area& area, const Spans& spans,
                 const RangeWeights& weights) {
  if (area.row_first >= area.row_end || area.col_first >= area.col_end) return;
  // From 2^30 on 2 * span + 1 wraps and is negative too: the window is empty, the value sum 0.
  constexpr int32_t kSpanLimit = 1 << 30;
  if (spans.row < 0 || spans.row >= kSpanLimit || spans.col < 0 || spans.col >= kSpanLimit) {
    clear_area(area, plane.width, dst);
    return;
  }
  TileWorkspace work;
  for (int32_t row = area.row_first; row < area.row_end; row += kTileRows) {
    const int32_t rows = std::min(kTileRows, area.row_end - row);
    for (int32_t col = area.col_first; col < area.col_end; col += kLanes) {
      const int32_t cols = std::min(kLanes, area.col_end - col);
      filter_tile(plane, dst, {row, col, rows, cols}, spans, weights, &work);
    }
  }
}

}  // namespace

void bilateral_filter(const uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                      int32_t spanRow, int32_t spanCol, const bilateralfiltering_tuning* tuning) {
  if (tuning->val_delta_th >= 16) {
    bilateral_filter_opt(src, dst, height, width, spanRow, spanCol, tuning);
    return;
  }
  bilateral_filter_center_neon(src, dst, height, width, 0, 0, 0, 0, spanRow, spanCol, tuning);
}

void bilateral_filter_center_neon(const uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                                  int32_t top, int32_t bottom, int32_t left, int32_t right,
                                  int32_t spanRow, int32_t spanCol,
                                  const bilateralfiltering_tuning* tuning) {
  filter_area({src, height, width}, dst, {top, height - bottom, left, width - right},
              {spanRow, spanCol}, polynomial_weights(*tuning));
}

void bilateral_filter_opt(const uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                          int32_t spanRow, int32_t spanCol,
                          const bilateralfiltering_tuning* tuning) {
  bilateral_filter_opt_center_neon(src, dst, height, width, 0, 0, 0, 0, spanRow, spanCol, tuning);
}

void bilateral_filter_opt_center_neon(const uint8_t* src, uint8_t* dst, int32_t height,
                                      int32_t width, int32_t top, int32_t bottom, int32_t left,
                                      int32_t right, int32_t spanRow, int32_t spanCol,
                                      const bilateralfiltering_tuning* tuning) {
  filter_area({src, height, width}, dst, {top, height - bottom, left, width - right},
              {spanRow, spanCol}, stored_weights(*tuning));
}
