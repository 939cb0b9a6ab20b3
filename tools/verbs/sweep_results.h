// What each value of a sweep makes of the picture, as figures and as curves.
#ifndef VOREL_TOOLS_VERBS_SWEEP_RESULTS_H_
#define VOREL_TOOLS_VERBS_SWEEP_RESULTS_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/measure/metrics.h"
#include "tools/pictures/picture.h"
#include "tools/report/page.h"
#include "tools/report/table.h"

namespace tool {

struct SweepResult {
  std::string label;            // "noisy", "20.0", "20.0, as tuned"
  std::optional<double> value;  // none for the picture as it came
  Nv21Frame frame;
  RgbImage image;
  ChangeCount change;
  std::optional<double> chroma_noise;       // estimate of what is left
  std::optional<PictureDistance> distance;  // from the truth
};

struct SweepTruth {
  Nv21Frame frame;
  RgbImage image;
};

// Measures a frame that `value` made of `before`.
[[nodiscard]] SweepResult sweep_result(std::string label, std::optional<double> value,
                                       const Nv21Frame& before, Nv21Frame after,
                                       const SweepTruth* truth);

[[nodiscard]] double chroma_psnr(const PictureDistance& distance);

// The result that is nearest to the truth in chroma; without a truth the last.
[[nodiscard]] size_t best_of(const std::vector<SweepResult>& results);

[[nodiscard]] Table sweep_table(const std::string& key, const std::vector<SweepResult>& results);
// One or two lines that tell results apart in a picture.
[[nodiscard]] std::string sweep_caption(const SweepResult& result);
[[nodiscard]] std::vector<PageCurves> sweep_curves(const std::string& key,
                                                   const std::vector<SweepResult>& results);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_SWEEP_RESULTS_H_
