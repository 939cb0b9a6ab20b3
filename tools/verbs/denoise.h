// `vorel denoise`: runs the library over a picture or a video.
#ifndef VOREL_TOOLS_VERBS_DENOISE_H_
#define VOREL_TOOLS_VERBS_DENOISE_H_

#include <optional>
#include <string>

#include "tools/library/engine.h"
#include "tools/library/library_log.h"
#include "tools/library/tuning_choice.h"
#include "tools/pictures/picture_io.h"
#include "tools/verbs/noise_index_choice.h"

namespace tool {

struct DenoiseOptions {
  std::string input;
  std::string output;
  NoiseIndexRequest noise_index;
  TuningRequest tuning;
  ReadOptions read;
  bool separate_planes = false;        // NM21
  std::optional<std::string> compare;  // before and after, side by side
  std::optional<std::string> truth;    // the same picture without noise
  std::optional<std::string> dump;     // directory for the library's dumps
  std::optional<std::string> trace;    // time line of what the library does
  std::optional<int> quality;
  LogLevel log = LogLevel::kWarning;
  bool quiet = false;
  bool force = false;
};

// Prints a summary unless `quiet`.
void run_denoise(const DenoiseOptions& options, const LibraryCalls& calls = {});

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_DENOISE_H_
