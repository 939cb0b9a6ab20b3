#include "tools/tune/frame_trial.h"

#include <memory>

#include "tools/files/failure.h"
#include "vorel/frame.h"

namespace tool {
namespace {

struct HandleRelease {
  void operator()(vorel* handle) const { vorel_deinit(handle); }
};

Failure refusal(vorel_status status) {
  return {kFailed, std::string("the library refused a frame: ") + vorel_status_text(status)};
}

}  // namespace

Nv21Frame denoise_with(const std::string& tuning, const Nv21Frame& frame, int noise_index) {
  vorel_options options = vorel_default_options(frame.width, frame.height);
  options.workers = 1;  // the cores are busy with other frames
  options.nice = 0;
  options.tuning_text = tuning.data();
  options.tuning_text_bytes = tuning.size();
  vorel_status status = VOREL_DONE;
  const std::unique_ptr<vorel, HandleRelease> handle(vorel_open(&options, &status));
  if (!handle) throw refusal(status);
  Nv21Frame result = frame;
  vorel_frame record{};
  record.size = sizeof(record);
  record.luma = result.y();
  record.chroma = result.vu();
  record.luma_stride = result.width;
  record.chroma_stride = result.chroma_stride();
  record.width = result.width;
  record.height = result.height;
  record.layout = VOREL_LAYOUT_NV21;
  record.noise_index = noise_index;
  status = vorel_denoise_frame(handle.get(), &record, nullptr);
  if (status < 0 || status == VOREL_STAGE_SKIPPED) throw refusal(status);
  return result;
}

}  // namespace tool
