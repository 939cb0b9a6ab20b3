#include "tools/tune/level_fit.h"

#include <algorithm>
#include <cmath>

#include "tools/tune/minimise.h"
#include "tools/tune/tuning_values.h"

namespace tool {
namespace {

// Octaves above the floor; what the search works on.
using Octaves = std::array<double, kThresholds>;

constexpr double kGridStep = 1.0 / 16.0;
// Mean squared error of rounding to bytes, which every result has.
constexpr double kRounding = 1.0 / 12.0;
constexpr double kThresholdScale = 36.40625;  // of the wavelet stage

double to_octaves(double threshold) {
  return std::log2(std::max(threshold, kThresholdFloor) / kThresholdFloor);
}

double most_octaves(size_t threshold) { return to_octaves(kThresholdCaps[threshold]); }

Thresholds to_thresholds(const Octaves& octaves) {
  Thresholds thresholds;
  for (size_t i = 0; i < kThresholds; ++i) {
    thresholds[i] = kThresholdFloor * std::exp2(std::clamp(octaves[i], 0.0, most_octaves(i)));
  }
  return thresholds;
}

// How the pull of bursts is spread over the thresholds, from the low band to the finest details.
constexpr double kPullShares[kThresholds] = {0.0, 0.25, 0.5, 1.0, 1.0};

double burst_pull(const LevelCurves& level, const Thresholds& thresholds) {
  double bursts = 0.0;
  for (const CaptureCurves* capture : level) bursts += (*capture)[0].truth_is_mean() ? 1.0 : 0.0;
  if (bursts == 0.0) return 0.0;
  const Thresholds suggested = thresholds_from_noise(level);
  double pull = 0.0;
  for (size_t i = 0; i < kThresholds; ++i) {
    const double distance = to_octaves(thresholds[i]) - to_octaves(suggested[i]);
    pull += kPullShares[i] * distance * distance;
  }
  return pull * bursts / static_cast<double>(level.size());
}

double cost_of(const LevelCurves& level, const Octaves& octaves, const Prices& prices) {
  return level_cost(level, to_thresholds(octaves), prices);
}

// One level on its own, from two starts: the surface may have a second valley above the first.
Octaves fit_alone(const LevelCurves& level, const Prices& prices) {
  std::vector<Bounds> bounds;
  for (size_t i = 0; i < kThresholds; ++i) bounds.push_back({0.0, most_octaves(i)});
  const auto cost = [&](const std::vector<double>& point) {
    Octaves octaves;
    std::copy(point.begin(), point.end(), octaves.begin());
    return cost_of(level, octaves, prices);
  };
  const Thresholds start = thresholds_from_noise(level);
  std::vector<double> best;
  double best_cost = 0.0;
  for (const double shift : {0.0, 2.0}) {
    std::vector<double> point;
    for (size_t i = 0; i < kThresholds; ++i) {
      point.push_back(std::min(most_octaves(i), to_octaves(start[i]) + shift));
    }
    const double reached = minimise(cost, bounds, 1.0, 0.01, 400, point);
    if (best.empty() || reached < best_cost) {
      best_cost = reached;
      best = point;
    }
  }
  Octaves octaves;
  std::copy(best.begin(), best.end(), octaves.begin());
  return octaves;
}

// Rising values nearest to these: falling neighbours share their mean.
void make_rising(std::vector<Octaves>& levels, size_t threshold) {
  struct Run {
    double sum;
    size_t count;
    [[nodiscard]] double mean() const { return sum / static_cast<double>(count); }
  };
  std::vector<Run> runs;
  for (const Octaves& level : levels) {
    runs.push_back({level[threshold], 1});
    while (runs.size() > 1 && runs[runs.size() - 2].mean() > runs.back().mean()) {
      runs[runs.size() - 2].sum += runs.back().sum;
      runs[runs.size() - 2].count += runs.back().count;
      runs.pop_back();
    }
  }
  size_t level = 0;
  for (const Run& run : runs) {
    for (size_t i = 0; i < run.count; ++i) levels[level++][threshold] = run.mean();
  }
}

// The levels after one value moved: others of that threshold are pushed along, so that values keep
// rising. Gives the range of levels that changed, or an empty one when the value would leave the
// bounds.
struct Range {
  size_t first;
  size_t end;
};
Range push(std::vector<Octaves>& levels, size_t level, size_t threshold, double step) {
  const double value = levels[level][threshold] + step;
  if (value < 0.0 || value > most_octaves(threshold)) return {level, level};
  Range range{level, level + 1};
  levels[level][threshold] = value;
  for (; range.end < levels.size() && levels[range.end][threshold] < value; ++range.end) {
    levels[range.end][threshold] = value;
  }
  for (; range.first > 0 && levels[range.first - 1][threshold] > value; --range.first) {
    levels[range.first - 1][threshold] = value;
  }
  return range;
}

// Walks on the grid, one threshold of one level at a time, until no step pays. The grid hides how
// machines round the search before it.
class GridWalk {
 public:
  GridWalk(const std::vector<LevelCurves>& curves, const Prices& prices,
           std::vector<Octaves>& levels)
      : curves_(curves), prices_(prices), levels_(levels) {
    for (Octaves& level : levels_) {
      for (double& value : level) value = std::floor(value / kGridStep) * kGridStep;
    }
    for (size_t i = 0; i < levels_.size(); ++i) costs_.push_back(cost(levels_, i));
  }

