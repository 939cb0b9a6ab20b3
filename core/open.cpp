// vorel_open, and what a handle was made with.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "core/frame_size.h"
#include "core/make_handle.h"
#include "platform/log.h"

namespace {

constexpr int32_t kMaxWorkers = 64;

bool in_range(int32_t value, int32_t first, int32_t last) {
  return value >= first && value <= last;
}

// Why options are refused, VOREL_DONE when they are not.
vorel_status check_options(const vorel_options* options) {
  if (options == nullptr || options->size != sizeof(vorel_options)) return VOREL_BAD_RECORD;
  if (options->width < 2 || options->height < 2) return VOREL_BAD_SIZE;
  if (block_plane_samples(options->width, options->height) > INT32_MAX) return VOREL_BAD_SIZE;
  const bool known_scenario =
      options->scenario == VOREL_SCENARIO_CAPTURE || options->scenario == VOREL_SCENARIO_PREVIEW;
  const bool named = options->thread_name != nullptr && options->thread_name[0] != '\0' &&
                     std::strlen(options->thread_name) < kThreadNameSize;
  const bool one_tuning = options->tuning_path == nullptr || options->tuning_text == nullptr;
  const bool in_order = known_scenario && in_range(options->workers, 1, kMaxWorkers) &&
                        options->cpu_mask != 0 && in_range(options->nice, -20, 19) && named &&
                        one_tuning;
  return in_order ? VOREL_DONE : VOREL_BAD_OPTION;
}

}  // namespace

vorel* vorel_open(const vorel_options* options, vorel_status* status) {
  VOREL_LOGI("vorel_open - E");
  vorel* handle = nullptr;
  vorel_status result = check_options(options);
  if (result == VOREL_DONE) {
    vorel_options aligned = *options;
    aligned.width = align_up_16(aligned.width);
    handle = make_handle(aligned, &result);
  }
  if (result != VOREL_DONE) VOREL_LOGE("vorel_open, %s", vorel_status_text(result));
  if (status != nullptr) *status = result;
  VOREL_LOGI("vorel_open - X");
  return handle;
}

vorel_status vorel_get_handle_info(const vorel* handle, vorel_handle_info* info) {
  if (handle == nullptr) return VOREL_BAD_HANDLE;
  if (info == nullptr || info->size != sizeof(vorel_handle_info)) return VOREL_BAD_RECORD;
  const cnr_tuning& tuning = handle->tuning;
  vorel_handle_info found{};
  found.size = sizeof(found);
  found.tuning_loaded = handle->tuning_loaded ? 1 : 0;
  found.enable_noise_index = tuning.enableNoiseIndex;
  found.level_count = std::clamp(tuning.NILevelNum, 0, kNoiseLevels);
  std::copy_n(tuning.NILevel, found.level_count, found.levels);
  found.spatial = tuning.enable;
  found.wavelet = tuning.mfd_uv_tuning.enable;
  found.workers = handle->pool.worker_count;
  std::snprintf(found.sensor_name, sizeof(found.sensor_name), "%s", handle->sensor_name);
  std::snprintf(found.tuning_date, sizeof(found.tuning_date), "%s", handle->tuning_version);
  std::snprintf(found.dump_path, sizeof(found.dump_path), "%s", handle->dump_path);
  *info = found;
  return VOREL_DONE;
}

const char* vorel_status_text(vorel_status status) {
  switch (status) {
    case VOREL_DONE:
      return "The frame was denoised.";
    case VOREL_BELOW_GATE:
      return "The noise index lies below the tuning's threshold; the frame is untouched.";
    case VOREL_STAGE_SKIPPED:
      return "A stage could not run; the frame is denoised in part.";
    case VOREL_BAD_HANDLE:
      return "The handle is null.";
    case VOREL_BAD_RECORD:
      return "A record is null, or its size field is not one that this library knows.";
    case VOREL_BAD_PLANE:
      return "A plane is null.";
    case VOREL_BAD_STRIDE:
      return "A stride is smaller than a row of its plane.";
    case VOREL_BAD_SIZE:
      return "The size is below 2 x 2, or larger than the handle or the library can hold.";
    case VOREL_BAD_LAYOUT:
      return "The layout is neither NV21 nor NV12.";
    case VOREL_BAD_OPTION:
      return "An option is out of range.";
    case VOREL_BAD_TUNING:
      return "The tuning that the options name cannot be read or is no tuning.";
    case VOREL_NO_MEMORY:
      return "Memory is short.";
    case VOREL_NO_THREADS:
      return "A thread could not be started.";
    case VOREL_NO_PROCESSOR:
      return "The processor lacks instructions that the library needs.";
  }
  return "Unknown status.";
}
