// Trials summed up for tables and curves.
#ifndef VOREL_TOOLS_TUNE_TRIAL_MEANS_H_
#define VOREL_TOOLS_TUNE_TRIAL_MEANS_H_

#include <array>
#include <functional>
#include <set>
#include <vector>

#include "tools/tune/tuner.h"

namespace tool {

// The tunings that every capture is tried with.
struct TrialColumn {
  const char* title;
  const char* key;
  Score Trial::* score;
};
inline constexpr std::array<TrialColumn, 4> kTrialColumns{{
    {"built-in", "built_in", &Trial::built_in},
    {"sample", "sample", &Trial::sample},
    {"start", "start", &Trial::start},
    {"tuned", "tuned", &Trial::tuned},
}};

// Means over the trials that a condition picks.
struct TrialMeans {
  double count = 0.0;
  double held_out_count = 0.0;
  Score noisy;
  std::array<Score, kTrialColumns.size()> columns;
  Score held_out;
};
[[nodiscard]] TrialMeans means_of(const std::vector<Trial>& trials,
                                  const std::function<bool(const Trial&)>& picks);
[[nodiscard]] TrialMeans means_at(const std::vector<Trial>& trials, int noise_index);

[[nodiscard]] std::set<int> noise_indices(const std::vector<Trial>& trials);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_TRIAL_MEANS_H_
