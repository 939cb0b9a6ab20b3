// The restore step along rows of luma and of chroma pairs, in place.
#ifndef VOREL_CONVERT_RESTORE_ROWS_H_
#define VOREL_CONVERT_RESTORE_ROWS_H_

#include <bit>
#include <cstddef>
#include <cstdint>

#include "convert/restore_rule.h"
#include "vorel/tuning.h"

// How far a luma sample moves, by what the rebuilt one exceeds it (`up`) or falls short of it
// (`down`, to be added too). From kSteps on the input stays.
struct luma_steps {
  static constexpr int32_t kSteps = 16;
  uint8_t up[kSteps];
  uint8_t down[kSteps];
};

// Division by a pair's bounded saturation where that takes few values, first..first + 15: the upper
// half of a product with 2^(16 + shift) / saturation, rounded up, shifted right by `shift`. Exact
// for quotients below kMaxNarrowTotal, and not below that for others.
struct saturation_divisors {
  static constexpr int32_t kValues = 16;
  static constexpr int32_t kLeast = 3;   // 2^shift is below the first saturation
  static constexpr int32_t kMost = 256;  // that two bytes reach
  uint16_t first;
  uint8_t shift;
  uint8_t low[kValues];  // bytes of each factor
  uint8_t high[kValues];
};

// Thresholds made ready for a kernel call.
struct restore_plan {
  explicit restore_plan(const interleaving_tuning& tuning);

  const interleaving_tuning& tuning;
  bool stepped_luma;   // `steps` is set
  bool narrow_luma;    // `luma` and `luma_lower` are set
  bool narrow_chroma;  // `chroma`, `divisors` and the bounds of the saturation are set
  uint8_t luma_lower;
  uint16_t saturation_lower;
  uint16_t saturation_upper;
  luma_steps steps;
  saturation_divisors divisors;
  mean_divisor luma;
  mean_divisor chroma;
};

void restore_luma_row(uint8_t* luma, const uint8_t* low, const uint8_t* high, size_t width,
                      const restore_plan& plan);

// `pairs` holds `count` byte pairs; their first bytes go with `u`, their second ones with `v`.
void restore_chroma_row(uint8_t* pairs, const uint8_t* u, const uint8_t* v, size_t count,
                        const restore_plan& plan);

// A byte pair as one 16-bit lane: the first byte is the low one. Walks over pairs need no shuffles.
// The built-in, because a fortified memcpy is a checked call that no loop vectorises over.
static_assert(std::endian::native == std::endian::little);
inline uint16_t load_pair(const uint8_t* pairs, size_t index) {
  uint16_t pair;
  __builtin_memcpy(&pair, pairs + 2 * index, sizeof(pair));
  return pair;
}
inline void store_pair(uint8_t* pairs, size_t index, uint16_t pair) {
  __builtin_memcpy(pairs + 2 * index, &pair, sizeof(pair));
}

#endif  // VOREL_CONVERT_RESTORE_ROWS_H_
