// Weights of the bilateral filter for differences in value, as the tables that the filter reads.
#ifndef VOREL_FILTERS_RANGE_WEIGHTS_H_
#define VOREL_FILTERS_RANGE_WEIGHTS_H_

#include <cstdint>

#include "platform/vectorize.h"
#include "platform/wraps.h"
#include "vorel/tuning.h"

// Weight of an absolute difference from the polynomial in min(difference, val_delta_th). Sums and
// products wrap in 32 bits, so any coefficients are legal.
VOREL_WRAPS inline int32_t polynomial_weight(const bilateralfiltering_tuning& tuning,
                                             int32_t difference) {
  const int32_t clamped = difference < tuning.val_delta_th ? difference : tuning.val_delta_th;
  const uint32_t x = static_cast<uint32_t>(clamped);
  uint32_t value = static_cast<uint32_t>(tuning.val_weight_coef[4]);
  VOREL_UNROLL
  for (int power = 3; power >= 0; --power) {
    value = value * x + static_cast<uint32_t>(tuning.val_weight_coef[power]);
  }
  return static_cast<int32_t>(value) >> (tuning.val_weight_denom_shift & 31);
}

// One look-up of the filter: one byte of the weights of 16 neighbouring differences.
struct weight_table {
  uint8_t entries[16];
  uint8_t first_difference;
  uint8_t shift;  // place of the byte in the weight: 0, 8, 16 or 24
};

// A weight is the sum of its four bytes, each shifted to its place, and a difference lies in one
// group of 16. As the filter's sums wrap in 32 bits, adding up what each table gives is exact for
// any weights. Tables of zeros are left out: ordinary tuning needs one table. Weights that need
// more than kMostTables have no tables; they cost less as the polynomial, for each sample anew.
inline constexpr int32_t kMostTables = 3;

struct range_weights {
  const bilateralfiltering_tuning* polynomial = nullptr;  // the caller's; null: the tables hold
  uint8_t largest_difference = 0;                         // larger differences weigh the same
  int32_t table_count = 0;
  weight_table tables[kMostTables];
};

// Range weights from the polynomial, for any tuning, which must outlive them.
range_weights polynomial_weights(const bilateralfiltering_tuning& tuning);

// Range weights from the low bytes of `val_weight`; 0 where min(difference, val_delta_th) is no
// index of it.
range_weights stored_weights(const bilateralfiltering_tuning& tuning);

#endif  // VOREL_FILTERS_RANGE_WEIGHTS_H_
