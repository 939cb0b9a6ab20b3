// From the chroma noise of frames to the noise index that suits them.
#ifndef VOREL_TOOLS_MEASURE_NOISE_INDEX_H_
#define VOREL_TOOLS_MEASURE_NOISE_INDEX_H_

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/measure/chroma_noise.h"

namespace tool {

// A noise level of a tuning and the estimate of chroma noise that belongs to it.
struct NoiseLevel {
  int noise_index;
  double chroma_noise;
};

// Both numbers above 0, rising from level to level.
using NoiseCalibration = std::vector<NoiseLevel>;

// That of the sample tuning, which serves where a tuning has none of its own.
[[nodiscard]] NoiseCalibration sample_calibration();

// What a tuning file says under noiseIndex_values and chromaNoise_values; nothing when it has no
// such values or they cannot serve. Of several objects in the file the last one counts.
[[nodiscard]] std::optional<NoiseCalibration> calibration_of(const std::string& tuning_text);

// The logarithm of the index is interpolated over the logarithm of the noise. Below the first level
// the line through the first two goes on, so that clean frames come out below the tuning's
// enableNoiseIndex; above the last level its index holds.
[[nodiscard]] int noise_index_for(double chroma_noise, const NoiseCalibration& calibration);

// The noise index of a video's frames one after the other. Every frame is measured, because a
// camera changes its gain in mid-shot, and the estimates are smoothed over about eight frames,
// because denoising that is now stronger and now weaker flickers.
class NoiseIndexTracker {
 public:
  explicit NoiseIndexTracker(NoiseCalibration calibration) : calibration_(std::move(calibration)) {}

  // Nothing as long as no frame had enough blocks that show noise; later the last index holds.
  std::optional<int> next(const FrameView& frame);

 private:
  NoiseCalibration calibration_;
  std::optional<double> level_;  // logarithm of the smoothed estimate
};

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_NOISE_INDEX_H_
