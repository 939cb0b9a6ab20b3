#include <algorithm>
#include <cstddef>
#include <cstring>

#include "convert/restore_rows.h"
#include "convert/restore_strip.h"
#include "platform/vectorize.h"

namespace {

// The rows work in place; a separate output starts as a copy of the input.
uint8_t* row_to_restore(const uint8_t* in, uint8_t* out, size_t at, size_t bytes) {
  if (out != in) std::memcpy(out + at, in + at, bytes);
  return out + at;
}

void restore_luma(const interleave_job& strip, size_t row, const RestorePlan& plan) {
  const size_t width = static_cast<size_t>(strip.width);
  const size_t at = row * width;
  restore_luma_row(row_to_restore(strip.y_in, strip.y_out, at, width), strip.y_low + at,
                   strip.y_high + at, width, plan);
}

void restore_chroma(const interleave_job& strip, size_t row, const RestorePlan& plan) {
  const size_t width = static_cast<size_t>(strip.width);
  const size_t at = row * (width / 2);
  restore_chroma_row(row_to_restore(strip.uv_in, strip.uv_out, row * width, width),
                     strip.upsampled_u + at, strip.upsampled_v + at, width / 2, plan);
}

void split_to_half(const uint8_t* __restrict pairs, _Float16* __restrict u, _Float16* __restrict v,
                   size_t count) {
  VOREL_VECTORIZE
  for (size_t k = 0; k < count; ++k) {
    const uint16_t pair = load_pair(pairs, k);
    u[k] = static_cast<_Float16>(static_cast<uint16_t>(pair & 0xFF));
    v[k] = static_cast<_Float16>(static_cast<uint16_t>(pair >> 8));
  }
}

void restore_chroma_to_half(const interleave_job& strip, size_t row, const RestorePlan& plan) {
  constexpr size_t kBlock = kRestoreBlock / 2;
  uint8_t block[kRestoreBlock];
  const size_t width = static_cast<size_t>(strip.width);
  const size_t pairs = width / 2;
  const size_t out = row * static_cast<size_t>(strip.mfd_width);
  for (size_t k = 0; k < pairs; k += kBlock) {
    const size_t count = std::min(pairs - k, kBlock);
    std::memcpy(block, strip.uv_in + row * width + 2 * k, 2 * count);
    restore_chroma_row(block, strip.upsampled_u + row * pairs + k,
                       strip.upsampled_v + row * pairs + k, count, plan);
    split_to_half(block, strip.mfd_u + out + k, strip.mfd_v + out + k, count);
  }
}

}  // namespace

void restore_planar_strip(const interleave_job& strip) {
  const bool with_luma = strip.y_out != nullptr;
  if (with_luma && strip.tuning->d_Y_upper_thresh == 0) return;
  if (strip.tuning->d_UV_thresh == 0 || strip.width < 1 || strip.rows < 1) return;
  const RestorePlan plan(*strip.tuning);
  const size_t rows = static_cast<size_t>(strip.rows);
  for (size_t row = 0; with_luma && row < rows; ++row) restore_luma(strip, row, plan);
  for (size_t row = 0; row < rows / 2; ++row) {
    if (strip.uv_out != nullptr) {
      restore_chroma(strip, row, plan);
    } else {
      restore_chroma_to_half(strip, row, plan);
    }
  }
}
