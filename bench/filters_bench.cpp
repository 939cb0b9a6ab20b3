// The spatial filters on one core: all strips of a luma plane, and one 1/16 plane.
#include "bench/bench_frames.h"
#include "vorel/filters.h"

namespace {

constexpr bilateralfiltering_tuning kDefaultTuning = {
    3,  3,
    3,  3,
    7,  {65489, 1375, -5503, 835, -37},
    10, {63, 60, 51, 38, 26, 15, 7, 2, 2, 2, 2, 2, 2, 2, 2, 2}};

// Coefficients whose weights need all four bytes.
constexpr bilateralfiltering_tuning wide_tuning() {
  bilateralfiltering_tuning tuning = kDefaultTuning;
  tuning.val_weight_coef[0] = -tuning.val_weight_coef[0];
  tuning.val_weight_denom_shift = 0;
  return tuning;
}

// Byte weights that fall with the difference, up to the threshold.
constexpr bilateralfiltering_tuning threshold_tuning(int32_t threshold) {
  bilateralfiltering_tuning tuning{};
  tuning.span_Y_row = tuning.span_Y_col = 3;
  tuning.val_delta_th = threshold;
  tuning.val_weight_coef[0] = 255;
  tuning.val_weight_coef[1] = -1;
  return tuning;
}

// The interior function on all of the plane.
void filter_interior(uint8_t* src, uint8_t* dst, int32_t height, int32_t width, int32_t span_row,
                     int32_t span_col, bilateralfiltering_tuning* tuning) {
  bilateral_filter_center_neon(src, dst, height, width, 0, 0, 0, 0, span_row, span_col, tuning);
}

void run_box_filter(benchmark::State& state, const FrameSize& size) {
  const boxfiltering_tuning tuning{4};
  const std::vector<uint8_t> src = make_bench_plane(size.luma_bytes(), 1);
  std::vector<uint8_t> low(src.size());
  std::vector<uint8_t> high(src.size());
  box_filter_job job{};
  job.width = job.stride = size.width;
  job.aligned_height = job.row_limit = size.height;
  job.src = src.data();
  job.low = low.data();
  job.high = high.data();
  job.tuning = &tuning;
  constexpr int kStrips = 64;
  for (auto _ : state) {
    for (int strip = 0; strip < kStrips; ++strip) {
      job.row_first = size.height / kStrips * strip;
      job.row_end = strip == kStrips - 1 ? size.height : job.row_first + size.height / kStrips;
      box_filter_col(&job);
    }
    benchmark::ClobberMemory();
  }
}

using BilateralFilter = decltype(bilateral_filter);

void register_bilateral(const std::string& name, BilateralFilter* filter,
                        const bilateralfiltering_tuning& tuning) {
  register_for_frames("kernel/" + name, [=](benchmark::State& state, const FrameSize& size) {
    const int height = (size.height + 15) / 16;
    const int width = size.width / 16;
    bilateralfiltering_tuning own = tuning;
    std::vector<uint8_t> src = make_bench_plane(static_cast<size_t>(height * width), 2);
    std::vector<uint8_t> dst(src.size());
    for (auto _ : state) {
      filter(src.data(), dst.data(), height, width, tuning.span_Y_row, tuning.span_Y_col, &own);
      benchmark::ClobberMemory();
    }
  });
}

[[maybe_unused]] const bool g_registered = [] {
  register_for_frames("kernel/box_filter_col", run_box_filter);
  register_bilateral("bilateral_filter", bilateral_filter, kDefaultTuning);
  register_bilateral("bilateral_filter_opt", bilateral_filter_opt, kDefaultTuning);
  register_bilateral("bilateral_filter_wide_weights", bilateral_filter, wide_tuning());
  // Thresholds that bilateral_filter sends to the stored weights reach the polynomial through the
  // interior function only: 31 takes two tables, 255 is computed sample by sample.
  register_bilateral("bilateral_filter_center_th31", filter_interior, threshold_tuning(31));
  register_bilateral("bilateral_filter_center_th255", filter_interior, threshold_tuning(255));
  return true;
}();

}  // namespace
