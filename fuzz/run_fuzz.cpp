// Frames of any size and content, under any tuning, on a handle of another size. The planes end at
// unreadable pages.
#include <android/log.h>
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <random>

#include "core/handle.h"
#include "tests/support/guarded_plane.h"
#include "vorel/filters.h"
#include "vorel/frame.h"

namespace {

// Big enough for several strips and levels, small enough for many frames a second.
constexpr int kLargestWidth = 160;
constexpr int kLargestHeight = 200;
constexpr int kLargestSpan = 6;

// Small values of a field are the likely ones; the others must do no harm either.
int32_t any_int(FuzzedDataProvider& input, int32_t low, int32_t high) {
  return input.ConsumeIntegralInRange<int>(0, 7) == 0 ? input.ConsumeIntegral<int32_t>()
                                                      : input.ConsumeIntegralInRange(low, high);
}

float any_float(FuzzedDataProvider& input) {
  return input.ConsumeBool() ? input.ConsumeFloatingPointInRange(-10.0f, 200.0f)
                             : input.ConsumeFloatingPoint<float>();
}

// What a tuning file can set, and the tap count, which only memory can.
void fill_tuning(FuzzedDataProvider& input, cnr_tuning& tuning) {
  tuning.enable = input.ConsumeBool();
  tuning.enableNoiseIndex = any_int(input, 0, 1000);
  tuning.NILevelNum = input.ConsumeIntegralInRange(0, kNoiseLevels);
  for (int32_t& level : tuning.NILevel) level = any_int(input, 0, 10000);
  tuning.boxfiltering_tuning.tab_bit = input.ConsumeIntegralInRange(0, 7);

  bilateralfiltering_tuning& bilateral = tuning.bilateralfiltering_tuning;
  for (int32_t* span : {&bilateral.span_Y_row, &bilateral.span_Y_col, &bilateral.span_UV_row,
                        &bilateral.span_UV_col}) {
    *span = input.ConsumeIntegralInRange(-1, kLargestSpan);
  }
  bilateral.val_delta_th = any_int(input, 0, 20);
  bilateral.val_weight_denom_shift = any_int(input, 0, 31);
  for (int32_t& coefficient : bilateral.val_weight_coef) coefficient = any_int(input, -9999, 9999);
  update_bilateral_filter_tuning(&bilateral);

  interleaving_tuning& interleaving = tuning.interleaving_tuning;
  for (int level = 0; level < kNoiseLevels; ++level) {
    interleaving.d_Y_upper_thresh_table[level] = any_int(input, 0, 255);
    interleaving.d_Y_lower_thresh_table[level] = any_int(input, 0, 255);
    interleaving.d_UV_thresh_table[level] = any_int(input, 0, 255);
    interleaving.cs_upper_thresh_table[level] = any_int(input, 0, 255);
    interleaving.cs_lower_thresh_table[level] = any_int(input, 0, 255);
  }
  mfd_uv_tuning& wavelet = tuning.mfd_uv_tuning;
  wavelet.enable = input.ConsumeBool();
  for (auto* table :
       {&wavelet.radialModeTable, &wavelet.denoiseThrChroma0Table, &wavelet.denoiseThrChroma1Table,
        &wavelet.denoiseThrChroma2Table, &wavelet.denoiseThrChroma3Table,
        &wavelet.denoiseThrChroma4Table, &wavelet.CSatParam1Table, &wavelet.CSatParam2Table,
        &wavelet.CSatThr1Table, &wavelet.CSatThr2Table}) {
    std::fill(std::begin(*table), std::end(*table), any_float(input));
  }
}

size_t plane_bytes(int row_bytes, int rows, int stride) {
  if (rows == 0 || stride < row_bytes) return 0;
  return static_cast<size_t>(stride) * static_cast<size_t>(rows - 1) +
         static_cast<size_t>(row_bytes);
}

void run_frame(FuzzedDataProvider& input, vorel* handle) {
  // Steps of one now and then: sizes that the library refuses.
  const int width = input.ConsumeBool() ? 16 * input.ConsumeIntegralInRange(1, kLargestWidth / 16)
                                        : input.ConsumeIntegralInRange(0, kLargestWidth);
  const int height = input.ConsumeIntegralInRange(0, kLargestHeight);
  const auto guard = input.ConsumeBool() ? GuardedBytes::Guard::kEnd : GuardedBytes::Guard::kStart;
  // The frame call takes any size and stride, and planes that end with their last row.
  const bool by_frame_call = input.ConsumeBool();
  const int luma_stride = width + (by_frame_call ? input.ConsumeIntegralInRange(-1, 40) : 0);
  const int chroma_stride =
      by_frame_call ? (width + 1) / 2 * 2 + input.ConsumeIntegralInRange(-1, 40) : width;
  GuardedBytes luma(plane_bytes(width, height, luma_stride), guard);
  GuardedBytes chroma(by_frame_call
                          ? plane_bytes((width + 1) / 2 * 2, (height + 1) / 2, chroma_stride)
                          : plane_bytes(width, height / 2, width),
                      guard);
  std::mt19937 random(input.ConsumeIntegral<uint32_t>());
  const Pattern pattern = input.PickValueInArray(kAllPatterns);
  fill_pattern(luma.data(), luma.size(), pattern, random);
  fill_pattern(chroma.data(), chroma.size(), pattern, random);

  const int noise_index = any_int(input, 0, 50000);
  if (by_frame_call) {
    const vorel_frame frame{sizeof(frame), luma.data(),       chroma.data(),
                            luma_stride,   chroma_stride,     width,
                            height,        VOREL_LAYOUT_NV12, noise_index};
    vorel_denoise_frame(handle, &frame, nullptr);
    return;
  }
  // Other formats keep the handle's slot for good.
  const int format = input.ConsumeBool() ? VOREL_FMT_NV21 : VOREL_FMT_NM21;
  vorel_run(handle, luma.data(), chroma.data(), width, height, format, noise_index);
  vorel_release_frame_buffers(handle);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  __android_log_set_minimum_priority(ANDROID_LOG_FATAL);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider input(data, size);
  const int width = 16 * input.ConsumeIntegralInRange(1, kLargestWidth / 16);
  const int height = input.ConsumeIntegralInRange(1, kLargestHeight);
  vorel* handle = vorel_init(width, height, VOREL_SCENARIO_CAPTURE, 0);
  if (handle == nullptr) return 0;
  fill_tuning(input, handle->tuning);
  for (int frames = input.ConsumeIntegralInRange(1, 3); frames > 0; --frames) {
    run_frame(input, handle);
  }
  if (vorel_deinit(handle) != 0) __builtin_trap();
  return 0;
}
