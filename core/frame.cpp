#include "core/frame.h"

#include <cstdlib>

#include "core/frame_guard.h"
#include "core/lifecycle.h"
#include "core/run.h"
#include "core/stages.h"
#include "core/tuning_parameter.h"
#include "platform/log.h"

namespace {

// Starts the workers on a thread of their own, so that it overlaps with the frame's set-up. A
// frame whose driver could not be created has left its pool running: that is settled first.
bool start_pool(vorel* handle) {
  settle_pool(handle);
  for (int i = 0; i < kPools; ++i) {
    handle->preinit.pool[i] = handle->pool[i];
    handle->preinit.pool_ready[i] = &handle->pool_ready[i];
  }
  handle->preinit.workers = &handle->workers;
  if (pthread_create(&handle->preinit_thread, nullptr, vorel_preinit_thread_func,
                     &handle->preinit) != 0) {
    return false;
  }
  handle->preinit_joined = 0;
  return true;
}

// Kept: allocated anew for every frame; the previous pair stays with whoever remembers it.
void allocate_half_planes(vorel* handle) {
  const int32_t width = (handle->width / 2 + 2 * kMfdBorder + 1) & ~1;
  const int32_t height = (handle->height / 2 + 2 * kMfdBorder + 1) & ~1;
  const size_t samples = static_cast<size_t>(width) * static_cast<size_t>(height);
  handle->mfd_u = static_cast<_Float16*>(std::malloc(samples * sizeof(_Float16)));
  handle->mfd_v = static_cast<_Float16*>(std::malloc(samples * sizeof(_Float16)));
  handle->mfd_width = width;
  handle->mfd_height = height;
}

void set_stage(const vorel* handle, stage_record* stage) {
  stage->debug_mode = handle->debug_mode;
  stage->dump_path = handle->dump_path;
}

void fill_bookkeeping(vorel* handle, vorel_thread* run) {
  run->debug_mode = handle->debug_mode;
  run->dump_path = handle->dump_path;
  run->tuning = &handle->tuning;
  run->preinit_thread = &handle->preinit_thread;
  run->preinit_joined = &handle->preinit_joined;
  for (int i = 0; i < kPools; ++i) {
    run->pool[i] = handle->pool[i];
    run->pool_ready[i] = &handle->pool_ready[i];
  }
  run->workers = &handle->workers;
  run->report = {};
  set_stage(handle, &run->deinterleave_stage);
  set_stage(handle, &run->box_filter_stage);
  set_stage(handle, &run->yuv_stage);
  set_stage(handle, &run->interleave_stage);
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

void fill_planes(vorel* handle, vorel_thread* run, int32_t slot) {
  run->width = handle->width;
  run->height = handle->height;
  run->aligned_height = handle->aligned_height;
  run->height_floor16 = handle->height_floor16;
  run->format = handle->format;
  run->in_address_1 = handle->in_address_1[slot];
  run->in_address_2 = handle->in_address_2[slot];
  run->out_address_1 = handle->out_address_1[slot];
  run->out_address_2 = handle->out_address_2[slot];
  run->y_source = handle->packed_y;
  run->y_low = handle->y_low;
  run->y_high = handle->y_high;
  run->downsampled_y = handle->downsampled_y;
  run->downsampled_u = handle->downsampled_u;
  run->downsampled_v = handle->downsampled_v;
  run->filtered_y = handle->filtered_y;
  run->filtered_u = handle->filtered_u;
  run->filtered_v = handle->filtered_v;
  run->upsampled_u = handle->upsampled_u;
  run->upsampled_v = handle->upsampled_v;
  run->mfd_u = handle->mfd_u;
  run->mfd_v = handle->mfd_v;
  run->mfd_width = handle->mfd_width;
  run->mfd_height = handle->mfd_height;
  run->slot_mutex = &handle->slot_mutex[slot];
}

// Sizes, format and tuning of the frame, into the handle. Runs under the slot mutex.
void set_frame(vorel* handle, const frame_request& request) {
  handle->width = request.width;
  handle->height = request.height;
  handle->height_floor16 = align_down_16(request.height);
  handle->aligned_height = align_up_16(request.height);
  VOREL_LOGI("%s[%d], width(%d), height(%d), in_address_1(%p), in_address_2(%p), noiseIndex(%d)",
             request.caller, handle->slot.load(), request.width, request.height,
             static_cast<void*>(request.plane_1), static_cast<void*>(request.plane_2),
             request.noise_index);
  handle->format = request.format;
  update_tuning_parameter(handle, request.noise_index);
}

// Stores the frame's planes; the output is written over the input. False for packed formats.
bool set_addresses(vorel* handle, int32_t slot, const frame_request& request) {
  if (!is_planar_420(request.format)) {
    VOREL_LOGE("%s, Not supported format", request.caller);
    return false;
  }
  handle->in_address_1[slot] = request.plane_1;
  handle->in_address_2[slot] = request.plane_2;
  handle->out_address_1[slot] = request.plane_1;
  handle->out_address_2[slot] = request.plane_2;
  VOREL_LOGI("%s, format[%s], out_address_1(%p), out_address_2(%p)", request.caller,
             request.format == VOREL_FMT_NM21 ? "VOREL_NV21_M" : "VOREL_NV21",
             static_cast<void*>(request.plane_1), static_cast<void*>(request.plane_2));
  return true;
}

}  // namespace

bool below_gate(const vorel* handle, const char* caller, int32_t noise_index) {
  // The threshold never changes between frames, so it is read without the mutex.
  const int32_t enable_noise_index = handle->tuning.enableNoiseIndex;
  if (noise_index >= enable_noise_index) return false;
  VOREL_LOGI("%s, skip process, noiseIndex(%d) < enableNoiseIndex(%d)", caller, noise_index,
             enable_noise_index);
  return true;
}

int32_t next_slot(const vorel* handle) {
  const int32_t slot = handle->slot;
  return slot + 1 < VOREL_RING_SLOTS ? slot + 1 : 0;
}

frame_end run_frame(vorel* handle, int32_t slot, const frame_request& request) {
  if (!start_pool(handle)) {
    VOREL_LOGE("thread create fail to vorel_preinit_thread_func");
    return frame_end::kNoPoolThread;
  }
  handle->slot = slot;
  set_frame(handle, request);
  vorel_thread* run = &handle->thread[slot];
  fill_bookkeeping(handle, run);
  if (!set_addresses(handle, slot, request)) return frame_end::kBadFormat;
  if (handle->tuning.mfd_uv_tuning.enable != 0) allocate_half_planes(handle);
  fill_planes(handle, run, slot);
  if (pthread_create(&handle->run_thread[slot], nullptr, vorel_run_thread, run) != 0) {
    VOREL_LOGE("fail to vorel_run_thread create, handle(%p)", static_cast<void*>(handle));
    return frame_end::kNoDriver;
  }
  pthread_join(handle->run_thread[slot], nullptr);
  return frame_end::kStagesRan;
}

void free_half_planes(vorel* handle) {
  std::free(handle->mfd_u);
  std::free(handle->mfd_v);
  handle->mfd_u = nullptr;
  handle->mfd_v = nullptr;
}
