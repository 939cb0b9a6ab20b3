// A frame through the whole library under a tuning that is only a text.
#ifndef VOREL_TOOLS_TUNE_FRAME_TRIAL_H_
#define VOREL_TOOLS_TUNE_FRAME_TRIAL_H_

#include <string>

#include "tools/pictures/picture.h"

namespace tool {

// The denoised frame; the noise gate of the tuning holds. Any number of calls may run at once.
// Throws when the library refuses.
[[nodiscard]] Nv21Frame denoise_with(const std::string& tuning, const Nv21Frame& frame,
                                     int noise_index);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_FRAME_TRIAL_H_
