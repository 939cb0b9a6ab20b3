// What denoising a frame with a noise index would remove.
#ifndef VOREL_TOOLS_VERBS_TRIAL_RUN_H_
#define VOREL_TOOLS_VERBS_TRIAL_RUN_H_

#include "tools/library/engine.h"
#include "tools/measure/removal.h"

namespace tool {

// In a handle that lasts no longer than the trial; it is made for the frame's size.
[[nodiscard]] Removal try_noise_index(const Nv21Frame& frame, int noise_index,
                                      EngineSettings settings, const LibraryCalls& calls = {});

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_TRIAL_RUN_H_
