#include <cstdio>

#include "platform/log.h"
#include "tuning/keys.h"
#include "tuning/tuning.h"
#include "tuning/used_object.h"

namespace {

// Finds the object that counts. A root of the wrong shape is logged, loses a reference and gives
// false.
bool find_used_object(json_t* root, const json_t*& used) {
  if (!json_is_array(root)) {
    VOREL_LOGE("Error loading JSON: root is not an array");
    json_decref(root);
    return false;
  }
  const size_t bad = first_non_object(root);
  if (bad < json_array_size(root)) {
    VOREL_LOGE("error: Json %d is not an object", static_cast<int>(bad + 1));
    json_decref(root);
    return false;
  }
  used = used_object(root);
  return true;
}

// Values of another kind read as 0; integers are cut to 32 bits.
void store(const tuning_key& key, int32_t index, const json_t* value, cnr_tuning* tuning) {
  if (key.type == key_type::kReal) {
    real_field(tuning, key.field)[index] = static_cast<float>(json_real_value(value));
    return;
  }
  const json_int_t number = json_integer_value(value);
  const int32_t stored =
      key.type == key_type::kFlag ? (number != 0 ? 1 : 0) : static_cast<int32_t>(number);
  int_field(tuning, key.field)[index] = stored;
  if (key.second_field != kNoField) int_field(tuning, key.second_field)[index] = stored;
}

// Returns the number of values stored.
int32_t store_array(const tuning_key& key, const json_t* array, cnr_tuning* tuning) {
  for (int32_t i = 0; i < key.count; ++i) {
    const json_t* element = json_array_get(array, static_cast<size_t>(i));
    if (element == nullptr) return i;
    store(key, i, element, tuning);
  }
  return key.count;
}

void decode_key(const tuning_key& key, const json_t* object, cnr_tuning* tuning) {
  const json_t* holder = key.section != nullptr ? json_object_get(object, key.section) : object;
  const json_t* value = json_object_get(holder, key.name);
  if (value == nullptr) return;
  if (key.count == 1) {
    store(key, 0, value, tuning);
    return;
  }
  const int32_t stored = store_array(key, value, tuning);
  if (key.count_field != kNoField) *int_field(tuning, key.count_field) = stored;
}

}  // namespace

void getTuningVersions(json_t* root, char* dst) {
  const json_t* used = nullptr;
  if (!find_used_object(root, used)) return;
  const json_t* section = json_object_get(used, kVersionSection);
  if (section == nullptr) {
    VOREL_LOGE("pTuningVersion is NULL");
    return;
  }
  const json_t* date = json_object_get(section, kVersionName);
  if (date == nullptr) {
    VOREL_LOGE("Date is NULL");
    return;
  }
  const char* text = json_string_value(date);  // null when it is no string
  std::snprintf(dst, kTuningVersionSize, "%s", text != nullptr ? text : "");
}

void decodeJson(json_t* root, cnr_tuning* tuning) {
  const json_t* used = nullptr;
  if (!find_used_object(root, used)) return;
  for (const tuning_key& key : tuning_keys()) {
    if (key.type != key_type::kText) decode_key(key, used, tuning);
  }
}
