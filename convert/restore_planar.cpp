#include <cstddef>
#include <cstdint>
#include <cstring>

#include "convert/restore_rows.h"
#include "platform/vectorize.h"
#include "vorel/convert.h"

namespace {

struct Strip {
  size_t width;
  size_t rows;
  size_t pairs() const { return width / 2; }
  size_t chroma_rows() const { return rows / 2; }
};

Strip make_strip(int32_t width, int32_t rows) {
  return {width > 0 ? static_cast<size_t>(width) : 0, rows > 0 ? static_cast<size_t>(rows) : 0};
}

// The rows work in place; a separate output starts as a copy of the input.
void restore_luma(const uint8_t* in, const uint8_t* low, const uint8_t* high, Strip strip,
                  uint8_t* out, const RestorePlan& plan) {
  for (size_t row = 0; row < strip.rows; ++row) {
    const size_t at = row * strip.width;
    if (out != in) std::memcpy(out + at, in + at, strip.width);
    restore_luma_row(out + at, low + at, high + at, strip.width, plan);
  }
}

void restore_chroma(const uint8_t* in, const uint8_t* u, const uint8_t* v, Strip strip,
                    uint8_t* out, const RestorePlan& plan) {
  for (size_t row = 0; row < strip.chroma_rows(); ++row) {
    const size_t at = row * strip.width;
    if (out != in) std::memcpy(out + at, in + at, strip.width);
    restore_chroma_row(out + at, u + row * strip.pairs(), v + row * strip.pairs(), strip.pairs(),
                       plan);
  }
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

void restore_chroma_to_half(const uint8_t* in, const uint8_t* u, const uint8_t* v, Strip strip,
                            _Float16* mfd_u, _Float16* mfd_v, size_t mfd_width,
                            const RestorePlan& plan) {
  constexpr size_t kBlock = kRestoreBlock / 2;
  uint8_t block[kRestoreBlock];
  for (size_t row = 0; row < strip.chroma_rows(); ++row) {
    const size_t at = row * strip.pairs();
    for (size_t k = 0; k < strip.pairs(); k += kBlock) {
      const size_t count = strip.pairs() - k < kBlock ? strip.pairs() - k : kBlock;
      std::memcpy(block, in + row * strip.width + 2 * k, 2 * count);
      restore_chroma_row(block, u + at + k, v + at + k, count, plan);
      split_to_half(block, mfd_u + row * mfd_width + k, mfd_v + row * mfd_width + k, count);
    }
  }
}

}  // namespace

void restore_interleave_yuv420_neon(const uint8_t* y_in, const uint8_t* uv_in, const uint8_t* y_low,
                                    const uint8_t* y_high, const uint8_t* upsampled_u,
                                    const uint8_t* upsampled_v, int32_t width, int32_t rows,
                                    uint8_t* y_out, uint8_t* uv_out,
                                    const struct interleaving_tuning* tuning) {
  if (tuning->d_Y_upper_thresh == 0 || tuning->d_UV_thresh == 0) return;
  const Strip strip = make_strip(width, rows);
  const RestorePlan plan(*tuning);
  restore_luma(y_in, y_low, y_high, strip, y_out, plan);
  restore_chroma(uv_in, upsampled_u, upsampled_v, strip, uv_out, plan);
}

void restore_interleave_yuv420_mfd_uv_neon(const uint8_t* y_in, const uint8_t* uv_in,
                                           const uint8_t* y_low, const uint8_t* y_high,
                                           const uint8_t* upsampled_u, const uint8_t* upsampled_v,
                                           int32_t width, int32_t rows, uint8_t* y_out,
                                           _Float16* mfd_u, _Float16* mfd_v, int32_t mfd_width,
                                           const struct interleaving_tuning* tuning) {
  if (tuning->d_Y_upper_thresh == 0 || tuning->d_UV_thresh == 0) return;
  const Strip strip = make_strip(width, rows);
  const RestorePlan plan(*tuning);
  restore_luma(y_in, y_low, y_high, strip, y_out, plan);
  restore_chroma_to_half(uv_in, upsampled_u, upsampled_v, strip, mfd_u, mfd_v,
                         static_cast<size_t>(mfd_width), plan);
}

void restore_interleave_uv420_neon(const uint8_t*, const uint8_t* uv_in, const uint8_t*,
                                   const uint8_t*, const uint8_t* upsampled_u,
                                   const uint8_t* upsampled_v, int32_t width, int32_t rows,
                                   uint8_t* uv_out, const struct interleaving_tuning* tuning) {
  if (tuning->d_UV_thresh == 0) return;
  const RestorePlan plan(*tuning);
  restore_chroma(uv_in, upsampled_u, upsampled_v, make_strip(width, rows), uv_out, plan);
}

void* restore_interleave_yuv420(void* job) {
  const interleave_job& strip = *static_cast<const interleave_job*>(job);
  if (strip.uv_out != nullptr) {
    restore_interleave_yuv420_neon(strip.y_in, strip.uv_in, strip.y_low, strip.y_high,
                                   strip.upsampled_u, strip.upsampled_v, strip.width, strip.rows,
                                   strip.y_out, strip.uv_out, strip.tuning);
  } else {
    restore_interleave_yuv420_mfd_uv_neon(strip.y_in, strip.uv_in, strip.y_low, strip.y_high,
                                          strip.upsampled_u, strip.upsampled_v, strip.width,
                                          strip.rows, strip.y_out, strip.mfd_u, strip.mfd_v,
                                          strip.mfd_width, strip.tuning);
  }
  return nullptr;
}
