#include "tools/tune/trial_means.h"

namespace tool {

TrialMeans means_of(const std::vector<Trial>& trials,
                    const std::function<bool(const Trial&)>& picks) {
  TrialMeans means;
  for (const Trial& trial : trials) {
    if (!picks(trial)) continue;
    means.count += 1.0;
    means.noisy += trial.noisy;
    for (size_t i = 0; i < kTrialColumns.size(); ++i) {
      means.columns[i] += trial.*kTrialColumns[i].score;
    }
    if (!trial.held_out) continue;
    means.held_out_count += 1.0;
    means.held_out += *trial.held_out;
  }
  if (means.count == 0.0) return means;
  means.noisy /= means.count;
  for (Score& score : means.columns) score /= means.count;
  if (means.held_out_count > 0.0) means.held_out /= means.held_out_count;
  return means;
}

TrialMeans means_at(const std::vector<Trial>& trials, int noise_index) {
  return means_of(trials,
                  [noise_index](const Trial& trial) { return trial.noise_index == noise_index; });
}

std::set<int> noise_indices(const std::vector<Trial>& trials) {
  std::set<int> indices;
  for (const Trial& trial : trials) indices.insert(trial.noise_index);
  return indices;
}

}  // namespace tool
