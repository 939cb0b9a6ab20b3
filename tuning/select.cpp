#include <algorithm>

#include "platform/numeric.h"
#include "platform/wraps.h"
#include "tuning/keys.h"
#include "tuning/tuning.h"

namespace {

// Where a noise index lies: between two levels, `fraction` of the way from the lower one.
struct position {
  int32_t lower;
  int32_t upper;
  double fraction;
};

position locate(const cnr_tuning* tuning, int noise_index) {
  const int count = std::min(tuning->NILevelNum, kNoiseLevels);
  const uint64_t indices = get_indices(noise_index, tuning->NILevel, count);
  const int32_t lower = static_cast<int32_t>(indices & 0xFFFFFFFF);
  const int32_t upper = static_cast<int32_t>(indices >> 32);
  const double from = tuning->NILevel[lower];
  const double distance = tuning->NILevel[upper] - from;
  return {lower, upper, (noise_index - from) / std::max(distance, 1.0)};
}

// Two roundings, one for the product and one for the sum. The difference wraps in 32 bits.
VOREL_WRAPS int32_t interpolate(int32_t lower, int32_t upper, double fraction) {
  const int32_t difference =
      static_cast<int32_t>(static_cast<uint32_t>(upper) - static_cast<uint32_t>(lower));
  const double step = fraction * difference;
  return double_to_int32(step + lower);
}

// The difference is rounded to single precision, the rest is computed in double precision.
float interpolate(float lower, float upper, double fraction) {
  const float difference = upper - lower;
  const double step = fraction * static_cast<double>(difference);
  return static_cast<float>(step + static_cast<double>(lower));
}

// On a level its own value, even an infinite one, which cannot be interpolated.
template <typename Value>
Value value_at(const Value* table, const position& at) {
  const Value lower = table[at.lower];
  return at.fraction == 0.0 ? lower : interpolate(lower, table[at.upper], at.fraction);
}

}  // namespace

uint64_t get_indices(int value, const int* table, int count) {
  uint32_t lower = 0;
  uint32_t upper = 0;
  if (table[0] < value) {
    upper = static_cast<uint32_t>(std::max(count, 1)) - 1;
    if (table[upper] <= value) lower = upper;
  }
  while (lower + 1 < upper) {
    const uint32_t middle = (lower + upper) / 2;
    if (table[middle] == value) {
      lower = upper = middle;
    } else if (table[middle] < value) {
      lower = middle;
    } else {
      upper = middle;
    }
  }
  return static_cast<uint64_t>(upper) << 32 | lower;
}

void select_tuning(cnr_tuning* tuning, int noiseIndex) {
  const position at = locate(tuning, noiseIndex);
  for (const tuning_key& key : tuning_keys()) {
    if (key.current == kNoField) continue;
    if (key.type == key_type::kReal) {
      *real_field(tuning, key.current) = value_at(real_field(tuning, key.field), at);
    } else {
      *int_field(tuning, key.current) = value_at(int_field(tuning, key.field), at);
    }
  }
}
