#include "tools/library/engine.h"

#include <stdlib.h>

#include <algorithm>
#include <vector>

#include "tools/files/failure.h"

namespace tool {
namespace {

constexpr int kLeastSide = 2;  // of a frame that the library takes
constexpr const char* kStages[VOREL_STAGE_COUNT] = {"deinterleaving", "box filter", "smoothing",
                                                    "restoring", "wavelet"};

Size size_for_library(Size size) {
  return {std::max(size.width, kLeastSide), std::max(size.height, kLeastSide)};
}

std::string skipped_stages(uint32_t skipped) {
  std::string names;
  for (int i = 0; i < VOREL_STAGE_COUNT; ++i) {
    if ((skipped >> i & 1) != 0) names += (names.empty() ? "" : ", ") + std::string(kStages[i]);
  }
  return names;
}

// Asks the library for all its dumps. It listens when a handle is opened, so that the handles of
// trials that come later are not asked.
class DumpRequest {
 public:
  explicit DumpRequest(const std::string& directory) : is_made_(!directory.empty()) {
    if (!is_made_) return;
    setenv("VOREL_DUMP_DIR", directory.c_str(), 1);
    setenv("PERSIST_VENDOR_LIBVOREL_DEBUG", "5", 1);
  }
  ~DumpRequest() {
    if (!is_made_) return;
    unsetenv("VOREL_DUMP_DIR");
    unsetenv("PERSIST_VENDOR_LIBVOREL_DEBUG");
  }
  DumpRequest(const DumpRequest&) = delete;
  DumpRequest& operator=(const DumpRequest&) = delete;

 private:
  bool is_made_;
};

}  // namespace

Engine::Engine(const EngineSettings& settings, const LibraryCalls& calls) : calls_(calls) {
  const Size size = size_for_library(settings.size);
  vorel_options options = vorel_default_options(size.width, size.height);
  options.sensor_id = settings.sensor;
  options.cpu_mask = 0xFFFFFFFF;  // a workstation's workers need not keep to a phone's eight
  options.tuning_text = settings.tuning.data();
  options.tuning_text_bytes = settings.tuning.size();
  const DumpRequest dumps(settings.dumps);
  vorel_status status = VOREL_DONE;
  handle_ = calls_.open(&options, &status);
  if (handle_ == nullptr) {
    throw Failure(kFailed, std::string("the library did not start: ") + vorel_status_text(status));
  }
  info_.size = sizeof(info_);
  static_cast<void>(calls_.get_handle_info(handle_, &info_));
}

Engine::~Engine() { calls_.deinit(handle_); }

vorel_frame_info Engine::process(Nv21Frame& frame, bool separate_planes, int noise_index) {
  const Size size{frame.width, frame.height};
  if (!(size == size_for_library(size))) {
    Nv21Frame larger = with_size(frame, size_for_library(size));
    const vorel_frame_info report = process(larger, separate_planes, noise_index);
    frame = with_size(larger, size);
    return report;
  }
  // Two exact buffers, so that nothing can rely on the planes being neighbours.
  std::vector<uint8_t> luma;
  std::vector<uint8_t> chroma;
  if (separate_planes) {
    luma.assign(frame.y(), frame.y() + frame.luma_bytes());
    chroma.assign(frame.vu(), frame.vu() + frame.chroma_bytes());
  }
  const vorel_frame planes{sizeof(vorel_frame),
                           separate_planes ? luma.data() : frame.y(),
                           separate_planes ? chroma.data() : frame.vu(),
                           frame.width,
                           frame.chroma_stride(),
                           frame.width,
                           frame.height,
                           VOREL_LAYOUT_NV21,
                           noise_index};
  vorel_frame_info report{};
  report.size = sizeof(report);
  const vorel_status status = calls_.denoise_frame(handle_, &planes, &report);
  if (status != VOREL_DONE && status != VOREL_BELOW_GATE) {
    const std::string stages = skipped_stages(report.skipped);
    throw Failure(kFailed, std::string("the library did not process the frame: ") +
                               vorel_status_text(status) +
                               (stages.empty() ? "" : " Left out: " + stages + "."));
  }
  if (separate_planes) {
    std::copy(luma.begin(), luma.end(), frame.y());
    std::copy(chroma.begin(), chroma.end(), frame.vu());
  }
  return report;
}

}  // namespace tool
