#include "core/make_handle.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "core/dump_directory.h"
#include "core/tuning_parameter.h"
#include "platform/cpu.h"
#include "platform/log.h"
#include "platform/property.h"
#include "wavelet/stage_layout.h"

#ifndef VOREL_COMMIT_ID
#define VOREL_COMMIT_ID "unknown"
#endif
#ifndef VOREL_BUILD_DATE
#define VOREL_BUILD_DATE "unknown"
#endif

namespace {

constexpr char kDebugProperty[] = "persist.vendor.libvorel.debug";

void read_debug_mode(vorel* handle) {
  char value[PROPERTY_VALUE_MAX];
  property_get(kDebugProperty, value, "");
  handle->debug_mode = std::atoi(value);
  VOREL_LOGI("vorel_init, debug_mode %d", handle->debug_mode);
}

const char* scenario_name(int scenario) {
  switch (scenario) {
    case VOREL_SCENARIO_CAPTURE:
      return "VOREL_SCENARIO_CAPTURE";
    case VOREL_SCENARIO_PREVIEW:
      return "VOREL_SCENARIO_PREVIEW";
    default:
      return nullptr;
  }
}

void log_options(const vorel_options& options) {
  VOREL_LOGI("CommitID %s Build Date %s", VOREL_COMMIT_ID, VOREL_BUILD_DATE);
  VOREL_LOGI(
      "NUM_THREAD_POOL(%d), AFFINITY(%X), Y_BOXFILTERING(%d), INTERLEAVING(%d), "
      "RUNCOPYANDPAD(%d), SATURATION(%d)",
      options.workers, options.cpu_mask, kBoxFilterJobs, kInterleaveJobs,
      static_cast<int>(kCopyAndPadJobs), static_cast<int>(kSaturationJobs));
  VOREL_LOGI("vorel_init, width(%d), height(%d), scenario(%s), sensorId(%d), priority(%d)",
             options.width, options.height, scenario_name(options.scenario),
             static_cast<int>(options.sensor_id), options.nice);
}

void set_options(vorel* handle, const vorel_options& options) {
  set_size(handle, options.width, options.height);
  handle->luma_bytes = luma_plane_bytes(*handle);
  handle->sensorId = static_cast<int32_t>(options.sensor_id);
  handle->driver_nice = options.nice;
  handle->pool.worker_count = options.workers;
  handle->pool.cpu_mask = options.cpu_mask;
  std::snprintf(handle->pool.thread_name, kThreadNameSize, "%s", options.thread_name);
  handle->pool.starter_joined = 1;
}

}  // namespace

vorel* make_handle(const vorel_options& options, vorel_status* status) {
  if (!cpu_runs_kernels()) {
    VOREL_LOGE("vorel_init, this processor lacks %s", missing_cpu_feature());
    *status = VOREL_NO_PROCESSOR;
    return nullptr;
  }
  auto* handle = static_cast<vorel*>(std::malloc(sizeof(vorel)));
  if (handle == nullptr) {
    VOREL_LOGE("vorel_init, fail: handle %p", static_cast<void*>(handle));
    *status = VOREL_NO_MEMORY;
    return nullptr;
  }
  VOREL_LOGI("vorel_init, handle %p", static_cast<void*>(handle));
  if (scenario_name(options.scenario) == nullptr) {
    VOREL_LOGE("vorel_init, not support scenario(%d)", options.scenario);
    *status = VOREL_BAD_OPTION;
    return handle;  // Kept: neither zeroed nor released; callers must not use it.
  }
  log_options(options);
  std::memset(static_cast<void*>(handle), 0, sizeof(vorel));
  set_options(handle, options);
  handle->pool.threads = new (std::nothrow) ThreadPool();
  read_debug_mode(handle);
  if (handle->debug_mode >= kDebugDumpInput) {
    make_dump_directory(handle->sensorId, handle->dump_path);
  }
  const bool tuned = get_tuning_parameter(handle, options);

  if (handle->pool.threads == nullptr) VOREL_LOGE("vorel_init, vorel->pool[0] alloc is fail");
  const bool allocated = handle->pool.threads != nullptr && tuned && allocate_planes(handle);
  if (!allocated) {
    *status = tuned ? VOREL_NO_MEMORY : VOREL_BAD_TUNING;
    static_cast<void>(vorel_deinit(handle));
    return nullptr;
  }
  handle->slot = -1;
  std::memset(&handle->slot_mutex, 0, sizeof(handle->slot_mutex));
  *status = VOREL_DONE;
  return handle;
}
