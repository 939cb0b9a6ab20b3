// vorel_init and vorel_deinit.
#include <cstdlib>

#include "core/make_handle.h"
#include "platform/log.h"

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
  free_planes(handle);
  free_spare(&handle->spare);
  std::free(handle->continued_frame);
  settle_pool(&handle->pool);
  delete handle->pool.threads;
  std::free(handle);
  VOREL_LOGI("vorel_deinit - X");
  return 0;
}
