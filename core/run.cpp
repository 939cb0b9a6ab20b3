#include "core/dump.h"
#include "core/frame.h"
#include "core/frame_guard.h"
#include "platform/frame_dumps.h"
#include "platform/log.h"

void* vorel_run(vorel* handle, void* in_address_1, void* in_address_2, int width, int height,
                int format_code, int noiseIndex) {
  VOREL_LOGI("vorel_run - E");
  if (handle == nullptr) {
    VOREL_LOGE("vorel_run, VOREL handler is NULL~!!!!!\n");
    return nullptr;
  }
  if (below_gate(handle, noiseIndex)) {
    VOREL_LOGI("vorel_run, skip process, noiseIndex(%d) < enableNoiseIndex(%d)", noiseIndex,
               handle->tuning.enableNoiseIndex);
    VOREL_LOGI("vorel_run - X");
    return handle;
  }
  const auto format = static_cast<uint32_t>(format_code);
  if (!frame_fits(in_address_1, in_address_2, width, height, format, handle->luma_bytes)) {
    VOREL_LOGI("vorel_run - X");
    return handle;
  }
  const frame_request request{"vorel_run",
                              static_cast<uint8_t*>(in_address_1),
                              static_cast<uint8_t*>(in_address_2),
                              width,
                              height,
                              format,
                              noiseIndex};
  const FrameDumps dumps(handle->debug_mode, handle->dump_path);
  if (handle->debug_mode >= kDebugDumpInput) {
    dump_frame(handle, frame_dump::kInput, request);
  }

  // Taken before the pool starts: a second caller must not restart a pool in use.
  const int32_t slot = next_slot(handle);
  pthread_mutex_lock(&handle->slot_mutex[slot]);
  const frame_end end = run_frame(handle, slot, request);
  if (end == frame_end::kBadFormat) {
    // Kept: the slot stays taken, the pool thread unjoined.
    handle->slot_abandoned.store(1, std::memory_order_release);
    return &handle->run_thread[slot];
  }
  pthread_mutex_unlock(&handle->slot_mutex[slot]);
  if (end == frame_end::kNoPoolThread) return handle;
  if (end == frame_end::kNoDriver) return &handle->run_thread[slot];

  if (handle->debug_mode >= kDebugDumpOutput) {
    dump_frame(handle, frame_dump::kOutput, request);
  }
  VOREL_LOGI("vorel_run - X");
  return &handle->run_thread[slot];
}

void vorel_release_frame_buffers(vorel* handle) {
  if (handle == nullptr) return;
  pthread_mutex_t* mutex = &handle->slot_mutex[0];
  pthread_mutex_lock(mutex);
  return_half_planes(handle, &handle->spare);
  pthread_mutex_unlock(mutex);
}
