// Frames of any size, stride, layout, noise index and content, legal or not, on a handle of another
// size, by both calls. The planes end at unreadable pages. What refuses a frame leaves it as it
// was.
#include <cstdlib>
#include <vector>

#include "core/handle.h"
#include "fuzz/debug_level.h"
#include "fuzz/frame_input.h"

namespace {

// Big enough for several levels, small enough for many frames a second; tall ones have several
// strips of the restore step.
constexpr int kLargestWidth = 80;
constexpr int kLargestHeight = 70;
constexpr int kUsualHeight = 24;
constexpr int kTallHeight = 1100;

int any_height(FuzzedDataProvider& input, int width) {
  const int choice = input.ConsumeIntegralInRange(0, 63);
  if (choice == 1 && width <= 32) return input.ConsumeIntegralInRange(0, kTallHeight);
  return input.ConsumeIntegralInRange(0, choice < 16 ? kLargestHeight : kUsualHeight);
}

std::vector<uint8_t> bytes_of(FuzzFrame& frame) {
  std::vector<uint8_t> bytes(frame.luma().data(), frame.luma().data() + frame.luma().size());
  bytes.insert(bytes.end(), frame.chroma().data(), frame.chroma().data() + frame.chroma().size());
  return bytes;
}

void run_frame(FuzzedDataProvider& input, vorel* handle) {
  // Steps of one now and then: sizes that vorel_run refuses.
  const int width = input.ConsumeBool() ? 16 * input.ConsumeIntegralInRange(1, kLargestWidth / 16)
                                        : input.ConsumeIntegralInRange(0, kLargestWidth);
  const int height = any_height(input, width);
  const bool by_frame_call = input.ConsumeBool();
  const int gap = by_frame_call ? input.ConsumeIntegralInRange(-1, 40) : 0;
  const int chroma_gap = by_frame_call ? input.ConsumeIntegralInRange(-1, 40) : 0;
  const int32_t layout = input.ConsumeIntegralInRange<int32_t>(-1, 2);
  FuzzFrame frame(input, width, height, width + gap, (width + 1) / 2 * 2 + chroma_gap,
                  by_frame_call ? (height + 1) / 2 : height / 2, layout);
  const int noise_index = any_int(input, 0, 50000);
  const std::vector<uint8_t> before = bytes_of(frame);
  bool untouched = false;
  if (by_frame_call) {
    const vorel_frame record = frame.record(noise_index);
    vorel_frame_info info{};
    info.size = sizeof(info);
    const vorel_status status = vorel_denoise_frame(handle, &record, &info);
    untouched = status < 0 || status == VOREL_BELOW_GATE;
    if (info.dumps_failed != 0) std::abort();
  } else {
    // Other formats keep the handle's slot for good.
    const int format = input.ConsumeBool() ? VOREL_FMT_NV21 : VOREL_FMT_NM21;
    void* result = vorel_run(handle, frame.luma().data(), frame.chroma().data(), width, height,
                             format, noise_index);
    untouched = result == handle;
    vorel_release_frame_buffers(handle);
  }
  if (untouched && bytes_of(frame) != before) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  prepare_frames();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider input(data, size);
  const int width = 16 * input.ConsumeIntegralInRange(1, kLargestWidth / 16);
  vorel_options options = vorel_default_options(width, any_height(input, width));
  options.workers = input.ConsumeIntegralInRange(1, 3);
  options.nice = 0;
  vorel* handle = vorel_open(&options, nullptr);
  if (handle == nullptr) return 0;
  fill_tuning(input, may_take_wavelet(data, size), handle->tuning);
  {
    const DebugLevel level(input, handle);
    for (int frames = input.ConsumeIntegralInRange(1, 3); frames > 0; --frames) {
      run_frame(input, handle);
    }
  }
  if (vorel_deinit(handle) != 0) std::abort();
  return 0;
}
