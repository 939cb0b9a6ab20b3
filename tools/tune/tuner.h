// The whole of a tuning run: read, measure, search, try.
#ifndef VOREL_TOOLS_TUNE_TUNER_H_
#define VOREL_TOOLS_TUNE_TUNER_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/tune/score.h"
#include "tools/tune/value_fit.h"

namespace tool {

enum class Goal { kChromaPsnr, kCiede2000 };

struct TuneSettings {
  CaptureSettings captures;
  FitSettings fit;
  Goal goal = Goal::kChromaPsnr;
  bool luma = false;    // tune the luma keys too
  bool wavelet = true;  // else the spatial path on its own; fit.spatial is kOff then
  std::string date;
};

// One capture through the library under each tuning.
struct Trial {
  std::string scene;
  int noise_index;
  Score noisy;
  Score built_in;
  Score sample;
  Score start;
  Score tuned;
  std::optional<Score> held_out;  // tuned on all scenes but this one
};

struct TuneResult {
  TuningValues values;
  std::vector<Trial> trials;  // by noise index, then in the order of the captures
  bool interrupted = false;   // the values are the best so far, trials may be missing
  double seconds = 0.0;
};

// Throws when a capture cannot be used, and when an interruption comes before anything is found.
[[nodiscard]] TuneResult run_tuning(const std::vector<CaptureSource>& sources,
                                    const TuneSettings& settings);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_TUNER_H_
