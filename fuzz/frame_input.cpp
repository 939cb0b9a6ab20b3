#include "fuzz/frame_input.h"

#include <android/log.h>
#include <pthread.h>

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <iterator>
#include <random>

#include "vorel/filters.h"

namespace {

size_t plane_bytes(int row_bytes, int rows, int stride) {
  if (rows == 0 || stride < row_bytes) return 0;
  return static_cast<size_t>(stride) * static_cast<size_t>(rows - 1) +
         static_cast<size_t>(row_bytes);
}

// Bytes of the input over and over, or a pattern.
void fill(FuzzedDataProvider& input, GuardedBytes& plane) {
  const Pattern pattern =
      input.PickValueInArray({Pattern::kRandom, Pattern::kLow, Pattern::kHigh,
                              Pattern::kAlternating, Pattern::kNear, Pattern::kPicture});
  if (input.ConsumeBool()) {
    std::mt19937 random(input.ConsumeIntegral<uint32_t>());
    fill_pattern(plane.data(), plane.size(), pattern, random);
    return;
  }
  const auto bytes = input.ConsumeBytes<uint8_t>(input.ConsumeIntegralInRange<size_t>(1, 200));
  for (size_t i = 0; i < plane.size(); ++i) {
    plane.data()[i] = bytes.empty() ? 128 : bytes[i % bytes.size()];
  }
}

}  // namespace

void prepare_frames() {
  __android_log_set_minimum_priority(ANDROID_LOG_FATAL);
#if defined(__GLIBC__)
  constexpr size_t kStackBytes = 256 * 1024;
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kStackBytes);
  if (pthread_setattr_default_np(&attributes) != 0) std::abort();
  pthread_attr_destroy(&attributes);
#endif
}

int32_t any_int(FuzzedDataProvider& input, int32_t low, int32_t high) {
  return input.ConsumeIntegralInRange<int>(0, 7) == 0 ? input.ConsumeIntegral<int32_t>()
                                                      : input.ConsumeIntegralInRange(low, high);
}

float any_float(FuzzedDataProvider& input) {
  return input.ConsumeBool() ? input.ConsumeFloatingPointInRange(-10.0f, 200.0f)
                             : input.ConsumeFloatingPoint<float>();
}

bool may_take_wavelet(const uint8_t* data, size_t size) {
  uint32_t hash = 2166136261;
  for (size_t i = 0; i < size; ++i) hash = (hash ^ data[i]) * uint64_t{16777619} & UINT32_MAX;
  return hash >> 29 == 0;
}

void fill_tuning(FuzzedDataProvider& input, bool wavelet_too, cnr_tuning& tuning) {
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
  wavelet.enable = input.ConsumeBool() && wavelet_too;
  for (auto* table :
       {&wavelet.radialModeTable, &wavelet.denoiseThrChroma0Table, &wavelet.denoiseThrChroma1Table,
        &wavelet.denoiseThrChroma2Table, &wavelet.denoiseThrChroma3Table,
        &wavelet.denoiseThrChroma4Table, &wavelet.CSatParam1Table, &wavelet.CSatParam2Table,
        &wavelet.CSatThr1Table, &wavelet.CSatThr2Table}) {
    std::fill(std::begin(*table), std::end(*table), any_float(input));
  }
}

FuzzFrame::FuzzFrame(FuzzedDataProvider& input, int width, int height, int luma_stride,
                     int chroma_stride, int chroma_rows, int32_t layout)
    : width_(width),
      height_(height),
      luma_stride_(luma_stride),
      chroma_stride_(chroma_stride),
      layout_(layout),
      guard_(input.ConsumeBool() ? GuardedBytes::Guard::kEnd : GuardedBytes::Guard::kStart),
      luma_(plane_bytes(width, height, luma_stride), guard_),
      chroma_(plane_bytes((width + 1) / 2 * 2, chroma_rows, chroma_stride), guard_) {
  fill(input, luma_);
  fill(input, chroma_);
}
