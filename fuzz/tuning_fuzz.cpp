// Any bytes as a tuning file: parsed, decoded, and a frame's values selected from the result. A
// sensor's file, and one with a path, give what the same text in memory gives.
#include <android/log.h>
#include <jansson.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>

#include "fuzz/scratch_folder.h"
#include "platform/directories.h"
#include "tuning/tuning.h"
#include "vorel/filters.h"

namespace {

constexpr char kFile[] = "vorel_NOTHING.json";
constexpr size_t kFileShare = 16;  // every so many inputs are tried as files: those take longer

const ScratchFolder& firmware() {
  static const ScratchFolder folder;
  return folder;
}

struct Loaded {
  explicit Loaded(const tuning_source& source) {
    set_default_tuning(&tuning);
    loaded = load_tuning(source, &tuning, version);
  }
  bool operator==(const Loaded& other) const {
    return loaded == other.loaded && std::strcmp(version, other.version) == 0 &&
           std::memcmp(&tuning, &other.tuning, sizeof(tuning)) == 0;
  }

  cnr_tuning tuning{};
  char version[kTuningVersionSize] = {};
  bool loaded;
};

// A file ends for its reader where a zero stands.
void compare_files(const char* text, size_t size) {
  const std::string path = firmware().write(kFile, text, size);
  const Loaded from_text({"", nullptr, text, strnlen(text, size)});
  const Loaded from_path({"", path.c_str(), nullptr, 0});
  if (!(from_path == from_text)) __builtin_trap();
  // Only hosts let a variable name the folder.
  if (std::strcmp(firmware_directory(), firmware().path()) != 0) return;
  if (!(Loaded({"NOTHING", nullptr, nullptr, 0}) == from_text)) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  __android_log_set_minimum_priority(ANDROID_LOG_FATAL);
  setenv("VOREL_FIRMWARE_DIR", firmware().path(), 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  json_t* root =
      json_loadb(reinterpret_cast<const char*>(data), size, JSON_DISABLE_EOF_CHECK, nullptr);
  if (size % kFileShare == 0) compare_files(reinterpret_cast<const char*>(data), size);
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