  void run() {
    constexpr int kRounds = 50;
    for (int round = 0; round < kRounds; ++round) {
      bool moved = false;
      for (size_t level = 0; level < levels_.size(); ++level) {
        for (size_t k = 0; k < kThresholds; ++k) {
          for (const double step : {-8.0, -1.0, 1.0, 8.0}) {
            moved = try_step(level, k, step * kGridStep) || moved;
          }
        }
      }
      if (!moved) return;
    }
  }

 private:
  [[nodiscard]] double cost(const std::vector<Octaves>& levels, size_t level) const {
    return cost_of(curves_[level], levels[level], prices_);
  }

  bool try_step(size_t level, size_t threshold, double step) {
    constexpr double kLeastGain = 1e-6;
    std::vector<Octaves> candidate = levels_;
    const Range range = push(candidate, level, threshold, step);
    std::vector<double> costs = costs_;
    double change = 0.0;
    for (size_t i = range.first; i < range.end; ++i) {
      costs[i] = cost(candidate, i);
      change += costs[i] - costs_[i];
    }
    if (change > -kLeastGain) return false;
    levels_ = candidate;
    costs_ = costs;
    return true;
  }

  const std::vector<LevelCurves>& curves_;
  const Prices& prices_;
  std::vector<Octaves>& levels_;
  std::vector<double> costs_;
};

}  // namespace

double level_cost(const LevelCurves& level, const Thresholds& thresholds, const Prices& prices) {
  double sum = 0.0;
  for (const CaptureCurves* capture : level) {
    for (const ThresholdCurves& plane : *capture) {
      const ErrorSums sums = plane.at(thresholds);
      const double priced = sums.squares + prices.edges * sums.edges + prices.harm * sums.harm;
      sum += 10.0 * std::log10(std::max(0.0, priced) / plane.samples() + kRounding);
    }
  }
  double octaves = 0.0;
  for (const double threshold : thresholds) octaves += to_octaves(threshold);
  const double pull =
      prices.burst_pull_db > 0.0 ? prices.burst_pull_db * burst_pull(level, thresholds) : 0.0;
  return sum / (2.0 * static_cast<double>(level.size())) + prices.octave_db * octaves + pull;
}

Thresholds thresholds_from_noise(const LevelCurves& level) {
  // A threshold of so many times the noise's power, found on pictures with sensor noise. The low
  // band carries the picture itself, fine subbands hardly any of it.
  constexpr double kFactors[kThresholds] = {5.0, 15.0, 50.0, 200.0, 400.0};
  Thresholds thresholds;
  for (size_t i = 0; i < kThresholds; ++i) {
    double power = 0.0;
    for (const CaptureCurves* capture : level) {
      for (const ThresholdCurves& plane : *capture) power += plane.noise_power(static_cast<int>(i));
    }
    power /= 2.0 * static_cast<double>(level.size());
    thresholds[i] = rounded_threshold(
        std::clamp(kFactors[i] * power / kThresholdScale, kThresholdFloor, kThresholdCaps[i]));
  }
  return thresholds;
}

std::vector<Thresholds> fit_thresholds(const std::vector<LevelCurves>& levels,
                                       const Prices& prices) {
  std::vector<Octaves> octaves;
  for (const LevelCurves& level : levels) octaves.push_back(fit_alone(level, prices));
  for (size_t k = 0; k < kThresholds; ++k) make_rising(octaves, k);
  GridWalk(levels, prices, octaves).run();
  std::vector<Thresholds> result;
  for (const Octaves& level : octaves) {
    Thresholds thresholds = to_thresholds(level);
    for (double& threshold : thresholds) threshold = rounded_threshold(threshold);
    result.push_back(thresholds);
  }
  return result;
}

}  // namespace tool
