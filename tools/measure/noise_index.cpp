#include "tools/measure/noise_index.h"

#include <algorithm>
#include <cmath>

#include "tools/measure/noise_verdict.h"

namespace tool {
namespace {

constexpr double kLeastNoise = 1e-3;  // has a logarithm
constexpr double kSmoothing = 1.0 / 8;
constexpr double kDoubtSmoothing = 1.0 / 4;
constexpr int kFramesPerTrial = 32;

// An index that is a smaller part of the first level's belongs to a clean frame.
constexpr int kCleanPart = 8;

}  // namespace

NoiseCalibration sample_calibration() {
  return {{100, 0.11},  {200, 0.23},   {400, 0.32},  {800, 0.46},  {1600, 0.65},   {3200, 0.97},
          {6400, 1.68}, {12800, 2.64}, {25600, 4.2}, {51200, 6.6}, {102400, 10.5}, {204800, 16.6}};
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

std::optional<int> index_to_try(double chroma_noise, const NoiseCalibration& calibration) {
  const int index = noise_index_for(chroma_noise, calibration);
  const int first = calibration.front().noise_index;
  if (index < first / kCleanPart) return std::nullopt;
  return std::max(index, first);
}

Strength strength_after_trial(int tried, double doubt) {
  const int percent = percent_to_take(doubt);
  return percent > 0 ? Strength{tried, percent} : Strength{};
}

std::optional<Strength> NoiseIndexTracker::next(const FrameView& frame, const TryIndex& try_index) {
  if (const std::optional<double> noise = estimate_chroma_noise(frame)) {
    const double level = std::log(std::max(*noise, kLeastNoise));
    level_ = level_ ? *level_ + kSmoothing * (level - *level_) : level;
  }
  if (!level_) return std::nullopt;
  const std::optional<int> index = index_to_try(std::exp(*level_), calibration_);
  if (!index) return Strength{noise_index_for(std::exp(*level_), calibration_)};
  if (--frames_until_trial_ < 0) judge(frame, *index, try_index);
  return doubt_ ? strength_after_trial(*index, *doubt_) : Strength{*index};
}

void NoiseIndexTracker::judge(const FrameView& frame, int noise_index, const TryIndex& try_index) {
  const std::optional<ChromaNoise> noise = measure_chroma_noise(frame);
  const std::optional<Removal> removal = noise ? try_index(noise_index) : std::nullopt;
  if (!removal) return;
  frames_until_trial_ = kFramesPerTrial - 1;
  const double now = doubt(*noise, *removal);
  doubt_ = doubt_ ? *doubt_ + kDoubtSmoothing * (now - *doubt_) : now;
  refused_ = percent_to_take(*doubt_) > 0 ? std::nullopt : std::optional(noise_index);
}

}  // namespace tool
