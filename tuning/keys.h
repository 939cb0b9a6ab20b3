// The table of every key of a tuning file. Defaults, loader, selection and checker read it: a new
// key is a new line.
#ifndef VOREL_TUNING_KEYS_H_
#define VOREL_TUNING_KEYS_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "vorel/tuning.h"

enum class key_type {
  kText,
  kFlag,  // integer; stored as 0 or 1
  kInt,
  kReal,
};

// Built-in values. The last one stands for those that are not written out.
struct tuning_defaults {
  int32_t count;
  double values[kNoiseLevels];
};

inline constexpr size_t kNoField = SIZE_MAX;

// Fields are byte offsets in cnr_tuning, kNoField where there is none.
struct tuning_key {
  const char* section;  // object that holds the key; null for the top level
  const char* name;
  key_type type;
  int32_t count;  // most values that are read; a key with 1 is no array
  tuning_defaults defaults;
  size_t field;         // first value
  size_t second_field;  // gets the same value
  size_t current;       // per-level tables: value of the current frame
  size_t count_field;   // gets the number of values read
};

// In the order in which a file is read.
[[nodiscard]] std::span<const tuning_key> tuning_keys();

// The file's version, the only key that is no part of the tuning.
inline constexpr char kVersionSection[] = "CNRTuningSetfile";
inline constexpr char kVersionName[] = "Date";

[[nodiscard]] inline double default_value(const tuning_key& key, int32_t index) {
  const int32_t last = key.defaults.count - 1;
  return key.defaults.values[index < last ? index : last];
}

// Fields by offset.
[[nodiscard]] inline int32_t* int_field(cnr_tuning* tuning, size_t offset) {
  return reinterpret_cast<int32_t*>(reinterpret_cast<char*>(tuning) + offset);
}
[[nodiscard]] inline float* real_field(cnr_tuning* tuning, size_t offset) {
  return reinterpret_cast<float*>(reinterpret_cast<char*>(tuning) + offset);
}

#endif  // VOREL_TUNING_KEYS_H_
