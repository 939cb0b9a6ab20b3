// Plane conversion: chroma downsampling by point sampling, bilinear upsampling, and restoring
// filtered planes into the frame.
//
// 4:2:0 chroma planes hold `width` bytes per row and height / 2 rows, as byte pairs; the first byte
// of each pair belongs to the plane called u, the second to v (V and U in colour terms for NV21).
// Packed 4:2:2 frames hold 2 * `width` bytes per row as Y0 U Y1 V.
//
// Each function says first whether a frame goes this way ("Frame:") or it is there for programs
// that call it ("Callers:"). A frame upsamples whole planes only for dumps; else its restore step
// makes the rows that it is about to need, by the same rule. Planes that a function only reads are
// not const in its type, so that its link name stays; they are not written.
#ifndef VOREL_CONVERT_H_
#define VOREL_CONVERT_H_

#include <cstdint>

#include "vorel/export.h"
#include "vorel/tuning.h"

/// Input and outputs of one downsampling; planes are described at each function.
struct deinterleave_job {
  uint64_t reserved[2];  // zero
  int32_t width;         // luma pixels
  int32_t height;
  uint8_t* y;  // packed input: luma copy, rows of `width` bytes, height rounded up to 16 rows
  uint8_t* u;  // (width >> 4) x ((height + 15) >> 4) samples
  uint8_t* v;
  const uint8_t* y_in;       // 4:2:0 luma, not read
  const uint8_t* uv_in;      // 4:2:0 chroma
  const uint8_t* packed_in;  // packed 4:2:2 frame
};

/// Frame, 4:2:0: stores the top-left chroma pair of every 16 x 16 luma block. A partial block row
/// at the bottom gives one more row (taken from the last chroma row where the plane has no row of
/// its own); a partial block column gives nothing. `job` is a `deinterleave_job`. Returns null.
VOREL_EXPORT void* deinterleave_yuv420_uv_downsample(void* job);

/// Callers: the same for packed 4:2:2, and copies the luma of the first (width & ~15) columns; rows
/// from `height` to the next multiple of 16 repeat the last row.
VOREL_EXPORT void* deinterleave_yuv422_uv_downsample(void* job);

/// Callers: whole blocks of a packed frame, luma copy and chroma samples of `rows` x `cols` luma
/// pixels (multiples of 16). Returns 0.
VOREL_EXPORT int deinterleave_yuv422_uv_downsample_neon(uint8_t* y, uint8_t* u, uint8_t* v,
                                                        uint8_t* packed_in, int32_t width,
                                                        int32_t rows, int32_t cols);

/// Callers: whole blocks of a 4:2:0 chroma plane. Returns 0.
VOREL_EXPORT int deinterleave_yuv420_uv_downsample_neon(uint8_t* u, uint8_t* v, uint8_t* uv_in,
                                                        int32_t cols, int32_t rows, int32_t width);

/// Callers: whole blocks of a packed frame, chroma only; `y` is ignored. Returns 0.
VOREL_EXPORT int deinterleave_uv422_uv_downsample_neon(uint8_t* y, uint8_t* u, uint8_t* v,
                                                       uint8_t* packed_in, int32_t width,
                                                       int32_t rows, int32_t cols);

/// One plane to upsample: `rows` x `cols` samples, dense, to a dense plane of the factor's size.
struct upsample_job {
  int32_t cols;
  int32_t rows;
  const uint8_t* src;
  uint8_t* dst;
};

/// Frame: luma, 16 x 16 outputs per sample. `job` is an `upsample_job`. Returns null.
/// In every upsampling output (V r, H c) equals sample (r, c), values between are the floor of the
/// bilinear value, and the last row and column are continued flat.
VOREL_EXPORT void* upsample_y(void* job);
/// Frame: 4:2:0 chroma, 8 across x 8 down.
VOREL_EXPORT void* upsample_uv420(void* job);
/// Callers: 4:2:2 chroma, 8 across x 16 down.
VOREL_EXPORT void* upsample_uv422(void* job);

/// Callers: upsampling without a record. The chroma forms cover the first `n` source columns, n
/// even. Return 0.
VOREL_EXPORT int upsample_y_neon(uint8_t* dst, uint8_t* src, int32_t cols, int32_t rows);
VOREL_EXPORT int upsample_uv420_neon(uint8_t* dst, uint8_t* src, int32_t cols, int32_t rows,
                                     int32_t n);
