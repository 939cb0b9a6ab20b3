// `vorel denoise`: runs the library over pictures and videos.
#ifndef VOREL_TOOLS_VERBS_DENOISE_H_
#define VOREL_TOOLS_VERBS_DENOISE_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/library/engine.h"
#include "tools/library/library_log.h"
#include "tools/library/tuning_choice.h"
#include "tools/pictures/picture_io.h"
#include "tools/verbs/noise_index_choice.h"

namespace tool {

struct DenoiseOptions {
  std::vector<std::string> inputs;  // files and folders, or "-"
  std::string output;               // a file, a folder, a name with {name} in it, or "-"
  NoiseIndexRequest noise_index;
  TuningRequest tuning;
  ReadOptions read;
  bool separate_planes = false;        // NM21
  std::optional<std::string> compare;  // before and after, side by side
  std::optional<std::string> truth;    // the same picture without noise
  std::optional<std::string> page;     // for a browser
  std::optional<std::string> dump;     // directory for the library's dumps
  std::optional<std::string> trace;    // time line of what the library does
  std::optional<int> quality;          // of JPEG files
  std::optional<int> jobs;             // pictures at a time
  LogLevel log = LogLevel::kWarning;
  bool json = false;
  bool quiet = false;
  bool force = false;
};

// Prints a summary unless `quiet`, to standard error when the picture goes to standard output.
// Returns the exit status; of several pictures one that fails does not stop the others.
[[nodiscard]] int run_denoise(const DenoiseOptions& options, const LibraryCalls& calls = {});

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_DENOISE_H_
