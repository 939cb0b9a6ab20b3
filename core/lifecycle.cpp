#include "core/lifecycle.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

#include "core/format_text.h"
#include "core/frame_guard.h"
#include "core/handle.h"
#include "core/tuning_parameter.h"
#include "platform/cpu.h"
#include "platform/directories.h"
#include "platform/error_text.h"
#include "platform/log.h"
#include "platform/property.h"

#ifndef VOREL_COMMIT_ID
#define VOREL_COMMIT_ID "unknown"
#endif
#ifndef VOREL_BUILD_DATE
#define VOREL_BUILD_DATE "unknown"
#endif

namespace {

constexpr char kDebugProperty[] = "persist.vendor.libvorel.debug";
constexpr mode_t kDumpDirectoryMode = 0777;

// A plane of the handle, in the order of allocation.
struct plane_entry {
  uint8_t* vorel::* plane;
  int divisor;  // of aligned_height and of width
  const char* failure;
};

constexpr plane_entry kPlanes[] = {
    {&vorel::y_low, 1, "vorel_init, vorel->y_low[0] alloc is fail"},
    {&vorel::y_high, 1, "vorel_init, vorel->y_high[0] alloc is fail"},
    {&vorel::downsampled_y, 16, "vorel_init, vorel->downsampled_y[0] alloc is fail"},
    {&vorel::downsampled_u, 16, "vorel_init, vorel->downsampled_u[0] alloc is fail"},
    {&vorel::downsampled_v, 16, "vorel_init, vorel->downsampled_v[0] alloc is fail"},
    {&vorel::filtered_y, 16, "vorel_init, vorel->filtered_y alloc is fail"},
    {&vorel::filtered_u, 16, "vorel_init, vorel->filtered_u alloc is fail"},
    {&vorel::filtered_v, 16, "vorel_init, vorel->filtered_v alloc is fail"},
    {&vorel::upsampled_u, 2, "vorel_init, vorel->upsampled_u alloc is fail"},
    {&vorel::upsampled_v, 2, "vorel_init, vorel->upsampled_v alloc is fail"},
};

// Kept: 32-bit arithmetic that wraps; a negative size fails to allocate.
int32_t plane_bytes(const vorel* handle, int divisor) {
  return static_cast<int32_t>(static_cast<uint32_t>(handle->aligned_height / divisor) *
                              static_cast<uint32_t>(handle->width / divisor));
}

bool allocate_planes(vorel* handle) {
  for (const plane_entry& entry : kPlanes) {
    const int32_t bytes = plane_bytes(handle, entry.divisor);
    // Zeroed: dumps also show rows that no stage writes.
    void* plane = bytes < 0 ? nullptr : std::calloc(1, static_cast<size_t>(bytes));
    if (plane == nullptr) {
      VOREL_LOGE("%s", entry.failure);
      return false;
    }
    handle->*entry.plane = static_cast<uint8_t*>(plane);
  }
  handle->luma_plane_bytes = plane_bytes(handle, 1);
  return true;
}

bool make_directory(const char* path) {
  return mkdir(path, kDumpDirectoryMode) == 0 || errno == EEXIST;
}

// Makes <dump directory>/<sensor id>_<local time> and stores its name; on a failure the name stays
// empty and nothing can be dumped.
void make_dump_directory(vorel* handle, unsigned int sensorId) {
  char error[kErrorTextSize];
  const char* base = dump_directory();
  if (!make_directory(base)) {
    VOREL_LOGE("vorel_init, error(%s)", error_text(errno, error));
    return;
  }
  const time_t now = std::time(nullptr);
  tm local{};
  tzset();  // localtime_r alone may keep the time zone that the process started with
  localtime_r(&now, &local);
  char time_text[32];
  std::strftime(time_text, sizeof(time_text), "%Y%m%d_%H%M%S", &local);
  const bool fits =
      format_text(handle->dump_path, "%s/%d_%s", base, static_cast<int>(sensorId), time_text);
  if (!fits) errno = ENAMETOOLONG;
  if (!fits || !make_directory(handle->dump_path)) {
    VOREL_LOGE("vorel_init, error(%s) creating %s", error_text(errno, error), handle->dump_path);
    handle->dump_path[0] = '\0';
    return;
  }
  VOREL_LOGI("vorel_init, dump_path %s", handle->dump_path);
}

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
      options.workers, options.cpu_mask, kBoxFilterJobs, kInterleaveJobs, kCopyAndPadJobs,
      kSaturationJobs);
  VOREL_LOGI("vorel_init, width(%d), height(%d), scenario(%s), sensorId(%d), priority(%d)",
             options.width, options.height, scenario_name(options.scenario),
             static_cast<int>(options.sensor_id), options.nice);
}

