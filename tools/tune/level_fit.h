// The search for the thresholds of all levels together.
#ifndef VOREL_TOOLS_TUNE_LEVEL_FIT_H_
#define VOREL_TOOLS_TUNE_LEVEL_FIT_H_

#include <array>
#include <vector>

#include "tools/tune/threshold_curves.h"

namespace tool {

// Both chroma planes of one capture.
using CaptureCurves = std::array<ThresholdCurves, 2>;

// The captures of one noise index.
using LevelCurves = std::vector<const CaptureCurves*>;

// What counts besides the squared error: so many times the error at edges and detail, and so many
// times what areas lose, are added to it; and each octave of a threshold costs so many dB, so that
// a threshold is only as high as it pays.
struct Prices {
  double edges = 0.1;
  double harm = 0.25;
  double octave_db = 0.002;
  // The mean of a burst keeps the false colours that demosaicing gives every frame alike, and looks
  // as if it had fine detail to lose. So captures with such a truth pull the thresholds of fine
  // subbands to what their noise suggests, with so many dB per squared octave.
  double burst_pull_db = 0.1;
};
inline constexpr Prices kNoPrices{0, 0, 0, 0};

// Mean over captures and planes of the priced error in dB: lower is better.
[[nodiscard]] double level_cost(const LevelCurves& level, const Thresholds& thresholds,
                                const Prices& prices);

// Where the search starts: what the noise in each subband suggests.
[[nodiscard]] Thresholds thresholds_from_noise(const LevelCurves& level);

// The thresholds of every level that cost least in sum while none falls from a level to the next.
// Levels come in ascending order of noise. The result is on a fixed grid, three digits each.
[[nodiscard]] std::vector<Thresholds> fit_thresholds(const std::vector<LevelCurves>& levels,
                                                     const Prices& prices);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_LEVEL_FIT_H_
