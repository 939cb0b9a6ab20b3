#include <algorithm>
#include <cstddef>

#include "convert/restore_rows.h"
#include "convert/restore_strip.h"
#include "platform/vectorize.h"

namespace {

// A pixel of a packed row is a byte pair: luma, and the pixel's byte of the chroma pairs.
void unpack(const uint8_t* __restrict packed, uint8_t* __restrict luma, uint8_t* __restrict pairs,
            size_t pixels) {
  VOREL_VECTORIZE
  for (size_t x = 0; x < pixels; ++x) {
    const uint16_t pixel = load_pair(packed, x);
    luma[x] = static_cast<uint8_t>(pixel);
    pairs[x] = static_cast<uint8_t>(pixel >> 8);
  }
}

void pack(const uint8_t* __restrict luma, const uint8_t* __restrict pairs,
          uint8_t* __restrict packed, size_t pixels) {
  VOREL_VECTORIZE
  for (size_t x = 0; x < pixels; ++x) {
    store_pair(packed, x, static_cast<uint16_t>(luma[x] | pairs[x] << 8));
  }
}

}  // namespace

void restore_packed_strip(const interleave_job& strip) {
  const bool with_luma = strip.y_low != nullptr;
  if (with_luma && strip.tuning->d_Y_upper_thresh == 0) return;
  if (strip.tuning->d_UV_thresh == 0 || strip.width < 1) return;
  const restore_plan plan(*strip.tuning);
  const size_t width = static_cast<size_t>(strip.width);
  uint8_t luma[kRestoreBlock];
  uint8_t pairs[kRestoreBlock];
  for (ptrdiff_t row = 0; row < strip.rows; ++row) {
    for (size_t x = 0; x < width; x += kRestoreBlock) {
      const size_t pixels = std::min(width - x, kRestoreBlock);
      const size_t luma_at = static_cast<size_t>(row) * width + x;
      const size_t chroma_at = static_cast<size_t>(row) * (width / 2) + x / 2;
      uint8_t* packed = strip.packed + 2 * luma_at;
      unpack(packed, luma, pairs, pixels);
      if (with_luma) {
        restore_luma_row(luma, strip.y_low + luma_at, strip.y_high + luma_at, pixels, plan);
      }
      restore_chroma_row(pairs, strip.upsampled_u + chroma_at, strip.upsampled_v + chroma_at,
                         pixels / 2, plan);
      pack(luma, pairs, packed, pixels);
    }
  }
}
