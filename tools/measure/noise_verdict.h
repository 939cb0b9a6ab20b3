// Whether what denoising takes out of a frame is noise.
//
// How much noise a frame has can only be estimated from its quiet places. If the rest is texture,
// an index that suits the estimate removes texture. So the frame is denoised once on trial, and
// what went is looked at: noise keeps clear of the edges of luma and of the chroma that stays, is
// each plane's own, grows finer rather than coarser, and is no stronger than the quiet places say.
#ifndef VOREL_TOOLS_MEASURE_NOISE_VERDICT_H_
#define VOREL_TOOLS_MEASURE_NOISE_VERDICT_H_

#include "tools/measure/chroma_noise.h"
#include "tools/measure/removal.h"

namespace tool {

// Below 0 it is noise, the more surely the lower; above 0 rather texture. The logarithm of the
// odds, up to an offset, that the removal did harm to pictures whose clean form is known
// (docs/noise-index.md).
[[nodiscard]] double doubt(const ChromaNoise& noise, const Removal& removal);

// How much of the removal should be taken, 0 to 100 percent: all below a doubt of about -4, and
// the less the greater it is.
[[nodiscard]] int percent_to_take(double doubt);

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_NOISE_VERDICT_H_
