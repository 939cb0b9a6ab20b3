// What denoising took out of a frame's chroma, and how far it follows the picture.
#ifndef VOREL_TOOLS_MEASURE_REMOVAL_H_
#define VOREL_TOOLS_MEASURE_REMOVAL_H_

#include "tools/measure/chroma_noise.h"
#include "tools/measure/removal_pattern.h"

namespace tool {

struct Removal {
  double energy;        // mean square of both planes, 8-bit steps
  double untouched;     // share of the chroma pairs that did not change, 0..1
  double along_luma;    // share of the energy that luma explains, block by block, 0..1
  double along_chroma;  // correlation of its strength with the texture that stayed, -1..1
  RemovalPattern pattern;
};

// Both frames of one size and chroma order. Looks at whole blocks of 16 x 16 pixels; of a frame
// without one nothing counts as changed.
[[nodiscard]] Removal measure_removal(const FrameView& noisy, const FrameView& denoised);

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_REMOVAL_H_
