#include "convert/upsample.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "platform/vectorize.h"

namespace {

// Weights are sixteenths, so a sum of one direction is at most 16 * 255 = 4080 and one of both
// 16 * 4080 = 65280: 16 bits hold everything.
constexpr int kUnit = 16;

inline uint16_t blend_columns(uint16_t left, uint16_t right, uint16_t weight) {
  return static_cast<uint16_t>((kUnit - weight) * left + weight * right);
}

inline uint8_t blend_rows(uint16_t upper, uint16_t lower, uint16_t weight) {
  const uint16_t sum = static_cast<uint16_t>((kUnit - weight) * upper + weight * lower);
  return static_cast<uint8_t>(sum >> 8);
}

// Samples [first, end) of a source row to kAcross sums each; the last column is continued flat.
template <int kAcross>
void widen_row(const uint8_t* row, size_t cols, size_t first, size_t end,
               uint16_t* __restrict sums) {
  // Every sample kAcross times, and once more the one after the last: an output's right neighbour
  // lies kAcross bytes on.
  uint8_t spread[kUpsampleCols + kAcross];
  for (size_t col = first; col <= end; ++col) {
    std::memset(spread + (col - first) * kAcross, row[std::min(col, cols - 1)], kAcross);
  }
  const size_t count = (end - first) * kAcross;
  VOREL_VECTORIZE
  for (size_t x = 0; x < count; ++x) {
    const uint16_t weight = static_cast<uint16_t>(x % kAcross * (kUnit / kAcross));
    sums[x] = blend_columns(spread[x], spread[x + kAcross], weight);
  }
}

template <int kAcross>
void widen_both(const upsample_run& run, upsample_sums* sums) {
  const uint8_t* above = run.src + run.row * run.cols;
  const uint8_t* below = run.row + 1 < run.rows ? above + run.cols : above;
  widen_row<kAcross>(above, run.cols, run.col_first, run.col_end, sums->upper);
  widen_row<kAcross>(below, run.cols, run.col_first, run.col_end, sums->lower);
  sums->count = (run.col_end - run.col_first) * kAcross;
}

}  // namespace

void widen_run(const upsample_run& run, Upsampling factor, upsample_sums* sums) {
  factor == Upsampling::k16x16 ? widen_both<16>(run, sums) : widen_both<8>(run, sums);
}

void blend_sums(const upsample_sums& sums, size_t weight, uint8_t* __restrict dst) {
  const uint16_t* upper = sums.upper;
  const uint16_t* lower = sums.lower;
  const uint16_t down = static_cast<uint16_t>(weight);
  const size_t count = sums.count;
  VOREL_VECTORIZE
  for (size_t x = 0; x < count; ++x) dst[x] = blend_rows(upper[x], lower[x], down);
}

void upsample_plane(const upsample_area& plane, Upsampling factor) {
  if (plane.cols < 1 || plane.rows < 1 || plane.covered < 1) return;
  const size_t across = factor == Upsampling::k16x16 ? 16 : 8;
  const size_t down = factor == Upsampling::k8x8 ? 8 : 16;
  const size_t cols = static_cast<size_t>(plane.cols);
  const size_t rows = static_cast<size_t>(plane.rows);
  const size_t end = std::min(cols, static_cast<size_t>(plane.covered));
  const size_t step = kUpsampleCols / across;
  upsample_sums sums;
  for (size_t row = 0; row < rows; ++row) {
    for (size_t col = 0; col < end; col += step) {
      widen_run({plane.src, cols, rows, row, col, std::min(end, col + step)}, factor, &sums);
      for (size_t i = 0; i < down; ++i) {
        blend_sums(sums, i * (kUnit / down), plane.dst + ((row * down + i) * cols + col) * across);
      }
    }
  }
}
