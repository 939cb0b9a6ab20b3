// Saturation step: half-precision chroma back to interleaved bytes.
#ifndef VOREL_WAVELET_KERNELS_SATURATION_ROWS_H_
#define VOREL_WAVELET_KERNELS_SATURATION_ROWS_H_

#include <cstdint>

// Percentages by which chroma is strengthened: `param1` beyond `thr1` (distance from neutral of the
// stronger of both samples), `param2` up to `thr2`, a ramp between them when thr2 < thr1.
struct saturation_curve {
  _Float16 param1;
  _Float16 param2;
  _Float16 thr1;
  _Float16 thr2;
};

// Writes `width` byte pairs: with u = sample - 128 and the gain G = 1 + percentage / 100, each byte
// is (u * G + 128) + 0.5, every operation rounded to half precision, clamped to 0..255 and
// truncated. A sample that is not a number gives 0 and does not count for its partner's gain.
void saturate_row(const saturation_curve& curve, const _Float16* first, const _Float16* second,
                  uint8_t* pairs, int width);

// Adds 0.5 to `count` samples.
void add_half_row(_Float16* samples, int count);

#endif  // VOREL_WAVELET_KERNELS_SATURATION_ROWS_H_
