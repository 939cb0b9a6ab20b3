// Shrinkage of coefficients by the book.
#ifndef VOREL_TESTS_WAVELET_PLAIN_SHRINKAGE_H_
#define VOREL_TESTS_WAVELET_PLAIN_SHRINKAGE_H_

#include <vector>

#include "tests/wavelet/plain_half.h"

inline PlainHalf square(PlainHalf value) { return value * value; }

inline PlainHalf plain_shrink(PlainHalf v, PlainHalf thr, PlainHalf m, PlainHalf S) {
  const PlainHalf t = thr / (S * S);
  const PlainHalf u = v / S;
  const PlainHalf power = square(u);
  if (power.value == 0) return 0.0;
  return (S * u) * (power / (t * m + power));
}

inline PlainHalf plain_multiplier(int x, int y, PlainHalf A, PlainHalf B, int cx, int cy) {
  if (A.value == 0) return 1.0;
  const PlainHalf unit = PlainHalf(double(cx)) / PlainHalf(100.0);
  const PlainHalf corner =
      square(PlainHalf(double(cx)) / unit) + square(PlainHalf(double(cy)) / unit);
  const PlainHalf distance =
      square(PlainHalf(double(x)) / unit) + square(PlainHalf(double(y)) / unit);
  const PlainHalf growth = PlainHalf(3.0) * A / corner * distance;
  return (growth.value < B.value ? growth : B) + PlainHalf(1.0);
}

inline std::vector<_Float16> shrink_plainly(std::vector<_Float16> data, _Float16 thr, _Float16 A,
                                            _Float16 B, int rows, int cols, int step, _Float16 S) {
  const int cx = step * cols / 2;
  const int cy = step * rows / 2;
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; c < cols; ++c) {
      _Float16& v = data[static_cast<size_t>(r * cols + c)];
      const PlainHalf m = plain_multiplier(c * step + 1 - cx, r * step + 1 - cy, A, B, cx, cy);
      v = plain_shrink(v, thr, m, S);
    }
  }
  return data;
}

#endif  // VOREL_TESTS_WAVELET_PLAIN_SHRINKAGE_H_
