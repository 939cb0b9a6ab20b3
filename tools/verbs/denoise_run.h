// One picture or video through the library.
#ifndef VOREL_TOOLS_VERBS_DENOISE_RUN_H_
#define VOREL_TOOLS_VERBS_DENOISE_RUN_H_

#include <string>

#include "tools/verbs/denoise.h"
#include "tools/verbs/denoise_summary.h"

namespace tool {

// Reads, works and writes at the same time, so a video is read ahead by a few frames. A video that
// is damaged after its first frames is written as far as it goes, and the summary's `trouble` says
// so; everything else that goes wrong throws, and there is no output then.
[[nodiscard]] DenoiseSummary denoise_file(const DenoiseOptions& options, const std::string& input,
                                          const std::string& output, const TuningChoice& tuning,
                                          const LibraryCalls& calls);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_DENOISE_RUN_H_
