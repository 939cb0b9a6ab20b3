#include "core/frame.h"

#include <algorithm>

#include "core/formats.h"
#include "core/run_thread.h"
#include "core/tuning_parameter.h"
#include "platform/log.h"
#include "platform/trace.h"
#include "tuning/tuning.h"

namespace {

// The frame's record but for planes. Runs under the slot mutex, as the next two.
void fill_bookkeeping(vorel* handle, vorel_thread* run) {
  run->debug_mode = handle->debug_mode;
  run->dump_path = handle->dump_path;
  run->tuning = &handle->tuning;
  run->pool = &handle->pool;
  run->nice = handle->driver_nice;
  run->report = {};
  run->whole_planes = handle->debug_mode >= kDebugDumpPlanes;
  for (box_filter_job& job : run->box_jobs) {
    job.debug_mode = handle->debug_mode;
    job.dump_path = handle->dump_path;
    job.tuning = &handle->tuning.boxfiltering_tuning;
  }
  for (interleave_job& job : run->interleave_jobs) {
    job.debug_mode = handle->debug_mode;
    job.dump_path = handle->dump_path;
    job.tuning = &handle->tuning.interleaving_tuning;
  }
}

// The noise index, and the level of the tuning at which it lies or above which it does.
void trace_tuning(const cnr_tuning& tuning, int32_t noise_index) {
  if (!trace_is_on()) return;
  const int count = std::min(tuning.NILevelNum, kNoiseLevels);
  const uint64_t levels = get_indices(noise_index, tuning.NILevel, count);
  trace_counter("vorel noise index", noise_index);
  trace_counter("vorel noise level", static_cast<int64_t>(levels & 0xFFFFFFFF));
}

// Sizes, format and tuning of the frame, into the handle.
void set_frame(vorel* handle, const frame_request& request) {
  set_size(handle, request.width, request.height);
  VOREL_LOGI("%s[%d], width(%d), height(%d), in_address_1(%p), in_address_2(%p), noiseIndex(%d)",
             request.caller, handle->slot.load(), request.width, request.height,
             static_cast<void*>(request.plane_1), static_cast<void*>(request.plane_2),
             request.noise_index);
  handle->format = request.format;
  update_tuning_parameter(handle, request.noise_index);
  trace_tuning(handle->tuning, request.noise_index);
}

// Stores the frame's planes; the output is written over the input. False for packed formats.
bool set_addresses(vorel* handle, const frame_request& request) {
  if (!is_planar_420(request.format)) {
    VOREL_LOGE("%s, Not supported format", request.caller);
    return false;
  }
  handle->in_address_1 = request.plane_1;
  handle->in_address_2 = request.plane_2;
  handle->out_address_1 = request.plane_1;
  handle->out_address_2 = request.plane_2;
  VOREL_LOGI("%s, format[%s], out_address_1(%p), out_address_2(%p)", request.caller,
             request.format == VOREL_FMT_NM21 ? "VOREL_NV21_M" : "VOREL_NV21",
             static_cast<void*>(request.plane_1), static_cast<void*>(request.plane_2));
  return true;
}

}  // namespace

int32_t next_slot(const vorel* handle) {
  const int32_t slot = handle->slot;
  return slot + 1 < VOREL_RING_SLOTS ? slot + 1 : 0;
}

frame_end run_frame(vorel* handle, int32_t slot, const frame_request& request) {
  if (!start_pool(&handle->pool)) {
    VOREL_LOGE("thread create fail to vorel_preinit_thread_func");
    return frame_end::kNoPoolThread;
  }
  handle->slot = slot;
  set_frame(handle, request);
  vorel_thread* run = &handle->thread[slot];
  fill_bookkeeping(handle, run);
  if (!set_addresses(handle, request)) return frame_end::kBadFormat;
  if (handle->tuning.mfd_uv_tuning.enable != 0) take_half_planes(handle, &handle->spare);
  static_cast<frame_planes&>(*run) = *handle;
  run->y_source = handle->packed_y;
  if (pthread_create(&handle->run_thread[slot], nullptr, vorel_run_thread, run) != 0) {
    VOREL_LOGE("fail to vorel_run_thread create, handle(%p)", static_cast<void*>(handle));
    return frame_end::kNoDriver;
  }
  pthread_join(handle->run_thread[slot], nullptr);
  return frame_end::kStagesRan;
}
