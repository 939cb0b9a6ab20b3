// The saturation step by the book.
#ifndef VOREL_TESTS_WAVELET_PLAIN_SATURATION_H_
#define VOREL_TESTS_WAVELET_PLAIN_SATURATION_H_

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/wavelet/plain_half.h"
#include "wavelet/kernels/saturation_rows.h"

struct Curve {
  float param1, param2, thr1, thr2;

  saturation_curve halves() const {
    return {static_cast<_Float16>(param1), static_cast<_Float16>(param2),
            static_cast<_Float16>(thr1), static_cast<_Float16>(thr2)};
  }
  std::string text() const {
    return std::to_string(param1) + ", " + std::to_string(param2) + ", " + std::to_string(thr1) +
           ", " + std::to_string(thr2);
  }
};

inline const Curve kCurves[] = {
    {0, 0, 65, 40},            // as without tuning: gain 1
    {40, 10, 65, 40},          // ramp from 40 to 65
    {-30, 55.5f, 65.25f, 40},  // falling
    {25, -100, 40, 65},        // thresholds the other way round: no ramp
    {25, 5, 50, 50},           // no room for a ramp: 0 to divide by
    {1000, 300, 10, 0.5f},     // far over the range
    {0, 0, 65504, -65504},     // a span that overflows
    {0, 0, 10, -40000},        // distances that overflow
    {0, 0, -40000, 10},        // the same by the other threshold, and both from above
    {0, 0, 65504, 10},        {0, 0, 10, 65504},       {0, 35, 65, 40},  // one percentage only
    {35, 0, 65, 40},          {33.3f, 12.1f, 100, -1},  // always on the ramp or above
};

inline PlainHalf plain_gain(const saturation_curve& curve, PlainHalf distance) {
  const PlainHalf p1 = curve.param1, p2 = curve.param2, t1 = curve.thr1, t2 = curve.thr2;
  PlainHalf percentage = p2;
  if (distance.value > t1.value) {
    percentage = p1;
  } else if (distance.value > t2.value) {
    percentage = (p1 * (t2 - distance) + p2 * (distance - t1)) / (t2 - t1);
  }
  return PlainHalf(1.0) + percentage / PlainHalf(100.0);
}

inline uint8_t plain_byte(PlainHalf offset, PlainHalf gain) {
  const double value = (offset * gain + PlainHalf(128.0) + PlainHalf(0.5)).value;
  return static_cast<uint8_t>(value > 0 ? std::min(value, 255.0) : 0);
}

inline std::vector<uint8_t> saturate_plainly(const Curve& curve, const std::vector<_Float16>& first,
                                             const std::vector<_Float16>& second) {
  std::vector<uint8_t> pairs;
  for (size_t i = 0; i < first.size(); ++i) {
    const PlainHalf u = PlainHalf(first[i]) - PlainHalf(128.0);
    const PlainHalf v = PlainHalf(second[i]) - PlainHalf(128.0);
    const PlainHalf distance = std::fmax(std::fabs(u.value), std::fabs(v.value));
    const PlainHalf gain = plain_gain(curve.halves(), distance);
    pairs.push_back(plain_byte(u, gain));
    pairs.push_back(plain_byte(v, gain));
  }
  return pairs;
}

#endif  // VOREL_TESTS_WAVELET_PLAIN_SATURATION_H_
