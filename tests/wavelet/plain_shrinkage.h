// Shrinkage of one coefficient by the book.
#ifndef VOREL_TESTS_WAVELET_PLAIN_SHRINKAGE_H_
#define VOREL_TESTS_WAVELET_PLAIN_SHRINKAGE_H_

#include "tests/wavelet/plain_half.h"

inline PlainHalf square(PlainHalf value) { return value * value; }

inline PlainHalf plain_shrink(PlainHalf v, PlainHalf thr, PlainHalf m, PlainHalf S) {
  const PlainHalf t = thr / (S * S);
  const PlainHalf u = v / S;
  const PlainHalf power = square(u);
  if (power.value == 0) return 0.0;
  return (S * u) * (power / (t * m + power));
}

#endif  // VOREL_TESTS_WAVELET_PLAIN_SHRINKAGE_H_
