// Debug levels of handles: timing lines, the tuning's block, dumps.
#ifndef VOREL_FUZZ_DEBUG_LEVEL_H_
#define VOREL_FUZZ_DEBUG_LEVEL_H_

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>

#include "core/handle.h"
#include "fuzz/scratch_folder.h"

// 0 most of the time, and seldom one that dumps, which takes longer than the frame.
inline int any_debug_level(FuzzedDataProvider& input) {
  const int choice = input.ConsumeIntegralInRange(0, 63);
  if (choice == 1) return input.ConsumeIntegralInRange(kDebugDumpInput, kDebugDumpPlanes + 1);
  return choice > 56 ? input.ConsumeIntegralInRange(kDebugTiming, kDebugTuning) : 0;
}

// Gives a handle a level of the input's while it lives. Dumps go with it.
class DebugLevel {
 public:
  DebugLevel(FuzzedDataProvider& input, vorel* handle) : handle_(handle) {
    handle->debug_mode = any_debug_level(input);
    std::snprintf(handle->dump_path, sizeof(handle->dump_path), "%s", folder().path());
  }
  ~DebugLevel() {
    if (handle_->debug_mode >= kDebugDumpInput) folder().clear();
    handle_->debug_mode = 0;
  }
  DebugLevel(const DebugLevel&) = delete;
  DebugLevel& operator=(const DebugLevel&) = delete;

 private:
  static const ScratchFolder& folder() {
    static const ScratchFolder folder;
    return folder;
  }

  vorel* handle_;
};

#endif  // VOREL_FUZZ_DEBUG_LEVEL_H_
