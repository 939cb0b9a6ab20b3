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
struct LumaSteps {
  static constexpr int32_t kSteps = 16;
  uint8_t up[kSteps];
  uint8_t down[kSteps];
};

// Thresholds made ready for a kernel call.
struct RestorePlan {
  explicit RestorePlan(const interleaving_tuning& tuning);

  const interleaving_tuning& tuning;
  bool stepped_luma;   // `steps` is set
  bool narrow_luma;    // `luma` and `luma_lower` are set
  bool narrow_chroma;  // `chroma`, `scale_lower` and `scale_upper` are set
  uint8_t luma_lower;
  uint16_t scale_lower;
  uint16_t scale_upper;
  LumaSteps steps;
  MeanDivisor luma;
  MeanDivisor chroma;
};

void restore_luma_row(uint8_t* luma, const uint8_t* low, const uint8_t* high, size_t width,
                      const RestorePlan& plan);

// `pairs` holds `count` byte pairs; their first bytes go with `u`, their second ones with `v`.
void restore_chroma_row(uint8_t* pairs, const uint8_t* u, const uint8_t* v, size_t count,
                        const RestorePlan& plan);

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
