#include "core/run.h"

#include <cstdlib>

#include "core/dump.h"
#include "core/frame_guard.h"
#include "core/lifecycle.h"
#include "core/stages.h"
#include "core/tuning_parameter.h"
#include "platform/log.h"

namespace {

int32_t next_slot(int32_t slot) { return slot + 1 < VOREL_RING_SLOTS ? slot + 1 : 0; }

// Starts the workers on a thread of their own, so that it overlaps with the frame's set-up. A
// frame whose driver could not be created has left its pool running: that is settled first.
bool start_pool(vorel* handle) {
  settle_pool(handle);
  for (int i = 0; i < kPools; ++i) {
    handle->preinit.pool[i] = handle->pool[i];
    handle->preinit.pool_ready[i] = &handle->pool_ready[i];
  }
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
void set_frame(vorel* handle, int width, int height, uint32_t format, int noiseIndex,
               const void* in_address_1, const void* in_address_2) {
  handle->width = width;
  handle->height = height;
  handle->height_floor16 = align_down_16(height);
  handle->aligned_height = align_up_16(height);
  VOREL_LOGI(
      "vorel_run[%d], width(%d), height(%d), in_address_1(%p), in_address_2(%p), noiseIndex(%d)",
      handle->slot.load(), width, height, in_address_1, in_address_2, noiseIndex);
  handle->format = format;
  update_tuning_parameter(handle, noiseIndex);
}

// Stores the frame's planes; the output is written over the input. False for packed formats.
bool set_addresses(vorel* handle, int32_t slot, void* in_address_1, void* in_address_2) {
  if (!is_planar_420(handle->format)) {
    VOREL_LOGE("vorel_run, Not supported format");
    return false;
  }
  handle->in_address_1[slot] = static_cast<uint8_t*>(in_address_1);
  handle->in_address_2[slot] = static_cast<uint8_t*>(in_address_2);
  handle->out_address_1[slot] = handle->in_address_1[slot];
  handle->out_address_2[slot] = handle->in_address_2[slot];
  VOREL_LOGI("vorel_run, format[%s], out_address_1(%p), out_address_2(%p)",
             handle->format == VOREL_FMT_NM21 ? "VOREL_NV21_M" : "VOREL_NV21", in_address_1,
             in_address_2);
  return true;
}

}  // namespace

void* vorel_run(vorel* handle, void* in_address_1, void* in_address_2, int width, int height,
                int format_code, int noiseIndex) {
  VOREL_LOGI("vorel_run - E");
  if (handle == nullptr) {
    VOREL_LOGE("vorel_run, VOREL handler is NULL~!!!!!\n");
    return nullptr;
  }
  // The threshold never changes between frames, so it is read without the mutex.
  const int32_t enable_noise_index = handle->tuning.enableNoiseIndex;
  if (noiseIndex < enable_noise_index) {
    VOREL_LOGI("vorel_run, skip process, noiseIndex(%d) < enableNoiseIndex(%d)", noiseIndex,
               enable_noise_index);
    VOREL_LOGI("vorel_run - X");
    return handle;
  }
  const auto format = static_cast<uint32_t>(format_code);
  if (!frame_fits(in_address_1, in_address_2, width, height, format, handle->luma_plane_bytes)) {
    VOREL_LOGI("vorel_run - X");
    return handle;
  }
  if (handle->debug_mode >= kDebugDumpInput) {
    dump_frame(handle, frame_dump::kInput, format, in_address_1, in_address_2, width, height,
               noiseIndex);
  }

  // Taken before the pool starts: a second caller must not restart a pool in use.
  const int32_t slot = next_slot(handle->slot);
  pthread_mutex_lock(&handle->slot_mutex[slot]);
  if (!start_pool(handle)) {
    VOREL_LOGE("thread create fail to vorel_preinit_thread_func");
    pthread_mutex_unlock(&handle->slot_mutex[slot]);
    return handle;
  }
  handle->slot = slot;
  set_frame(handle, width, height, format, noiseIndex, in_address_1, in_address_2);
  vorel_thread* run = &handle->thread[slot];
  fill_bookkeeping(handle, run);
  if (!set_addresses(handle, slot, in_address_1, in_address_2)) {
    return &handle->run_thread[slot];  // Kept: the slot stays taken, the pool thread unjoined.
  }
  if (handle->tuning.mfd_uv_tuning.enable != 0) allocate_half_planes(handle);
  fill_planes(handle, run, slot);
  if (pthread_create(&handle->run_thread[slot], nullptr, vorel_run_thread, run) != 0) {
    VOREL_LOGE("fail to vorel_run_thread create, handle(%p)", static_cast<void*>(handle));
    pthread_mutex_unlock(&handle->slot_mutex[slot]);
    return &handle->run_thread[slot];
  }
  pthread_join(handle->run_thread[slot], nullptr);
  pthread_mutex_unlock(&handle->slot_mutex[slot]);

  if (handle->debug_mode >= kDebugDumpOutput) {
    dump_frame(handle, frame_dump::kOutput, format, in_address_1, in_address_2, width, height,
               noiseIndex);
  }
  VOREL_LOGI("vorel_run - X");
  return &handle->run_thread[slot];
}

void vorel_release_frame_buffers(vorel* handle) {
  if (handle == nullptr) return;
  pthread_mutex_t* mutex = &handle->slot_mutex[0];
  pthread_mutex_lock(mutex);
  std::free(handle->mfd_u);
  std::free(handle->mfd_v);
  handle->mfd_u = nullptr;
  handle->mfd_v = nullptr;
  pthread_mutex_unlock(mutex);
}
