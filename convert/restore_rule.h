// The restore step for one sample.
//
// Luma and chroma are weighted means (weight * input + (total - weight) * filtered) / total. The
// sum wraps at 16 bits, the quotient is taken in single precision and rounded half up; totals are
// thresholds from a tuning file and may be any number but 0. The rules named wide hold for every
// threshold. Up to kMaxNarrowTotal nothing wraps, and the mean is exact in 16-bit integers: then
// the mean is the input plus a step that depends on the difference alone.
#ifndef VOREL_CONVERT_RESTORE_RULE_H_
#define VOREL_CONVERT_RESTORE_RULE_H_

#include <cstddef>
#include <cstdint>

#include "platform/numeric.h"
#include "platform/wraps.h"
#include "vorel/tuning.h"

// Bytes that a row is worked on at a time; every block buffer stays in the first-level cache.
inline constexpr size_t kRestoreBlock = 1024;

// 128 * 255 = 32640 fits the signed 16-bit sum.
inline constexpr int32_t kMaxNarrowTotal = 128;

// Division by a total of 1..kMaxNarrowTotal as a multiplication.
//
// The sum is brought to a divisor of 65..128 by a power of two (`scale`), multiplied with 2^22
// divided by that divisor and rounded up (32768..64528), and shifted down by 22. A scaled sum is at
// most 128 * 255 + 64 < 2^15 and the multiplier less than 1 too large, so the quotient is less than
// 2^15 / 2^22 = 1/128 too large, which truncation takes away: a quotient's fraction is at most
// 1 - 1/total.
struct mean_divisor {
  uint8_t total;
  uint8_t half;  // rounds half up
  uint16_t scale;
  // The same number throughout: only with both factors loaded as 16-bit lanes does the product's
  // upper half become one instruction on x86-64.
  uint16_t multiplier[kRestoreBlock];
};

// `weight` is 0..total.
inline uint16_t scaled_sum(uint8_t weight, uint8_t input, uint8_t filtered, uint8_t total,
                           uint8_t half, uint16_t scale) {
  const uint8_t rest = static_cast<uint8_t>(total - weight);
  return static_cast<uint16_t>((weight * input + rest * filtered + half) * scale);
}

inline uint16_t upper_half(uint16_t a, uint16_t b) {
  return static_cast<uint16_t>((static_cast<uint32_t>(a) * b) >> 16);
}

inline uint8_t absolute_difference(uint8_t a, uint8_t b) {
  const uint8_t larger = a > b ? a : b;
  const uint8_t smaller = a > b ? b : a;
  return static_cast<uint8_t>(larger - smaller);
}

// Low pass plus residue, which is stored with an offset of 128. Written with the offset taken off
// both, which clang knows as a saturating addition.
inline uint8_t rebuild_luma(uint8_t low, uint8_t high) {
  const int sum = static_cast<int8_t>(low ^ 0x80) + static_cast<int8_t>(high ^ 0x80);
  const int8_t clamped = static_cast<int8_t>(sum < -128 ? -128 : sum > 127 ? 127 : sum);
  return static_cast<uint8_t>(clamped ^ 0x80);
}

// The input's weight. Small differences keep the input, and so do those from `upper` on.
inline uint8_t luma_weight(uint8_t input, uint8_t rebuilt, uint8_t upper, uint8_t lower) {
  const uint8_t difference = absolute_difference(input, rebuilt);
  const uint8_t distance = difference < upper ? difference : upper;
  return distance > lower ? distance : upper;
}

// The input's weight from the pair's saturation |c1 - 128| + |c2 - 128| and its distance
// |c1 - p1| + |c2 - p2| from the filtered pair: 64 * distance / saturation, rounded, 0..total. The
// thresholds bound the saturation, the upper one last; a bound saturation of 0 or less gives 0.
//
// Exact for all thresholds: while the quotient can reach 1 (a saturation up to 2 * 64 * 510) both
// numbers are below 2^17, and a quotient of such numbers never rounds up to an integer that it does
// not reach; from there on it stays below 1.
inline int32_t chroma_weight(int32_t saturation, int32_t distance, int32_t lower, int32_t upper,
                             float total) {
  const int32_t raised = saturation > lower ? saturation : lower;
  const int32_t scale = raised < upper ? raised : upper;
  const float quotient =
      static_cast<float>(64 * distance + (scale >> 1)) / static_cast<float>(scale);
  // Selected before the conversion: a quotient by 0 need not fit an integer.
  const float bounded = quotient < total ? quotient : total;
  return static_cast<int32_t>(scale > 0 ? bounded : 0.0f);
}

// The mean for any total. The sum is at most 32768 in size, so the quotient fits 32 bits.
VOREL_WRAPS inline int32_t wide_mean(int32_t weight, uint8_t input, uint8_t filtered,
                                     int32_t total) {
  const uint32_t rest = static_cast<uint32_t>(total) - static_cast<uint32_t>(weight);
  const uint32_t sum = static_cast<uint32_t>(weight) * input + rest * filtered;
  const float signed_sum = static_cast<float>(static_cast<int16_t>(sum));
  return static_cast<int32_t>(signed_sum / static_cast<float>(total) + 0.5f);
}

inline uint8_t restore_luma_wide(uint8_t input, uint8_t low, uint8_t high, int32_t upper,
                                 int32_t lower) {
  const uint8_t rebuilt = rebuild_luma(low, high);
  const int32_t difference = absolute_difference(input, rebuilt);
  const int32_t distance = difference < upper ? difference : upper;
  const int32_t mean = wide_mean(distance, input, rebuilt, upper);
  return distance > lower ? static_cast<uint8_t>(mean) : input;
}

inline uint8_t restore_chroma_wide(int32_t weight, uint8_t input, uint8_t filtered, int32_t total) {
  const uint8_t mean = clamp_u8(wide_mean(weight, input, filtered, total));
  return weight == 0 ? filtered : weight == total ? input : mean;
}

#endif  // VOREL_CONVERT_RESTORE_RULE_H_
