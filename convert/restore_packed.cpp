#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "convert/restore_rows.h"
#include "platform/vectorize.h"
#include "vorel/convert.h"

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

// Null `low` and `high` leave the luma alone.
void restore_row(uint8_t* packed, const uint8_t* low, const uint8_t* high, const uint8_t* u,
                 const uint8_t* v, size_t width, const RestorePlan& plan) {
  uint8_t luma[kRestoreBlock];
  uint8_t pairs[kRestoreBlock];
  for (size_t x = 0; x < width; x += kRestoreBlock) {
    const size_t pixels = std::min(width - x, kRestoreBlock);
    unpack(packed + 2 * x, luma, pairs, pixels);
    if (low != nullptr) restore_luma_row(luma, low + x, high + x, pixels, plan);
    restore_chroma_row(pairs, u + x / 2, v + x / 2, pixels / 2, plan);
    pack(luma, pairs, packed + 2 * x, pixels);
  }
}

void restore_rows(uint8_t* packed, const uint8_t* low, const uint8_t* high, const uint8_t* u,
                  const uint8_t* v, int32_t width, int32_t rows,
                  const interleaving_tuning& tuning) {
  if (width < 1 || rows < 1) return;
  const RestorePlan plan(tuning);
  const size_t columns = static_cast<size_t>(width);
  for (size_t row = 0; row < static_cast<size_t>(rows); ++row) {
    const size_t luma_at = row * columns;
    const size_t chroma_at = row * (columns / 2);
    const bool with_luma = low != nullptr;
    restore_row(packed + 2 * luma_at, with_luma ? low + luma_at : nullptr,
                with_luma ? high + luma_at : nullptr, u + chroma_at, v + chroma_at, columns, plan);
  }
}

}  // namespace

void restore_interleave_yuv422_neon(uint8_t* packed, const uint8_t* y_low, const uint8_t* y_high,
                                    const uint8_t* upsampled_u, const uint8_t* upsampled_v,
                                    int32_t width, int32_t rows,
                                    const struct interleaving_tuning* tuning) {
  if (tuning->d_Y_upper_thresh == 0 || tuning->d_UV_thresh == 0) return;
  restore_rows(packed, y_low, y_high, upsampled_u, upsampled_v, width, rows, *tuning);
}

void restore_interleave_uv422_neon(uint8_t* packed, const uint8_t*, const uint8_t*,
                                   const uint8_t* upsampled_u, const uint8_t* upsampled_v,
                                   int32_t width, int32_t rows,
                                   const struct interleaving_tuning* tuning) {
  if (tuning->d_UV_thresh == 0) return;
  restore_rows(packed, nullptr, nullptr, upsampled_u, upsampled_v, width, rows, *tuning);
}

void* restore_interleave_yuv422(void* job) {
  const interleave_job& strip = *static_cast<const interleave_job*>(job);
  restore_interleave_yuv422_neon(strip.packed, strip.y_low, strip.y_high, strip.upsampled_u,
                                 strip.upsampled_v, strip.width, strip.rows, strip.tuning);
  return nullptr;
}