VOREL_EXPORT int upsample_uv_neon(uint8_t* dst, uint8_t* src, int32_t cols, int32_t rows,
                                  int32_t n);

/// Callers: the 16 x 16 and the 8 x 16 rule. Kept: the order of the first two
/// arguments differs between them. Return 0.
VOREL_EXPORT int y_upsample(uint8_t* dst, uint8_t* src, int32_t rows, int32_t cols);
VOREL_EXPORT int uv_upsample(uint8_t* src, uint8_t* dst, int32_t rows, int32_t cols);

/// One strip of the restore step; every plane pointer is at the strip's first row.
struct interleave_job {
  int32_t debug_mode;     // bookkeeping of the pipeline, not read by the kernels
  const char* dump_path;  // likewise
  int32_t width;          // luma pixels, a multiple of 16
  int32_t rows;           // luma rows of the strip
  const uint8_t* y_low;
  const uint8_t* y_high;
  const uint8_t* upsampled_u;  // width / 2 samples per row
  const uint8_t* upsampled_v;
  const uint8_t* y_in;
  const uint8_t* uv_in;
  uint8_t* packed;
  uint8_t* y_out;   // may equal y_in; null: no luma
  uint8_t* uv_out;  // may equal uv_in; null: chroma goes to mfd_u and mfd_v instead
  _Float16* mfd_u;  // `mfd_width` samples per row
  _Float16* mfd_v;
  int32_t mfd_width;
  uint32_t format;
  const struct interleaving_tuning* tuning;
};

/// Frame: job function, restores a 4:2:0 strip; `job` is an `interleave_job`. Returns null.
VOREL_EXPORT void* restore_interleave_yuv420(void* job);
/// Callers: the same for a packed strip.
VOREL_EXPORT void* restore_interleave_yuv422(void* job);

/// Callers: blends rebuilt luma (y_low + y_high - 128) and upsampled chroma into the frame.
/// Writes nothing when d_Y_upper_thresh or d_UV_thresh is 0 or `rows` is below 1. Covers rows / 2
/// chroma rows: the half row of an odd last luma row is left alone. Outputs may be the inputs.
VOREL_EXPORT void restore_interleave_yuv420_neon(uint8_t* y_in, uint8_t* uv_in, uint8_t* y_low,
                                                 uint8_t* y_high, uint8_t* upsampled_u,
                                                 uint8_t* upsampled_v, int32_t width, int32_t rows,
                                                 uint8_t* y_out, uint8_t* uv_out,
                                                 struct interleaving_tuning* tuning);

/// Callers: the same, but chroma goes to two half-precision planes as values 0..255.
VOREL_EXPORT void restore_interleave_yuv420_mfd_uv_neon(
    uint8_t* y_in, uint8_t* uv_in, uint8_t* y_low, uint8_t* y_high, uint8_t* upsampled_u,
    uint8_t* upsampled_v, int32_t width, int32_t rows, uint8_t* y_out, _Float16* mfd_u,
    _Float16* mfd_v, int32_t mfd_width, struct interleaving_tuning* tuning);

/// Callers: chroma only; the first, third and fourth argument are ignored and may be null.
VOREL_EXPORT void restore_interleave_uv420_neon(uint8_t* y_in, uint8_t* uv_in, uint8_t* y_low,
                                                uint8_t* y_high, uint8_t* upsampled_u,
                                                uint8_t* upsampled_v, int32_t width, int32_t rows,
                                                uint8_t* uv_out,
                                                struct interleaving_tuning* tuning);

/// Callers: packed 4:2:2, in place: every row carries width / 2 chroma pairs.
VOREL_EXPORT void restore_interleave_yuv422_neon(uint8_t* packed, uint8_t* y_low, uint8_t* y_high,
                                                 uint8_t* upsampled_u, uint8_t* upsampled_v,
                                                 int32_t width, int32_t rows,
                                                 struct interleaving_tuning* tuning);

/// Callers: packed 4:2:2, chroma only; y_low and y_high are ignored and may be null.
VOREL_EXPORT void restore_interleave_uv422_neon(uint8_t* packed, uint8_t* y_low, uint8_t* y_high,
                                                uint8_t* upsampled_u, uint8_t* upsampled_v,
                                                int32_t width, int32_t rows,
                                                struct interleaving_tuning* tuning);

#endif  // VOREL_CONVERT_H_
