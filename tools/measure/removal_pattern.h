// Patterns in what denoising took out of a frame's chroma. Noise has none.
#ifndef VOREL_TOOLS_MEASURE_REMOVAL_PATTERN_H_
#define VOREL_TOOLS_MEASURE_REMOVAL_PATTERN_H_

#include "tools/measure/chroma_noise.h"

namespace tool {

struct RemovalPattern {
  // How far its means of 4 x 4 samples form edges and lines: 1 where they do everywhere, about 0.24
  // for noise, 0 where nothing was removed.
  double directed;
  // How far it repeats itself 6 to 16 samples away: root mean square of that correlation, 0..1.
  double repeated;
};

// Both frames of one size and chroma order.
[[nodiscard]] RemovalPattern measure_removal_pattern(const FrameView& noisy,
                                                     const FrameView& denoised);

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_REMOVAL_PATTERN_H_
