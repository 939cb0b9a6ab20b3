// vorel_denoise_frame: the checks, the slot, and the status from what the stages report.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <iterator>

#include "core/continued_frame.h"
#include "core/dump.h"
#include "core/frame.h"
#include "core/frame_size.h"
#include "platform/frame_dumps.h"
#include "platform/log.h"
#include "tuning/tuning.h"

namespace {

constexpr char kCaller[] = "vorel_denoise_frame";

// How often a waiting call looks whether the slot's owner has gone away for good.
constexpr long kSlotWaitNsec = 50'000'000;

int64_t usec_since(std::chrono::steady_clock::time_point start) {
  const auto elapsed = std::chrono::steady_clock::now() - start;
  return std::chrono::duration_cast<std::chrono::microseconds>(elapsed).count();
}

// Why a frame is refused, VOREL_DONE when it is not.
vorel_status check_frame(const vorel* handle, const vorel_frame* frame) {
  if (frame == nullptr || frame->size != sizeof(vorel_frame)) return VOREL_BAD_RECORD;
  if (frame->layout != VOREL_LAYOUT_NV21 && frame->layout != VOREL_LAYOUT_NV12) {
    return VOREL_BAD_LAYOUT;
  }
  if (frame->luma == nullptr || frame->chroma == nullptr) return VOREL_BAD_PLANE;
  if (frame->width < 2 || frame->height < 2) return VOREL_BAD_SIZE;
  if (block_plane_samples(frame->width, frame->height) > handle->luma_bytes) return VOREL_BAD_SIZE;
  if (frame->luma_stride < frame->width || frame->chroma_stride < (frame->width + 1) / 2 * 2) {
    return VOREL_BAD_STRIDE;
  }
  return VOREL_DONE;
}

// Whether a call has the slot's mutex or has taken the slot over from a vorel_run that kept it.
enum class slot_hold { kLocked, kTakenOver };

// Never waits for ever: a vorel_run that has kept the slot says so, and waiting is done in short
// turns because it may keep it only later.
slot_hold take_slot(vorel* handle, int32_t slot) {
  pthread_mutex_t* mutex = &handle->slot_mutex[slot];
  for (;;) {
    if (handle->slot_abandoned.exchange(0, std::memory_order_acquire) != 0) {
      return slot_hold::kTakenOver;
    }
    timespec until{};
    clock_gettime(CLOCK_MONOTONIC, &until);
    until.tv_nsec += kSlotWaitNsec;
    if (until.tv_nsec >= 1'000'000'000) {
      until.tv_nsec -= 1'000'000'000;
      ++until.tv_sec;
    }
    if (pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &until) == 0) return slot_hold::kLocked;
  }
}

void leave_slot(vorel* handle, int32_t slot, slot_hold hold) {
  if (hold == slot_hold::kLocked) {
    pthread_mutex_unlock(&handle->slot_mutex[slot]);
  } else {
    handle->slot_abandoned.store(1, std::memory_order_release);
  }
}

// The room for a frame that cannot be processed where it is; null when memory is short. Kept for
// the next frame, and large enough for any that the handle takes.
uint8_t* room_for_frame(vorel* handle) {
  if (handle->continued_frame == nullptr) {
    const size_t luma_bytes = static_cast<size_t>(handle->luma_bytes);
    handle->continued_frame = static_cast<uint8_t*>(std::malloc(luma_bytes + luma_bytes / 2));
  }
  return handle->continued_frame;
}

vorel_status status_of(frame_end end, const frame_report& report) {
  if (end != frame_end::kStagesRan) return VOREL_NO_THREADS;
  if (report.skipped == 0) return VOREL_DONE;
  constexpr uint32_t kWriteFrame = 1u << VOREL_STAGE_INTERLEAVE | 1u << VOREL_STAGE_MFD_UV;
  if ((report.ran & kWriteFrame) != 0) return VOREL_STAGE_SKIPPED;
  return report.short_of_memory ? VOREL_NO_MEMORY : VOREL_NO_THREADS;
}

void fill_values(const cnr_tuning& tuning, vorel_frame_info* info) {
  const int count = std::min(tuning.NILevelNum, kNoiseLevels);
  const uint64_t levels = get_indices(info->noise_index, tuning.NILevel, count);
  info->level_low = static_cast<int32_t>(levels & 0xFFFFFFFF);
  info->level_high = static_cast<int32_t>(levels >> 32);
  const struct interleaving_tuning& spatial = tuning.interleaving_tuning;
  info->d_Y_upper_thresh = spatial.d_Y_upper_thresh;
  info->d_Y_lower_thresh = spatial.d_Y_lower_thresh;
  info->d_UV_thresh = spatial.d_UV_thresh;
  info->cs_upper_thresh = spatial.cs_upper_thresh;
  info->cs_lower_thresh = spatial.cs_lower_thresh;
  const struct mfd_uv_tuning& wavelet = tuning.mfd_uv_tuning;
  info->radialMode = wavelet.radialMode;
  std::copy(std::begin(wavelet.denoiseThrChroma), std::end(wavelet.denoiseThrChroma),
            info->denoiseThrChroma);
  info->CSatParam1 = wavelet.CSatParam1;
  info->CSatParam2 = wavelet.CSatParam2;
  info->CSatThr1 = wavelet.CSatThr1;
  info->CSatThr2 = wavelet.CSatThr2;
}

