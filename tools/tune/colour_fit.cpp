#include "tools/tune/colour_fit.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "tools/tune/frame_trial.h"
#include "tools/tune/minimise.h"
#include "tools/tune/parallel.h"
#include "tools/tune/score.h"

namespace tool {
namespace {

constexpr int kWindow = 512;
constexpr int kWindowStep = 128;
constexpr int kEvaluations = 40;

// The part of a frame with its upper left corner at (x, y), which are even.
Nv21Frame cut(const Nv21Frame& frame, int x, int y, Size size) {
  Nv21Frame part(size.width, size.height, frame.colour);
  const auto copy_rows = [&](const uint8_t* from, uint8_t* to, int rows, int first_row) {
    for (int row = 0; row < rows; ++row) {
      const uint8_t* source = from + ptrdiff_t{first_row + row} * frame.width + x;
      std::copy(source, source + size.width, to + ptrdiff_t{row} * size.width);
    }
  };
  copy_rows(frame.y(), part.y(), size.height, y);
  copy_rows(frame.vu(), part.vu(), size.height / 2, y / 2);
  return part;
}

// Mean difference between neighbours in a part of the chroma plane.
double detail(const Nv21Frame& frame, int x, int y, Size size) {
  double sum = 0.0;
  for (int row = y / 2; row < (y + size.height) / 2; ++row) {
    const uint8_t* line = frame.vu() + ptrdiff_t{row} * frame.width;
    for (int col = x; col + 2 < x + size.width; ++col) sum += std::abs(line[col + 2] - line[col]);
  }
  return sum / (static_cast<double>(size.width) * size.height);
}

Capture window_of(const Capture& capture) {
  const Nv21Frame& truth = capture.truth;
  const Size size{std::min(kWindow, truth.width), std::min(kWindow, truth.height)};
  const double whole = detail(truth, 0, 0, {truth.width, truth.height});
  int best_x = 0;
  int best_y = 0;
  double best = -1.0;
  for (int y = 0; y + size.height <= truth.height; y += kWindowStep) {
    for (int x = 0; x + size.width <= truth.width; x += kWindowStep) {
      const double difference = std::fabs(detail(truth, x, y, size) - whole);
      if (best >= 0.0 && difference >= best) continue;
      best = difference;
      best_x = x;
      best_y = y;
    }
  }
  Nv21Frame part = cut(truth, best_x, best_y, size);
  const ChromaImage chroma(part);
  return {capture.scene,
          capture.noise_index,
          cut(capture.noisy, best_x, best_y, size),
          std::move(part),
          chroma,
          capture.truth_noise_share};
}

class ColourCost {
 public:
  ColourCost(const std::vector<const MeasuredCapture*>& captures, const Prices& prices,
             const TuningValues& values, const LevelValues& level)
      : prices_(prices), values_(values) {
    values_.levels = {level};
    values_.enable_noise_index = 0;
    for (const MeasuredCapture* measured : captures) {
      if (measured->capture.noise_index != level.noise_index) continue;
      windows_.push_back(window_of(measured->capture));
      curves_.push_back(measured->curves[0].get());
    }
  }

  // In dB, as the cost of squared errors is: twice the difference is 6 dB.
  double operator()(const Thresholds& thresholds) {
    values_.levels[0].thresholds = thresholds;
    const std::string text = tuning_text(values_);
    std::vector<double> costs(windows_.size());
    for_each_in_parallel(windows_.size(), [&](size_t i) {
      const Nv21Frame frame = denoise_with(text, windows_[i].noisy, 0);
      costs[i] = 20.0 * std::log10(std::max(1e-3, score_of(windows_[i], frame).ciede2000));
    });
    double sum = 0.0;
    for (const double cost : costs) sum += cost;
    return sum / static_cast<double>(costs.size()) + level_cost(curves_, thresholds, prices_) -
           level_cost(curves_, thresholds, kNoPrices);
  }

 private:
  const Prices& prices_;
  TuningValues values_;
  std::vector<Capture> windows_;
  LevelCurves curves_;
};

}  // namespace

void refine_for_colour_difference(const std::vector<const MeasuredCapture*>& captures,
                                  const Prices& prices, TuningValues& values) {
  Thresholds least;
  least.fill(kThresholdFloor);
  for (LevelValues& level : values.levels) {
    ColourCost cost(captures, prices, values, level);
    std::vector<Bounds> bounds;
    std::vector<double> point;
    for (size_t i = 0; i < kThresholds; ++i) {
      bounds.push_back({std::log2(least[i]), std::log2(kThresholdCaps[i])});
      point.push_back(std::clamp(std::log2(level.thresholds[i]), bounds[i].lower, bounds[i].upper));
    }
    const auto thresholds_at = [](const std::vector<double>& octaves) {
      Thresholds thresholds;
      for (size_t i = 0; i < kThresholds; ++i) {
        thresholds[i] = std::min(kThresholdCaps[i], rounded_threshold(std::exp2(octaves[i])));
      }
      return thresholds;
    };
    minimise([&](const std::vector<double>& octaves) { return cost(thresholds_at(octaves)); },
             bounds, 0.75, 0.05, kEvaluations, point);
    level.thresholds = thresholds_at(point);
    for (size_t i = 0; i < kThresholds; ++i) {
      level.thresholds[i] = std::max(level.thresholds[i], least[i]);
    }
    least = level.thresholds;
  }
}

}  // namespace tool
