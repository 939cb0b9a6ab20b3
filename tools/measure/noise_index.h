// From the chroma noise of frames to the noise index that suits them.
#ifndef VOREL_TOOLS_MEASURE_NOISE_INDEX_H_
#define VOREL_TOOLS_MEASURE_NOISE_INDEX_H_

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/measure/chroma_noise.h"
#include "tools/measure/removal.h"

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

// Denoises a copy of a frame with this noise index and tells what went; nothing when that failed.
using TryIndex = std::function<std::optional<Removal>(int noise_index)>;

// The index to try for an estimate: at least that of the first level, whose noise may be hidden
// under texture. Nothing for frames that are clean beyond doubt.
[[nodiscard]] std::optional<int> index_to_try(double chroma_noise,
                                              const NoiseCalibration& calibration);

// What a frame is denoised with. An index of 0 leaves it as it is.
struct Strength {
  int noise_index = 0;
  int percent = 100;  // of the change that is kept
  bool operator==(const Strength&) const = default;
};

// Of an index that was tried.
[[nodiscard]] Strength strength_after_trial(int tried, double doubt);

// The strength for a video's frames one after the other. Every frame is measured, because a
// camera changes its gain in mid-shot, and the estimates are smoothed over about eight frames,
// because denoising that is now stronger and now weaker flickers. Whether it is noise at all is
// tried on the first frame and then about once a second, smoothed too.
class NoiseIndexTracker {
 public:
  explicit NoiseIndexTracker(NoiseCalibration calibration) : calibration_(std::move(calibration)) {}

  // Nothing as long as no frame had enough blocks that show noise; later the last index holds.
  // An index of 0 where denoising would remove texture.
  std::optional<Strength> next(const FrameView& frame, const TryIndex& try_index);

  // The last one whose removal was too much like texture; nothing while it looks like noise.
  [[nodiscard]] std::optional<int> refused() const { return refused_; }

 private:
  void judge(const FrameView& frame, int noise_index, const TryIndex& try_index);

  NoiseCalibration calibration_;
  std::optional<double> level_;  // logarithm of the smoothed estimate
  std::optional<double> doubt_;  // smoothed
  std::optional<int> refused_;
  int frames_until_trial_ = 0;
};

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_NOISE_INDEX_H_
