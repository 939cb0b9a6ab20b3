// What each of the five thresholds does to a plane's error, for a whole range of values at once.
#ifndef VOREL_TOOLS_TUNE_THRESHOLD_CURVES_H_
#define VOREL_TOOLS_TUNE_THRESHOLD_CURVES_H_

#include <array>
#include <vector>

#include "tools/tune/chroma_bands.h"

namespace tool {

inline constexpr int kThresholds = 5;
using Thresholds = std::array<double, kThresholds>;

// Largest values. The low band's threshold acts on the mean colour too: above its cap a grey
// picture comes back greenish. The others act on details only; half precision ends at 1799.
inline constexpr Thresholds kThresholdCaps = {450.0, 1280.0, 1280.0, 1280.0, 1280.0};
// Smaller values take nothing away that could be seen.
inline constexpr double kThresholdFloor = 0.3125;

// Squared errors, all in units of one squared chroma step.
struct ErrorSums {
  double squares = 0.0;
  // Of these, at coefficients where the truth stands out of the noise: edges and detail.
  double edges = 0.0;
  // By how much areas got worse than they were.
  double harm = 0.0;

  ErrorSums& operator+=(const ErrorSums& other);
};

// The transform keeps squares and every subband has one threshold, so the error of a plane is a sum
// of five functions of one threshold each. They are tabulated once, by the library's own shrinkage,
// and read between the entries.
class ThresholdCurves {
 public:
  // `truth_noise_share`: how much of the squared difference between both is the truth's own noise.
  ThresholdCurves(const PlaneBands& noisy, const PlaneBands& truth, double truth_noise_share);

  // Sums over the whole plane with these thresholds, and without any shrinkage.
  [[nodiscard]] ErrorSums at(const Thresholds& thresholds) const;
  [[nodiscard]] const ErrorSums& untouched() const { return untouched_; }
  [[nodiscard]] double samples() const { return samples_; }
  // Whether the truth is the mean of a burst.
  [[nodiscard]] bool truth_is_mean() const { return truth_is_mean_; }
  // Mean squared noise of the subbands that a threshold acts on.
  [[nodiscard]] double noise_power(int threshold) const {
    return noise_power_[static_cast<size_t>(threshold)];
  }

 private:
  std::array<std::vector<ErrorSums>, kThresholds> entries_;
  std::array<double, kThresholds> noise_power_{};
  ErrorSums untouched_;
  double samples_ = 0.0;
  bool truth_is_mean_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_THRESHOLD_CURVES_H_
