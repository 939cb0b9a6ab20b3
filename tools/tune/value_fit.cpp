#include "tools/tune/value_fit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "tools/measure/chroma_noise.h"
#include "tools/tune/frame_trial.h"

namespace tool {
namespace {

// The spatial path must better the mean of all levels by so many dB to be worth its time.
constexpr double kSpatialGain = 0.03;
// The gate lets frames through from the first level on that gains so many dB.
constexpr double kVisibleGain = 0.3;

struct Level {
  int noise_index;
  std::vector<const MeasuredCapture*> captures;
};

std::vector<Level> levels_of(const std::vector<const MeasuredCapture*>& captures) {
  std::map<int, Level> by_index;
  for (const MeasuredCapture* measured : captures) {
    Level& level = by_index[measured->capture.noise_index];
    level.noise_index = measured->capture.noise_index;
    level.captures.push_back(measured);
  }
  std::vector<Level> levels;
  for (const auto& [index, level] : by_index) levels.push_back(level);
  return levels;
}

// Nothing when the blend was not measured on every capture.
std::optional<LevelCurves> curves_of(const Level& level, size_t candidate) {
  LevelCurves curves;
  for (const MeasuredCapture* measured : level.captures) {
    if (!measured->curves[candidate]) return std::nullopt;
    curves.push_back(measured->curves[candidate].get());
  }
  return curves;
}

// The noise that belongs to a level: the mean of the logarithms, in which indices are interpolated.
std::optional<double> mean_chroma_noise(const Level& level) {
  double sum = 0.0;
  double count = 0.0;
  for (const MeasuredCapture* measured : level.captures) {
    if (!measured->chroma_noise) continue;
    sum += std::log(*measured->chroma_noise);
    count += 1.0;
  }
  if (count == 0.0) return std::nullopt;
  return std::exp(sum / count);
}

// Noise that does not rise from level to level tells no index.
void drop_useless_noise(std::vector<LevelValues>& levels) {
  constexpr double kLeastRise = 1.01;  // three digits are written
  bool useful = levels.front().chroma_noise.has_value();
  for (size_t i = 1; i < levels.size(); ++i) {
    useful = useful && levels[i].chroma_noise &&
             *levels[i].chroma_noise >= kLeastRise * *levels[i - 1].chroma_noise;
  }
  if (useful) return;
  for (LevelValues& level : levels) level.chroma_noise.reset();
}

constexpr double kNever = std::numeric_limits<double>::infinity();

// What each level costs at best with each blend.
std::vector<std::vector<double>> blend_costs(const std::vector<Level>& levels,
                                             const FitSettings& settings) {
  std::vector<std::vector<double>> costs;
  for (const Level& level : levels) {
    std::vector<double>& row = costs.emplace_back(spatial_candidates().size(), kNever);
    for (size_t i = 0; i < row.size(); ++i) {
      if (settings.spatial == SpatialChoice::kOff && i > 0) continue;
      if (settings.spatial == SpatialChoice::kOn && i == 0) continue;
      const std::optional<LevelCurves> curves = curves_of(level, i);
      if (!curves) continue;
      row[i] = level_cost(*curves, fit_thresholds({*curves}, settings.prices)[0], settings.prices);
    }
  }
  return costs;
}

bool may_follow(const SpatialValues& low, const SpatialValues& high) {
  return low.d_uv <= high.d_uv && low.cs_upper <= high.cs_upper && low.cs_lower <= high.cs_lower;
}

std::vector<size_t> choose_blends(const std::vector<Level>& levels, const FitSettings& settings) {
  const std::vector<std::vector<double>> costs = blend_costs(levels, settings);
  std::vector<size_t> chosen = cheapest_rising(costs, spatial_candidates());
  if (settings.spatial != SpatialChoice::kAuto) return chosen;
  double gain = 0.0;
  for (size_t i = 0; i < levels.size(); ++i) gain += costs[i][0] - costs[i][chosen[i]];
  if (gain < kSpatialGain * static_cast<double>(levels.size())) {
    chosen.assign(levels.size(), 0);
  }
  return chosen;
}

}  // namespace

const std::vector<SpatialValues>& spatial_candidates() {
  static const std::vector<SpatialValues> kBlends = {{},           {4, 48, 36},  {8, 48, 36},
                                                     {16, 48, 36}, {32, 48, 36}, {64, 48, 36}};
  return kBlends;
}

std::vector<size_t> cheapest_rising(const std::vector<std::vector<double>>& costs,
                                    const std::vector<SpatialValues>& blends) {
  std::vector<std::vector<double>> sums = costs;
  std::vector<std::vector<size_t>> came_from(costs.size(), std::vector<size_t>(blends.size()));
  for (size_t level = 1; level < costs.size(); ++level) {
    for (size_t i = 0; i < blends.size(); ++i) {
      double best = kNever;
      for (size_t j = 0; j < blends.size(); ++j) {
        if (!may_follow(blends[j], blends[i]) || sums[level - 1][j] >= best) continue;
        best = sums[level - 1][j];
        came_from[level][i] = j;
      }
      sums[level][i] += best;
    }
  }
  std::vector<size_t> chosen(costs.size());
  const std::vector<double>& last = sums.back();
  chosen.back() = static_cast<size_t>(std::min_element(last.begin(), last.end()) - last.begin());
  for (size_t level = costs.size() - 1; level > 0; --level) {
    chosen[level - 1] = came_from[level][chosen[level]];
  }
  return chosen;
}

MeasuredCapture::MeasuredCapture(Capture capture_)
    : capture(std::move(capture_)), curves(spatial_candidates().size()) {
  const Nv21Frame& frame = capture.noisy;
  const std::optional<ChromaNoise> noise =
      measure_chroma_noise({frame.y(), static_cast<size_t>(frame.width), frame.vu(),
                            static_cast<size_t>(frame.chroma_stride()), frame.width, frame.height});
  if (noise && noise->estimate > 0.0) chroma_noise = noise->estimate;
}

void measure_blend(MeasuredCapture& measured, size_t candidate) {
  const Capture& capture = measured.capture;
  ChromaImage noisy(capture.noisy);
  if (candidate > 0) {
    // The wavelet path works on what the spatial path leaves, which is whole numbers.
    TuningValues spatial_only;
    spatial_only.spatial_path = true;
    spatial_only.wavelet_path = false;
    spatial_only.levels.resize(1);
    spatial_only.levels[0].spatial = spatial_candidates()[candidate];
    noisy = ChromaImage(denoise_with(tuning_text(spatial_only), capture.noisy, 0));
  }
  const FrameBands bands = decompose_chroma(noisy);
  const FrameBands truth = decompose_chroma(capture.truth_chroma);
  const double share = capture.truth_noise_share;
  measured.curves[candidate] = std::make_unique<CaptureCurves>(
      CaptureCurves{ThresholdCurves(bands.planes[0], truth.planes[0], share),
                    ThresholdCurves(bands.planes[1], truth.planes[1], share)});
}

TuningValues fit_values(const std::vector<const MeasuredCapture*>& captures,
                        const FitSettings& settings) {
  const std::vector<Level> levels = levels_of(captures);
  const std::vector<size_t> blends = choose_blends(levels, settings);
  std::vector<LevelCurves> curves;
  for (size_t i = 0; i < levels.size(); ++i) curves.push_back(*curves_of(levels[i], blends[i]));
  const std::vector<Thresholds> thresholds = fit_thresholds(curves, settings.prices);

  TuningValues values;
  values.enable_noise_index = levels.back().noise_index;
  for (size_t i = levels.size(); i-- > 0;) {
    LevelValues level;
    level.noise_index = levels[i].noise_index;
    level.thresholds = thresholds[i];
    level.spatial = spatial_candidates()[blends[i]];
    level.chroma_noise = mean_chroma_noise(levels[i]);
    values.levels.insert(values.levels.begin(), level);
    values.spatial_path = values.spatial_path || blends[i] > 0;
    Thresholds untouched;
    untouched.fill(kThresholdFloor);
    const double gain = level_cost(curves[i], untouched, kNoPrices) -
                        level_cost(curves[i], thresholds[i], kNoPrices);
    if (gain >= kVisibleGain) values.enable_noise_index = level.noise_index;
  }
  drop_useless_noise(values.levels);
  return values;
}

TuningValues start_values(const std::vector<const MeasuredCapture*>& captures) {
  TuningValues values;
  for (const Level& level : levels_of(captures)) {
    LevelValues& start = values.levels.emplace_back();
    start.noise_index = level.noise_index;
    start.thresholds = thresholds_from_noise(*curves_of(level, 0));
  }
  return values;
}

}  // namespace tool
