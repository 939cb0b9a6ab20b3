// A frame's way through a handle: what vorel_run and vorel_denoise_frame share.
#ifndef VOREL_CORE_FRAME_H_
#define VOREL_CORE_FRAME_H_

#include <cstdint>

#include "core/handle.h"

// A frame of dense planes whose size has passed the checks.
struct frame_request {
  const char* caller;  // of the library, for log lines
  uint8_t* plane_1;
  uint8_t* plane_2;
  int32_t width;
  int32_t height;
  uint32_t format;
  int32_t noise_index;
};

enum class frame_end {
  kStagesRan,     // as far as the run record's report tells
  kNoPoolThread,  // nothing has changed
  kBadFormat,     // the pool-starting thread is not joined
  kNoDriver,      // the pool may be running
};

// Whether the frame's noise index lies below the tuning's threshold, which never changes between
// frames and so is read without the mutex.
[[nodiscard]] inline bool below_gate(const vorel* handle, int32_t noise_index) {
  return noise_index < handle->tuning.enableNoiseIndex;
}

// Slot that the next frame takes.
[[nodiscard]] int32_t next_slot(const vorel* handle);

// Runs the stages on the frame and waits for them. The caller holds `slot`.
frame_end run_frame(vorel* handle, int32_t slot, const frame_request& request);

#endif  // VOREL_CORE_FRAME_H_
