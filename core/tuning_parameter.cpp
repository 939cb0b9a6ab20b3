#include "core/tuning_parameter.h"

#include "core/handle.h"
#include "filters/bilateral_weights.h"
#include "platform/log.h"
#include "tuning/tuning.h"

void get_tuning_parameter(vorel* handle, int sensorId) {
  if (handle == nullptr) {
    VOREL_LOGE("get_tuning_parameter, fail: vorel %p", static_cast<void*>(handle));
    return;
  }
  cnr_tuning* tuning = &handle->tuning;
  set_default_tuning(tuning);
  char sensor_name[kSensorNameSize] = {};
  if (GetCurrentSensorInfo(sensor_name, sensorId)) {
    VOREL_LOGI("SetCurrentSensorInfo(sensorId: %d) success", sensorId);
    VOREL_LOGI("SENSOR_NAME: %s", sensor_name);
    load_tuning_file(sensor_name, tuning);
  } else {
    VOREL_LOGI("SetCurrentSensorInfo(sensorId: %d) failed", sensorId);
  }
  build_stored_weights(&tuning->bilateralfiltering_tuning);
  if (handle->debug_mode == kDebugTuning) log_tuning(tuning);
}

void update_tuning_parameter(vorel* handle, int noiseIndex) {
  if (handle == nullptr) {
    VOREL_LOGE("update_tuning_parameter, fail: vorel %p", static_cast<void*>(handle));
    return;
  }
  select_tuning(&handle->tuning, noiseIndex);
  log_current_tuning(&handle->tuning);
}
