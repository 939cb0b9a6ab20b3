// The exported functions of plane conversion. Each fills a record and goes in; nothing inside calls
// them.
#include "convert/deinterleave.h"
#include "convert/restore_strip.h"
#include "convert/upsample.h"
#include "vorel/convert.h"

void* deinterleave_yuv420_uv_downsample(void* job) {
  deinterleave_planar(*static_cast<const deinterleave_job*>(job));
  return nullptr;
}

void* deinterleave_yuv422_uv_downsample(void* job) {
  deinterleave_packed(*static_cast<const deinterleave_job*>(job));
  return nullptr;
}

int deinterleave_yuv422_uv_downsample_neon(uint8_t* y, uint8_t* u, uint8_t* v, uint8_t* packed_in,
                                           int32_t width, int32_t rows, int32_t cols) {
  copy_packed_luma({packed_in, y, u, v, width, rows, cols});
  sample_packed_area({packed_in, y, u, v, width, rows, cols});
  return 0;
}

int deinterleave_yuv420_uv_downsample_neon(uint8_t* u, uint8_t* v, uint8_t* uv_in, int32_t cols,
                                           int32_t rows, int32_t width) {
  sample_planar_area({uv_in, nullptr, u, v, width, rows, cols});
  return 0;
}

int deinterleave_uv422_uv_downsample_neon(uint8_t*, uint8_t* u, uint8_t* v, uint8_t* packed_in,
                                          int32_t width, int32_t rows, int32_t cols) {
  sample_packed_area({packed_in, nullptr, u, v, width, rows, cols});
  return 0;
}

void* upsample_y(void* job) {
  upsample_plane(*static_cast<const upsample_job*>(job), Upsampling::k16x16);
  return nullptr;
}

void* upsample_uv420(void* job) {
  upsample_plane(*static_cast<const upsample_job*>(job), Upsampling::k8x8);
  return nullptr;
}

void* upsample_uv422(void* job) {
  upsample_plane(*static_cast<const upsample_job*>(job), Upsampling::k8x16);
  return nullptr;
}

int upsample_y_neon(uint8_t* dst, uint8_t* src, int32_t cols, int32_t rows) {
  upsample_plane({src, dst, cols, rows, cols}, Upsampling::k16x16);
  return 0;
}

int upsample_uv420_neon(uint8_t* dst, uint8_t* src, int32_t cols, int32_t rows, int32_t n) {
  upsample_plane({src, dst, cols, rows, n}, Upsampling::k8x8);
  return 0;
}

int upsample_uv_neon(uint8_t* dst, uint8_t* src, int32_t cols, int32_t rows, int32_t n) {
  upsample_plane({src, dst, cols, rows, n}, Upsampling::k8x16);
  return 0;
}

int y_upsample(uint8_t* dst, uint8_t* src, int32_t rows, int32_t cols) {
  upsample_plane({src, dst, cols, rows, cols}, Upsampling::k16x16);
  return 0;
}

int uv_upsample(uint8_t* src, uint8_t* dst, int32_t rows, int32_t cols) {
  upsample_plane({src, dst, cols, rows, cols}, Upsampling::k8x16);
  return 0;
}

void* restore_interleave_yuv420(void* job) {
  restore_planar_strip(*static_cast<const interleave_job*>(job));
  return nullptr;
}

void* restore_interleave_yuv422(void* job) {
  restore_packed_strip(*static_cast<const interleave_job*>(job));
  return nullptr;
}

void restore_interleave_yuv420_neon(uint8_t* y_in, uint8_t* uv_in, uint8_t* y_low, uint8_t* y_high,
                                    uint8_t* upsampled_u, uint8_t* upsampled_v, int32_t width,
                                    int32_t rows, uint8_t* y_out, uint8_t* uv_out,
                                    struct interleaving_tuning* tuning) {
  interleave_job strip{};
  strip.width = width;
  strip.rows = rows;
  strip.y_low = y_low;
  strip.y_high = y_high;
  strip.upsampled_u = upsampled_u;
  strip.upsampled_v = upsampled_v;
  strip.y_in = y_in;
  strip.uv_in = uv_in;
  strip.y_out = y_out;
  strip.uv_out = uv_out;
  strip.tuning = tuning;
  restore_planar_strip(strip);
}

void restore_interleave_yuv420_mfd_uv_neon(uint8_t* y_in, uint8_t* uv_in, uint8_t* y_low,
                                           uint8_t* y_high, uint8_t* upsampled_u,
                                           uint8_t* upsampled_v, int32_t width, int32_t rows,
                                           uint8_t* y_out, _Float16* mfd_u, _Float16* mfd_v,
                                           int32_t mfd_width, struct interleaving_tuning* tuning) {
  interleave_job strip{};
  strip.width = width;
  strip.rows = rows;
  strip.y_low = y_low;
  strip.y_high = y_high;
  strip.upsampled_u = upsampled_u;
  strip.upsampled_v = upsampled_v;
  strip.y_in = y_in;
  strip.uv_in = uv_in;
  strip.y_out = y_out;
  strip.mfd_u = mfd_u;
  strip.mfd_v = mfd_v;
  strip.mfd_width = mfd_width;
  strip.tuning = tuning;
  restore_planar_strip(strip);
}

void restore_interleave_uv420_neon(uint8_t*, uint8_t* uv_in, uint8_t*, uint8_t*,
                                   uint8_t* upsampled_u, uint8_t* upsampled_v, int32_t width,
                                   int32_t rows, uint8_t* uv_out,
                                   struct interleaving_tuning* tuning) {
  interleave_job strip{};
  strip.width = width;
  strip.rows = rows;
  strip.upsampled_u = upsampled_u;
  strip.upsampled_v = upsampled_v;
  strip.uv_in = uv_in;
  strip.uv_out = uv_out;
  strip.tuning = tuning;
  restore_planar_strip(strip);
}

void restore_interleave_yuv422_neon(uint8_t* packed, uint8_t* y_low, uint8_t* y_high,
                                    uint8_t* upsampled_u, uint8_t* upsampled_v, int32_t width,
                                    int32_t rows, struct interleaving_tuning* tuning) {
  interleave_job strip{};
  strip.width = width;
  strip.rows = rows;
  strip.y_low = y_low;
  strip.y_high = y_high;
  strip.upsampled_u = upsampled_u;
  strip.upsampled_v = upsampled_v;
  strip.packed = packed;
  strip.tuning = tuning;
  restore_packed_strip(strip);
}

void restore_interleave_uv422_neon(uint8_t* packed, uint8_t*, uint8_t*, uint8_t* upsampled_u,
                                   uint8_t* upsampled_v, int32_t width, int32_t rows,
                                   struct interleaving_tuning* tuning) {
  interleave_job strip{};
  strip.width = width;
  strip.rows = rows;
  strip.upsampled_u = upsampled_u;
  strip.upsampled_v = upsampled_v;
  strip.packed = packed;
  strip.tuning = tuning;
  restore_packed_strip(strip);
}
