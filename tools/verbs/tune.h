// `vorel tune`: makes the tuning file of a sensor from captures.
#ifndef VOREL_TOOLS_VERBS_TUNE_H_
#define VOREL_TOOLS_VERBS_TUNE_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/tune/tuner.h"

namespace tool {

struct TuneOptions {
  std::vector<std::string> inputs;  // pictures, folders, manifests
  std::string output;
  std::vector<int> noise_indices;
  std::string truth;      // the inputs are noisy pictures of it
  bool is_burst = false;  // the inputs are frames of one burst
  bool is_clean = false;  // the inputs are to be made noisy
  std::string report;
  std::optional<std::string> page;
  bool dry_run = false;
  bool quiet = false;
  bool force = false;
  TuneSettings settings;
};

// Throws on bad usage and input; prints the report.
void run_tune(const TuneOptions& options);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_TUNE_H_
