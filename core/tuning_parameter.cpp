#include "core/tuning_parameter.h"

#include "core/handle.h"
#include "filters/bilateral_weights.h"
#include "platform/log.h"
#include "tuning/tuning.h"

bool get_tuning_parameter(vorel* handle, const vorel_options& options) {
  if (handle == nullptr) {
    VOREL_LOGE("get_tuning_parameter, fail: vorel %p", static_cast<void*>(handle));
    return false;
  }
  const int sensorId = static_cast<int>(options.sensor_id);
  cnr_tuning* tuning = &handle->tuning;
  const bool named = options.tuning_path != nullptr || options.tuning_text != nullptr;
  set_default_tuning(tuning);
  const bool known = GetCurrentSensorInfo(handle->sensor_name, sensorId);
  VOREL_LOGI("SetCurrentSensorInfo(sensorId: %d) %s", sensorId, known ? "success" : "failed");
  if (known) VOREL_LOGI("SENSOR_NAME: %s", handle->sensor_name);
  if (known || named) {
    handle->tuning_loaded = load_tuning(
        {handle->sensor_name, options.tuning_path, options.tuning_text, options.tuning_text_bytes},
        tuning, handle->tuning_version);
  }
  if (options.disable_spatial != 0) tuning->enable = 0;
  if (options.disable_wavelet != 0) tuning->mfd_uv_tuning.enable = 0;
  build_stored_weights(&tuning->bilateralfiltering_tuning);
  if (handle->debug_mode == kDebugTuning) log_tuning(tuning);
  return handle->tuning_loaded || !named;
}

void update_tuning_parameter(vorel* handle, int noiseIndex) {
  if (handle == nullptr) {
    VOREL_LOGE("update_tuning_parameter, fail: vorel %p", static_cast<void*>(handle));
    return;
  }
  select_tuning(&handle->tuning, noiseIndex);
  log_current_tuning(&handle->tuning);
}
