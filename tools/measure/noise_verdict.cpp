#include "tools/measure/noise_verdict.h"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

// What no picture showed whose noise was worth removing: more energy than about thirty times the
// quiet noise's, strength that goes with the texture, and noise finer than white (which has about
// -0.8).
constexpr double kMostEnergy = 30;
constexpr double kMostAlongChroma = 0.9;
constexpr double kLeastCoarseness = -1.1;
constexpr double kLeastDoubtBeyond = 1;

// No photograph's texture passes for noise as strong as that.
constexpr double kStrongEstimate = 0.6;
constexpr double kCreditOfStrong = 0.7;

constexpr double kQuietFloor = 0.02;  // as far as rounding to whole steps leaves it in doubt
constexpr double kPurityFloor = 0.05;
constexpr double kAlongLumaFloor = 0.02;

bool is_beyond_noise(const ChromaNoise& noise, const Removal& removal) {
  const double quiet = noise.quiet + kQuietFloor;
  return removal.energy > kMostEnergy * quiet * quiet || removal.along_chroma > kMostAlongChroma ||
         noise.coarseness < kLeastCoarseness;
}

}  // namespace

// Weights of a logistic regression: scripts/noise_index_table.py --fit prints them.
double doubt(const ChromaNoise& noise, const Removal& removal) {
  const double credit = noise.estimate > kStrongEstimate ? kCreditOfStrong : 0;
  const double sum = 4.90 - credit - 1.96 * std::log(noise.purity + kPurityFloor) -
                     2.85 * noise.own_share + 2.23 * noise.coarseness - 0.42 * noise.to_luma +
                     2.87 * std::log(removal.along_luma + kAlongLumaFloor) +
                     2.89 * removal.along_chroma + 3.83 * removal.untouched;
  return is_beyond_noise(noise, removal) ? std::max(sum, kLeastDoubtBeyond) : sum;
}

}  // namespace tool
