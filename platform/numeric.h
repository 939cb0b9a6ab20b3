// Number conversions with one meaning on every machine.
#ifndef VOREL_PLATFORM_NUMERIC_H_
#define VOREL_PLATFORM_NUMERIC_H_

#include <cstdint>

// Truncates toward zero as Arm's fcvtzs does: out-of-range values saturate, not-a-number gives 0.
// Written as selects so that loops over it vectorise on every target.
inline int32_t float_to_int32(float value) {
  // 2147483520 is the largest float below 2^31; from 2^31 on the result is the largest int32.
  const float bounded = value < 2147483520.0f ? value : 2147483520.0f;
  const float in_range = bounded > -2147483648.0f ? bounded : -2147483648.0f;
  const int32_t truncated = static_cast<int32_t>(value == value ? in_range : 0.0f);
  return value >= 2147483648.0f ? INT32_MAX : truncated;
}

// The same for double precision; not made for loops.
inline int32_t double_to_int32(double value) {
  if (value != value) return 0;
  if (value >= 2147483647.0) return INT32_MAX;
  if (value <= -2147483648.0) return INT32_MIN;
  return static_cast<int32_t>(value);
}

inline uint8_t clamp_u8(int32_t value) {
  return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

#endif  // VOREL_PLATFORM_NUMERIC_H_
