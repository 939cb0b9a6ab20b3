#include "core/run_thread.h"

#include <chrono>

#include "core/stages.h"
#include "platform/log.h"
#include "platform/thread_attributes.h"
#include "platform/trace.h"
#include "vorel/debug.h"
#include "vorel/wavelet/chroma_post_process.h"

namespace {

constexpr const char* kStageNames[VOREL_STAGE_COUNT] = {"vorel_deinterleave", "vorel_box_filter",
                                                        "vorel_yuv", "vorel_interleave", "MFD_UV"};

// Runs one stage, taking its time, and returns its result.
int run_stage(vorel_thread* run, int stage, int (*function)(vorel_thread*)) {
  const TraceSlice slice(kStageNames[stage]);
  using clock = std::chrono::steady_clock;
  frame_report* report = &run->report;
  const clock::time_point start = clock::now();
  const int result = function(run);
  const auto elapsed = std::chrono::duration_cast<std::chrono::microseconds>(clock::now() - start);
  if ((report->skipped & 1u << stage) == 0) {
    report->ran |= 1u << stage;
    report->stage_usec[stage] = elapsed.count();
  }
  return result;
}

void run_wavelet_path(vorel_thread* run) {
  if (run->tuning->mfd_uv_tuning.enable == 0) return;
  const int result = run_stage(run, VOREL_STAGE_MFD_UV, MFD_UV);
  if (result != 0) VOREL_LOGE("MFD_UV is fail.. ret = %d", result);
}

void run_stages(vorel_thread* run) {
  if (run->tuning->enable == 0) {
    run_wavelet_path(run);
    return;
  }
  int result = run_stage(run, VOREL_STAGE_DEINTERLEAVE, vorel_deinterleave);
  if (result != 0) {
    VOREL_LOGE("vorel_deinterleave is fail.. ret = %d", result);
    return;
  }
  run_stage(run, VOREL_STAGE_BOX_FILTER, vorel_box_filter);
  run_stage(run, VOREL_STAGE_YUV, vorel_yuv);
  result = run_stage(run, VOREL_STAGE_INTERLEAVE, vorel_interleave);
  if (result != 0) {
    VOREL_LOGE("vorel_interleave is fail.. ret = %d", result);
    return;
  }
  run_wavelet_path(run);
}

}  // namespace

void* vorel_run_thread(void* argument) {
  auto* run = static_cast<vorel_thread*>(argument);
  if (run == nullptr) {
    VOREL_LOGE("vorel_run_thread, vorel_thread is null");
    return argument;
  }
  timeval start{};
  if (run->debug_mode == kDebugTiming) set_current_time(&start);
  set_thread_nice(run->nice);
  {
    const TraceSlice slice("wait for workers");
    join_pool(run->pool);
  }
  run->report.had_workers = ready_threads(run->pool) != nullptr;
  run_stages(run);
  {
    const TraceSlice slice("stop workers");
    stop_pool(run->pool);
  }
  if (run->debug_mode == kDebugTiming) {
    const float elapsed_msec = static_cast<float>(get_elapsed_time_usec(&start)) / 1000.0f;
    VOREL_LOGI("vorel_run_thread stop: handle %p, elapsed time %.3lf", argument,
               static_cast<double>(elapsed_msec));
  }
  return argument;
}