void fill_report(const vorel* handle, const frame_report& report, vorel_frame_info* info) {
  info->skipped = report.skipped;
  info->workers = report.had_workers ? handle->pool.worker_count : 0;
  std::copy(std::begin(report.stage_usec), std::end(report.stage_usec), info->stage_usec);
}

// Processes dense planes in place, with the dumps that the debug level asks for. Holds the slot.
vorel_status process_planes(vorel* handle, int32_t slot, const dense_planes& planes,
                            vorel_frame_info* info) {
  const frame_request request{kCaller,       planes.luma,    planes.chroma,    planes.width,
                              planes.height, VOREL_FMT_NM21, info->noise_index};
  const auto dump = [&](frame_dump which) { dump_frame(handle, which, request); };
  const FrameDumps dumps(handle->debug_mode, handle->dump_path);
  if (handle->debug_mode >= kDebugDumpInput) dump(frame_dump::kInput);
  // What a vorel_run has left would be forgotten, and so lost, when this frame gets its own.
  return_half_planes(handle, &handle->spare);
  const frame_end end = run_frame(handle, slot, request);
  return_half_planes(handle, &handle->spare);
  const frame_report& report = handle->thread[slot].report;
  const vorel_status status = status_of(end, report);
  if (end != frame_end::kNoPoolThread) fill_values(handle->tuning, info);
  if (end == frame_end::kStagesRan) {
    fill_report(handle, report, info);
    if (handle->debug_mode >= kDebugDumpOutput) dump(frame_dump::kOutput);
  }
  const dump_counts counts = dumps.counts();
  info->dumps_written = counts.written;
  info->dumps_failed = counts.failed;
  info->dumps_error = counts.error;
  return status;
}

vorel_status process_frame(vorel* handle, int32_t slot, const vorel_frame& frame,
                           vorel_frame_info* info) {
  dense_planes planes = dense_size(frame);
  if (is_dense(frame)) {
    planes.luma = frame.luma;
    planes.chroma = frame.chroma;
    return process_planes(handle, slot, planes, info);
  }
  planes.luma = room_for_frame(handle);
  if (planes.luma == nullptr) return VOREL_NO_MEMORY;
  planes.chroma =
      planes.luma + static_cast<size_t>(planes.width) * static_cast<size_t>(planes.height);
  copy_continued(frame, planes);
  const vorel_status status = process_planes(handle, slot, planes, info);
  if (status >= 0) copy_back(planes, frame);
  return status;
}

// `info` is complete but for status and time.
vorel_status denoise_frame(vorel* handle, const vorel_frame* frame, vorel_frame_info* info) {
  const vorel_status refusal = check_frame(handle, frame);
  if (refusal != VOREL_DONE) return refusal;
  info->noise_index = frame->noise_index;
  info->enable_noise_index = handle->tuning.enableNoiseIndex;
  info->spatial = handle->tuning.enable;
  info->wavelet = handle->tuning.mfd_uv_tuning.enable;
  if (below_gate(handle, frame->noise_index)) {
    VOREL_LOGI("%s, skip process, noiseIndex(%d) < enableNoiseIndex(%d)", kCaller,
               frame->noise_index, handle->tuning.enableNoiseIndex);
    return VOREL_BELOW_GATE;
  }
  const int32_t slot = next_slot(handle);
  const slot_hold hold = take_slot(handle, slot);
  const vorel_status status = process_frame(handle, slot, *frame, info);
  leave_slot(handle, slot, hold);
  return status;
}

}  // namespace

vorel_status vorel_denoise_frame(vorel* handle, const vorel_frame* frame, vorel_frame_info* info) {
  const auto start = std::chrono::steady_clock::now();
  VOREL_LOGI("%s - E", kCaller);
  vorel_frame_info own{};
  own.size = sizeof(own);
  const bool known = info == nullptr || info->size == sizeof(own);
  vorel_status status = VOREL_BAD_RECORD;
  if (handle == nullptr) {
    status = VOREL_BAD_HANDLE;
  } else if (known) {
    status = denoise_frame(handle, frame, &own);
  }
  if (status < 0) VOREL_LOGE("%s, %s", kCaller, vorel_status_text(status));
  own.status = status;
  own.total_usec = usec_since(start);
  if (info != nullptr && known) *info = own;
  VOREL_LOGI("%s - X", kCaller);
  return status;
}
