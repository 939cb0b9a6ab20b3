#include "convert/upsample.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "platform/vectorize.h"

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

template <int kAcross, int kDown>
void upsample(const UpsamplePlane& plane) {
  if (plane.cols < 1 || plane.rows < 1 || plane.covered < 1) return;
  const size_t width = static_cast<size_t>(plane.cols);
  const size_t height = static_cast<size_t>(plane.rows);
  const size_t end = std::min(width, static_cast<size_t>(plane.covered));
  uint16_t upper[kBlock * kAcross];
  uint16_t lower[kBlock * kAcross];
  for (size_t row = 0; row < height; ++row) {
    const uint8_t* above = plane.src + row * width;
    const uint8_t* below = row + 1 < height ? above + width : above;
    for (size_t first = 0; first < end; first += kBlock) {
      const size_t last = std::min(end, first + kBlock);
      widen_row<kAcross>(above, width, first, last, upper);
      widen_row<kAcross>(below, width, first, last, lower);
      for (size_t i = 0; i < kDown; ++i) {
        blend_row(upper, lower, static_cast<uint16_t>(i * (kUnit / kDown)),
                  plane.dst + ((row * kDown + i) * width + first) * kAcross,
                  (last - first) * kAcross);
      }
    }
  }
}

}  // namespace

void upsample_plane(const UpsamplePlane& plane, Upsampling factor) {
  switch (factor) {
    case Upsampling::k16x16:
      return upsample<16, 16>(plane);
    case Upsampling::k8x8:
      return upsample<8, 8>(plane);
    case Upsampling::k8x16:
      return upsample<8, 16>(plane);
  }
}
