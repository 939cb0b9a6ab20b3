#include "filters/window_taps.h"

#include <algorithm>
#include <cstdlib>

namespace {

// Spatial weight per city-block distance; the last one holds for all larger distances too.
constexpr uint8_t kSpatialWeights[] = {64, 64, 63, 61, 59, 56, 53, 50,
                                       46, 43, 39, 35, 31, 27, 24, 21};
constexpr int32_t kDistances = 16;

// Calls `visit(distance, offset)` for every tap of the part, distances limited to the last
// weight's.
template <typename Visit>
void visit_taps(const window_part& part, ptrdiff_t pitch, Visit visit) {
  for (int32_t row = part.row_first; row < part.row_end; ++row) {
    for (int32_t col = part.col_first; col < part.col_end; ++col) {
      const int32_t distance = std::min(std::abs(row) + std::abs(col), kDistances - 1);
      visit(distance, (row - part.row_first) * pitch + (col - part.col_first));
    }
  }
}

}  // namespace

void list_taps(const window_part& part, ptrdiff_t pitch, window_taps* out) {
  int32_t counts[kDistances] = {};
  visit_taps(part, pitch, [&](int32_t distance, ptrdiff_t) { ++counts[distance]; });

  int32_t next[kDistances];
  int32_t first = 0;
  out->part = part;
  out->run_count = 0;
  for (int32_t distance = 0; distance < kDistances; ++distance) {
    next[distance] = first;
    const int32_t end = first + counts[distance];
    while (first < end) {
      const int32_t run_end = std::min(first + kMaxRunTaps, end);
      out->runs[out->run_count++] = {kSpatialWeights[distance], first, run_end};
      first = run_end;
    }
  }
  visit_taps(part, pitch,
             [&](int32_t distance, ptrdiff_t offset) { out->offsets[next[distance]++] = offset; });
}
