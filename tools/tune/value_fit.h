// From measured captures to the values of a tuning file.
#ifndef VOREL_TOOLS_TUNE_VALUE_FIT_H_
#define VOREL_TOOLS_TUNE_VALUE_FIT_H_

#include <memory>
#include <optional>
#include <vector>

#include "tools/tune/capture.h"
#include "tools/tune/level_fit.h"
#include "tools/tune/tuning_values.h"

namespace tool {

enum class SpatialChoice { kAuto, kOn, kOff };

struct FitSettings {
  SpatialChoice spatial = SpatialChoice::kAuto;
  Prices prices;
};

// Blends of the spatial path that are tried, the first of which leaves chroma as it is.
[[nodiscard]] const std::vector<SpatialValues>& spatial_candidates();

// A capture, and for each blend that was measured the curves of what the wavelet path makes of it.
struct MeasuredCapture {
  explicit MeasuredCapture(Capture capture_);

  Capture capture;
  std::vector<std::unique_ptr<CaptureCurves>> curves;
  std::vector<double> spatial_costs;   // of the blends that spatial_fit.h tries
  std::optional<double> chroma_noise;  // what `vorel measure` estimates; frames may be too small
};

// Fills the curves of one blend; others may be measured at the same time.
void measure_blend(MeasuredCapture& measured, size_t candidate);

// Levels of these captures, fitted together, with what the blends measured so far allow.
[[nodiscard]] TuningValues fit_values(const std::vector<const MeasuredCapture*>& captures,
                                      const FitSettings& settings);

// The blend of every level, as an index, that costs least in sum while none is weaker than its
// lower neighbour's. `costs` has a row for each level, from the lowest, and a column for each
// blend.
[[nodiscard]] std::vector<size_t> cheapest_rising(const std::vector<std::vector<double>>& costs,
                                                  const std::vector<SpatialValues>& blends);

// Where the search starts: what the noise suggests, without the spatial path.
[[nodiscard]] TuningValues start_values(const std::vector<const MeasuredCapture*>& captures);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_VALUE_FIT_H_
