#include "tools/measure/noise_index.h"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

constexpr double kLeastNoise = 1e-3;  // has a logarithm
constexpr double kSmoothing = 1.0 / 8;

}  // namespace

NoiseCalibration sample_calibration() {
  return {{100, 0.14}, {200, 0.22},  {400, 0.32},  {800, 0.45},  {1600, 0.67},   {3200, 1.1},
          {6400, 1.8}, {12800, 2.9}, {25600, 4.7}, {51200, 7.6}, {102400, 12.3}, {204800, 20.0}};
}

int noise_index_for(double chroma_noise, const NoiseCalibration& calibration) {
  const double noise = std::max(chroma_noise, kLeastNoise);
  const NoiseLevel& last = calibration.back();
  if (noise >= last.chroma_noise) return last.noise_index;
  // One level alone is a point of the line along which index and noise rise together.
  if (calibration.size() == 1) {
    return static_cast<int>(noise / last.chroma_noise * last.noise_index);
  }
  const auto above = std::find_if(calibration.begin() + 1, calibration.end(),
                                  [&](const NoiseLevel& l) { return noise < l.chroma_noise; });
  const auto below = above - 1;
  const double share =
      std::log(noise / below->chroma_noise) / std::log(above->chroma_noise / below->chroma_noise);
  const double ratio = static_cast<double>(above->noise_index) / below->noise_index;
  return static_cast<int>(below->noise_index * std::pow(ratio, share));
}

std::optional<int> NoiseIndexTracker::next(const FrameView& frame) {
  if (const std::optional<double> noise = estimate_chroma_noise(frame)) {
    const double level = std::log(std::max(*noise, kLeastNoise));
    level_ = level_ ? *level_ + kSmoothing * (level - *level_) : level;
  }
  if (!level_) return std::nullopt;
  return noise_index_for(std::exp(*level_), calibration_);
}

}  // namespace tool
