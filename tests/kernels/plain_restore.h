// The restore step's rule, pixel by pixel in 64-bit integers.
#ifndef VOREL_TESTS_KERNELS_PLAIN_RESTORE_H_
#define VOREL_TESTS_KERNELS_PLAIN_RESTORE_H_

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "vorel/tuning.h"

inline int64_t plain_rounded_mean(int64_t weight, int64_t input, int64_t filtered, int64_t total) {
  const uint64_t sum = static_cast<uint64_t>(weight * input + (total - weight) * filtered);
  const float quotient = static_cast<float>(static_cast<int16_t>(sum & 0xFFFF)) /
                         static_cast<float>(static_cast<int32_t>(total));
  return static_cast<int64_t>(quotient + 0.5f);
}

inline uint8_t plain_luma(int input, int low, int high, const interleaving_tuning& t) {
  const int rebuilt = std::clamp(low + high - 128, 0, 255);
  const int64_t distance = std::min<int64_t>(std::abs(rebuilt - input), t.d_Y_upper_thresh);
  if (distance <= t.d_Y_lower_thresh) return static_cast<uint8_t>(input);
  return static_cast<uint8_t>(plain_rounded_mean(distance, input, rebuilt, t.d_Y_upper_thresh) &
                              0xFF);
}

struct PlainPair {
  uint8_t first, second;
};

inline PlainPair plain_chroma(PlainPair c, PlainPair p, const interleaving_tuning& t) {
  int64_t s = std::abs(c.first - 128) + std::abs(c.second - 128);
  if (s < t.cs_lower_thresh) s = t.cs_lower_thresh;
  if (s > t.cs_upper_thresh) s = t.cs_upper_thresh;
  const int64_t e = std::abs(c.first - p.first) + std::abs(c.second - p.second);
  int64_t a = s == 0 ? 0 : (64 * e + s / 2) / s;
  if (a < 0) a = 0;
  if (a > t.d_UV_thresh) a = t.d_UV_thresh;
  if (a == 0) return p;
  if (a == t.d_UV_thresh) return c;
  const auto blend = [&](int input, int filtered) {
    return static_cast<uint8_t>(
        std::clamp<int64_t>(plain_rounded_mean(a, input, filtered, t.d_UV_thresh), 0, 255));
  };
  return {blend(c.first, p.first), blend(c.second, p.second)};
}

#endif  // VOREL_TESTS_KERNELS_PLAIN_RESTORE_H_
