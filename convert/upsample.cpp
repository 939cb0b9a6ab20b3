#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/vectorize.h"
#include "vorel/convert.h"

namespace {

// Weights are sixteenths, so a sum of one direction is at most 16 * 255 = 4080 and one of both
// 16 * 4080 = 65280: 16 bits hold everything.
constexpr int kUnit = 16;

// Source columns whose sums lie on the stack at a time.
constexpr size_t kBlock = 128;

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
  uint8_t spread[(kBlock + 1) * kAcross];
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

// A function of its own: inlined, the row loop unrolls into one copy of this loop per weight, three
// times the code for the same speed.
[[gnu::noinline]] void blend_row(const uint16_t* __restrict upper, const uint16_t* __restrict lower,
                                 uint16_t weight, uint8_t* __restrict dst, size_t count) {
  VOREL_VECTORIZE
  for (size_t x = 0; x < count; ++x) dst[x] = blend_rows(upper[x], lower[x], weight);
}

// The first `covered` columns of the source; kAcross x kDown outputs per sample.
template <int kAcross, int kDown>
void upsample(uint8_t* dst, const uint8_t* src, int32_t cols, int32_t rows, int32_t covered) {
  if (cols < 1 || rows < 1 || covered < 1) return;
  const size_t width = static_cast<size_t>(cols);
  const size_t height = static_cast<size_t>(rows);
  const size_t end = std::min(width, static_cast<size_t>(covered));
  uint16_t upper[kBlock * kAcross];
  uint16_t lower[kBlock * kAcross];
  for (size_t row = 0; row < height; ++row) {
    const uint8_t* above = src + row * width;
    const uint8_t* below = row + 1 < height ? above + width : above;
    for (size_t first = 0; first < end; first += kBlock) {
      const size_t last = std::min(end, first + kBlock);
      widen_row<kAcross>(above, width, first, last, upper);
      widen_row<kAcross>(below, width, first, last, lower);
      for (size_t i = 0; i < kDown; ++i) {
        blend_row(upper, lower, static_cast<uint16_t>(i * (kUnit / kDown)),
                  dst + ((row * kDown + i) * width + first) * kAcross, (last - first) * kAcross);
      }
    }
  }
}

// The reference: one output at a time. The neighbour past the end is the reflected one, which is
// the last sample itself.
template <int kAcross, int kDown>
void upsample_scalar(uint8_t* dst, const uint8_t* src, int32_t rows, int32_t cols) {
  const ptrdiff_t width = cols;
  for (ptrdiff_t y = 0; y < ptrdiff_t{rows} * kDown; ++y) {
    const ptrdiff_t row = y / kDown;
    const ptrdiff_t next_row = row + 1 < rows ? row + 1 : 2 * ptrdiff_t{rows} - 2 - row;
    const ptrdiff_t down = y % kDown * (kUnit / kDown);
    for (ptrdiff_t x = 0; x < width * kAcross; ++x) {
      const ptrdiff_t col = x / kAcross;
      const ptrdiff_t next_col = col + 1 < width ? col + 1 : 2 * width - 2 - col;
      const ptrdiff_t across = x % kAcross * (kUnit / kAcross);
      const uint8_t* above = src + row * width;
      const uint8_t* below = src + next_row * width;
      const ptrdiff_t upper = (kUnit - across) * above[col] + across * above[next_col];
      const ptrdiff_t lower = (kUnit - across) * below[col] + across * below[next_col];
      dst[y * width * kAcross + x] =
          static_cast<uint8_t>(((kUnit - down) * upper + down * lower) >> 8);
    }
  }
}

}  // namespace

int upsample_y_neon(uint8_t* dst, const uint8_t* src, int32_t cols, int32_t rows) {
  upsample<16, 16>(dst, src, cols, rows, cols);
  return 0;
}

int upsample_uv420_neon(uint8_t* dst, const uint8_t* src, int32_t cols, int32_t rows, int32_t n) {
  upsample<8, 8>(dst, src, cols, rows, n);
  return 0;
}

int upsample_uv_neon(uint8_t* dst, const uint8_t* src, int32_t cols, int32_t rows, int32_t n) {
  upsample<8, 16>(dst, src, cols, rows, n);
  return 0;
}

int y_upsample(uint8_t* dst, const uint8_t* src, int32_t rows, int32_t cols) {
  upsample_scalar<16, 16>(dst, src, rows, cols);
  return 0;
}

int uv_upsample(const uint8_t* src, uint8_t* dst, int32_t rows, int32_t cols) {
  upsample_scalar<8, 16>(dst, src, rows, cols);
  return 0;
}

void* upsample_y(void* job) {
  const upsample_job& plane = *static_cast<const upsample_job*>(job);
  upsample_y_neon(plane.dst, plane.src, plane.cols, plane.rows);
  return nullptr;
}

void* upsample_uv420(void* job) {
  const upsample_job& plane = *static_cast<const upsample_job*>(job);
  upsample<8, 8>(plane.dst, plane.src, plane.cols, plane.rows, plane.cols);
  return nullptr;
}

void* upsample_uv422(void* job) {
  const upsample_job& plane = *static_cast<const upsample_job*>(job);
  upsample<8, 16>(plane.dst, plane.src, plane.cols, plane.rows, plane.cols);
  return nullptr;
}