void set_options(vorel* handle, const vorel_options& options) {
  handle->width = options.width;
  handle->height = options.height;
  handle->aligned_height = align_up_16(options.height);
  handle->height_floor16 = align_down_16(options.height);
  handle->workers.count = options.workers;
  handle->workers.cpu_mask = options.cpu_mask;
  handle->workers.nice = options.nice;
  std::snprintf(handle->workers.thread_name, kThreadNameSize, "%s", options.thread_name);
}

template <typename T>
void release(T*& plane) {
  std::free(plane);
  plane = nullptr;
}

}  // namespace

void* vorel_preinit_thread_func(void* arg) {
  const auto* preinit = static_cast<vorel_preinit_thread*>(arg);
  if (preinit == nullptr) {
    VOREL_LOGE("vorel_preinit_thread_func, vorel_preinit_thread is null");
    return nullptr;
  }
  if (preinit->pool[0] == nullptr) return nullptr;
  const worker_options* workers = preinit->workers;
  const bool started = preinit->pool[0]->init(workers->count, static_cast<int>(workers->cpu_mask),
                                              0, workers->thread_name) >= 0;
  preinit->pool_ready[0]->store(started ? 1 : 0, std::memory_order_release);
  return nullptr;
}

void settle_pool(vorel* handle) {
  if (handle->preinit_joined == 0) {
    pthread_join(handle->preinit_thread, nullptr);
    handle->preinit_joined = 1;
  }
  if (handle->pool[0] != nullptr && handle->pool_ready[0] != 0) {
    handle->pool[0]->deinit();
    handle->pool_ready[0] = 0;
  }
}

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
  handle->preinit_joined = 1;
  handle->pool[0] = new (std::nothrow) ThreadPool();
  read_debug_mode(handle);
  if (handle->debug_mode >= kDebugDumpInput) make_dump_directory(handle, options.sensor_id);
  const bool tuned = get_tuning_parameter(handle, options);
  handle->sensorId = static_cast<int32_t>(options.sensor_id);

  if (handle->pool[0] == nullptr) VOREL_LOGE("vorel_init, vorel->pool[0] alloc is fail");
  const bool allocated = handle->pool[0] != nullptr && tuned && allocate_planes(handle);
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

vorel* vorel_init(int width, int height, int scenario, unsigned int sensorId) {
  VOREL_LOGI("vorel_init - E");
  if (width % 16 != 0) {
    VOREL_LOGE("unsupported width(%d)", width);
    return nullptr;
  }
  vorel_options options = vorel_default_options(width, height);
  options.scenario = scenario;
  options.sensor_id = sensorId;
  vorel_status status = VOREL_DONE;
  vorel* handle = make_handle(options, &status);
  if (status == VOREL_DONE) VOREL_LOGI("vorel_init - X");
  return handle;
}

int vorel_deinit(vorel* handle) {
  VOREL_LOGI("vorel_deinit - E, handle %p", static_cast<void*>(handle));
  if (handle == nullptr) {
    VOREL_LOGE("vorel_deinit, vorel in NULL~!!");
    return -1;
  }
  release(handle->packed_y);
  for (const plane_entry& entry : kPlanes) release(handle->*entry.plane);
  release(handle->mfd_u);
  release(handle->mfd_v);
  release(handle->continued_frame);
  settle_pool(handle);
  delete handle->pool[0];
  std::free(handle);
  VOREL_LOGI("vorel_deinit - X");
  return 0;
}
