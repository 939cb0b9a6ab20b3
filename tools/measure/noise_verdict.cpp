#include "tools/measure/noise_verdict.h"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

// What hardly a noisy picture showed: noise that falls off ever slower with scale though it should
// ever faster, and what repeats itself as woven cloth does.
constexpr double kMostBend = 0.6;
constexpr double kMostRepeated = 0.15;
constexpr double kLeastDoubtBeyond = 5;

// Hardly any photograph's texture passes for noise as strong as that.
constexpr double kStrongEstimate = 0.6;
constexpr double kCreditOfStrong = 0.7;

constexpr double kPurityFloor = 0.05;  // as far as rounding to whole steps leaves it in doubt
constexpr double kAlongLumaFloor = 0.02;

// Half of a removal does a quarter of its harm and three quarters of its good. From pictures whose
// clean form is known (docs/noise-index.md).
constexpr double kDoubtThatHalves = 0.25;
constexpr double kSpread = 1.5;
constexpr int kLeastPercent = 20;  // less hardly changes a sample
constexpr int kMostPercent = 95;   // more is all of it

}  // namespace

// Weights of a logistic regression: scripts/noise_index_table.py --fit prints them.
double doubt(const ChromaNoise& noise, const Removal& removal) {
  const double credit = noise.estimate > kStrongEstimate ? kCreditOfStrong : 0;
  const double sum =
      -1.70 - credit - 2.34 * std::log(noise.purity + kPurityFloor) - 1.28 * noise.own_share +
      1.72 * noise.coarseness - 0.80 * noise.to_luma + 0.46 * noise.bend - 1.05 * noise.evenness +
      3.55 * std::log(removal.along_luma + kAlongLumaFloor) + 3.70 * removal.along_chroma +
      5.88 * removal.untouched + 17.3 * removal.pattern.directed;
  const bool beyond_noise = noise.bend > kMostBend || removal.pattern.repeated > kMostRepeated;
  return beyond_noise ? std::max(sum, kLeastDoubtBeyond) : sum;
}

int percent_to_take(double doubt) {
  const double share = 1 / (1 + std::exp((doubt - kDoubtThatHalves) / kSpread));
  const auto percent = static_cast<int>(std::lround(100 * share));
  return percent < kLeastPercent ? 0 : percent > kMostPercent ? 100 : percent;
}

}  // namespace tool
