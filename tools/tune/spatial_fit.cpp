#include "tools/tune/spatial_fit.h"

#include <algorithm>
#include <cmath>

#include "tools/tune/frame_trial.h"
#include "tools/tune/score.h"

namespace tool {
namespace {

// How far the frame's chroma may be from the smooth one follows from the bounds of the saturation;
// d_UV_thresh at its highest lets strong noise through to the smooth form too.
std::vector<SpatialValues> make_blends() {
  constexpr int kHighest = 128;
  std::vector<SpatialValues> blends;
  for (const int cs_upper : {6, 8, 12, 18, 24, 36, 48, 72, 96, 144, 192, 255}) {
    for (const int quarters : {2, 3, 4}) {
      blends.push_back(
          {.d_uv = kHighest, .cs_upper = cs_upper, .cs_lower = cs_upper * quarters / 4});
    }
  }
  return blends;
}

const std::vector<SpatialValues>& blends() {
  static const std::vector<SpatialValues> kBlends = make_blends();
  return kBlends;
}

std::string spatial_only(const SpatialValues& blend) {
  TuningValues values;
  values.spatial_path = true;
  values.wavelet_path = false;
  values.levels.resize(1);
  values.levels[0].spatial = blend;
  return tuning_text(values);
}

}  // namespace

void measure_spatial_path(MeasuredCapture& measured) {
  constexpr double kLeastDifference = 1e-3;
  measured.spatial_costs.clear();
  for (const SpatialValues& blend : blends()) {
    const Score score =
        score_of(measured.capture, denoise_with(spatial_only(blend), measured.capture.noisy, 0));
    measured.spatial_costs.push_back(
        20.0 * std::log10(std::max(kLeastDifference, score.ciede2000)) - score.chroma());
  }
}

void fit_spatial_path(const std::vector<const MeasuredCapture*>& captures, TuningValues& values) {
  std::vector<std::vector<double>> costs;
  for (const LevelValues& level : values.levels) {
    std::vector<double>& sums = costs.emplace_back(blends().size(), 0.0);
    double count = 0.0;
    for (const MeasuredCapture* measured : captures) {
      if (measured->capture.noise_index != level.noise_index || measured->spatial_costs.empty()) {
        continue;
      }
      count += 1.0;
      for (size_t i = 0; i < sums.size(); ++i) sums[i] += measured->spatial_costs[i];
    }
    for (double& sum : sums) sum /= std::max(1.0, count);
  }
  const std::vector<size_t> chosen = cheapest_rising(costs, blends());
  for (size_t i = 0; i < values.levels.size(); ++i) values.levels[i].spatial = blends()[chosen[i]];
  values.spatial_path = true;
  values.wavelet_path = false;
}

}  // namespace tool
