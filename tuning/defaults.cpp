#include "tuning/keys.h"
#include "tuning/tuning.h"

namespace {

// Taps of the box filter: 1 << 4. Kept: no file sets it.
constexpr int32_t kBoxFilterTabBit = 4;

void set_ints(const tuning_key& key, cnr_tuning* tuning) {
  for (int32_t i = 0; i < key.count; ++i) {
    int_field(tuning, key.field)[i] = static_cast<int32_t>(default_value(key, i));
  }
  const int32_t first = static_cast<int32_t>(default_value(key, 0));
  if (key.second_field != kNoField) *int_field(tuning, key.second_field) = first;
  if (key.current != kNoField) *int_field(tuning, key.current) = first;
  if (key.count_field != kNoField) *int_field(tuning, key.count_field) = key.count;
}

void set_reals(const tuning_key& key, cnr_tuning* tuning) {
  for (int32_t i = 0; i < key.count; ++i) {
    real_field(tuning, key.field)[i] = static_cast<float>(default_value(key, i));
  }
}

}  // namespace

void set_default_tuning(cnr_tuning* tuning) {
  tuning->boxfiltering_tuning.tab_bit = kBoxFilterTabBit;
  for (const tuning_key& key : tuning_keys()) {
    switch (key.type) {
      case key_type::kText:
        break;
      case key_type::kFlag:
      case key_type::kInt:
        set_ints(key, tuning);
        break;
      case key_type::kReal:
        set_reals(key, tuning);
        break;
    }
  }
}
