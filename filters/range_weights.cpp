#include "filters/range_weights.h"

#include <algorithm>

namespace {

constexpr int32_t kGroup = 16;
constexpr int32_t kStoredWeights = 16;

// Cuts the weights of the differences 0..largest, at most 255, into tables. False when there are
// more than fit.
bool cut_weights(const uint32_t* weights, int32_t largest, range_weights* out) {
  out->largest_difference = static_cast<uint8_t>(largest);
  for (int32_t first = 0; first <= largest; first += kGroup) {
    const int32_t end = std::min(first + kGroup, largest + 1);
    for (uint32_t shift = 0; shift < 32; shift += 8) {
      weight_table table{};
      table.first_difference = static_cast<uint8_t>(first);
      table.shift = static_cast<uint8_t>(shift);
      uint8_t any = 0;
      for (int32_t difference = first; difference < end; ++difference) {
        const uint8_t entry = static_cast<uint8_t>(weights[difference] >> shift);
        table.entries[difference - first] = entry;
        any |= entry;
      }
      if (any == 0) continue;
      if (out->table_count == kMostTables) return false;
      out->tables[out->table_count++] = table;
    }
  }
  return true;
}

}  // namespace

range_weights polynomial_weights(const bilateralfiltering_tuning& tuning) {
  range_weights range;
  uint32_t weights[256];
  const int32_t largest = std::clamp(tuning.val_delta_th, 0, 255);
  for (int32_t difference = 0; difference <= largest; ++difference) {
    weights[difference] = static_cast<uint32_t>(polynomial_weight(tuning, difference));
  }
  if (!cut_weights(weights, largest, &range)) {
    range.polynomial = &tuning;
    range.table_count = 0;
  }
  return range;
}

range_weights stored_weights(const bilateralfiltering_tuning& tuning) {
  range_weights range;
  uint32_t weights[kStoredWeights + 1];
  const int32_t largest = std::clamp(tuning.val_delta_th, 0, kStoredWeights);
  for (int32_t difference = 0; difference <= largest; ++difference) {
    const int32_t index = std::min(difference, tuning.val_delta_th);
    const bool stored = index >= 0 && index < kStoredWeights;
    weights[difference] = stored ? static_cast<uint8_t>(tuning.val_weight[index]) : 0;
  }
  static_assert(kMostTables >= 2);  // one byte of up to 17 weights
  static_cast<void>(cut_weights(weights, largest, &range));
  return range;
}
