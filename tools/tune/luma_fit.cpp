#include "tools/tune/luma_fit.h"

#include "tools/tune/frame_trial.h"
#include "tools/tune/parallel.h"
#include "tools/tune/score.h"

namespace tool {
namespace {

// Upper and lower threshold, from the weakest on; the first leaves luma as it is.
constexpr int kCandidates[][2] = {{2, 1}, {4, 2}, {4, 1}, {8, 1}, {16, 1}, {32, 1}, {64, 1}};
// A stronger pair must better a weaker one by so many dB.
constexpr double kWorthwhile = 0.02;

double mean_luma_psnr(const std::vector<MeasuredCapture>& captures, const LevelValues& level,
                      const int (&candidate)[2]) {
  TuningValues trial;
  trial.spatial_path = true;
  trial.wavelet_path = false;
  trial.levels = {level};
  trial.levels[0].spatial.d_y_upper = candidate[0];
  trial.levels[0].spatial.d_y_lower = candidate[1];
  const std::string text = tuning_text(trial);
  std::vector<double> psnr(captures.size());
  for_each_in_parallel(captures.size(), [&](size_t i) {
    const Capture& capture = captures[i].capture;
    if (capture.noise_index != level.noise_index) return;
    psnr[i] = score_of(capture, denoise_with(text, capture.noisy, 0)).psnr_y;
  });
  double sum = 0.0;
  double count = 0.0;
  for (const double value : psnr) {
    sum += value;
    count += value > 0.0 ? 1.0 : 0.0;
  }
  return sum / count;
}

}  // namespace

void fit_luma(const std::vector<MeasuredCapture>& captures, TuningValues& values) {
  size_t weakest = 0;
  for (LevelValues& level : values.levels) {
    size_t chosen = weakest;
    double best = mean_luma_psnr(captures, level, kCandidates[weakest]);
    for (size_t i = weakest + 1; i < std::size(kCandidates); ++i) {
      const double psnr = mean_luma_psnr(captures, level, kCandidates[i]);
      if (psnr < best + kWorthwhile) continue;
      best = psnr;
      chosen = i;
    }
    level.spatial.d_y_upper = kCandidates[chosen][0];
    level.spatial.d_y_lower = kCandidates[chosen][1];
    values.spatial_path = values.spatial_path || chosen > 0;
    weakest = chosen;
  }
}

}  // namespace tool
