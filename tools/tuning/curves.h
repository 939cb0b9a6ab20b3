// A drawing of a tuning: its values over the noise index.
#ifndef VOREL_TOOLS_TUNING_CURVES_H_
#define VOREL_TOOLS_TUNING_CURVES_H_

#include <string>

#include "tools/tuning/frame_values.h"

namespace tool {

// An SVG picture with the thresholds, the blends, the radial mode and the saturation of the levels
// and of every noise index between them.
[[nodiscard]] std::string curves_svg(const LoadedTuning& loaded, const std::string& title);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_CURVES_H_
