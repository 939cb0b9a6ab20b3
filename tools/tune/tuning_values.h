// The values that are searched, and the file they end in.
#ifndef VOREL_TOOLS_TUNE_TUNING_VALUES_H_
#define VOREL_TOOLS_TUNE_TUNING_VALUES_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/tune/threshold_curves.h"

namespace tool {

// How the spatial path mixes its smooth chroma and luma with the frame's.
struct SpatialValues {
  int d_uv = 1;  // 1 leaves chroma as it is
  int cs_upper = 48;
  int cs_lower = 36;
  int d_y_upper = 2;  // 2 and 1 leave luma as it is
  int d_y_lower = 1;
  bool operator==(const SpatialValues&) const = default;
};

struct LevelValues {
  int noise_index = 0;
  Thresholds thresholds{};
  SpatialValues spatial;
  std::optional<double> chroma_noise;  // as frames of this level measure
  bool interpolated = false;           // nothing was captured at it
};

struct TuningValues {
  std::string date;
  bool spatial_path = false;
  bool wavelet_path = true;
  int enable_noise_index = 0;
  std::vector<LevelValues> levels;
};

// As many as a file may have.
inline constexpr size_t kMaxLevels = 12;

// A complete tuning file: every key, every table in full, real numbers with a decimal point.
[[nodiscard]] std::string tuning_text(const TuningValues& values);

// A threshold as the file spells it: three digits.
[[nodiscard]] double rounded_threshold(double threshold);

// Adds levels where two neighbours are more than a doubling apart, as far as there is room: values
// of the library lie on a straight line between levels, but strengths bend upwards. The values of
// such a level lie in equal ratios between its neighbours'.
void fill_wide_gaps(std::vector<LevelValues>& levels);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_TUNING_VALUES_H_
