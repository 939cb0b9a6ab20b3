// Any bytes as a tuning file: parsed, decoded, and a frame's values selected from the result.
#include <android/log.h>
#include <jansson.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "tuning/tuning.h"
#include "vorel/filters.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  __android_log_set_minimum_priority(ANDROID_LOG_FATAL);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  json_t* root =
      json_loadb(reinterpret_cast<const char*>(data), size, JSON_DISABLE_EOF_CHECK, nullptr);
  if (root == nullptr) return 0;

  // Each of the two readers drops a reference of a root that it refuses.
  json_incref(root);
  json_incref(root);
  char version[kTuningVersionSize] = {};
  getTuningVersions(root, version);
  if (version[kTuningVersionSize - 1] != '\0') __builtin_trap();

  cnr_tuning tuning{};
  set_default_tuning(&tuning);
  decodeJson(root, &tuning);
  if (tuning.NILevelNum < 0 || tuning.NILevelNum > kNoiseLevels) __builtin_trap();
  update_bilateral_filter_tuning(&tuning.bilateralfiltering_tuning);
  for (const int noise_index : {INT32_MIN, 0, 100, 1000, 40960, INT32_MAX}) {
    select_tuning(&tuning, noise_index);
  }
  log_tuning(&tuning);
  log_current_tuning(&tuning);

  const size_t references = root->refcount;
  if (references != 1 && references != 3) __builtin_trap();
  for (size_t i = 0; i < references; ++i) ReleaseJson(root);
  return 0;
}
