// The spatial path on its own, for sensors without time for the wavelet path.
#ifndef VOREL_TOOLS_TUNE_SPATIAL_FIT_H_
#define VOREL_TOOLS_TUNE_SPATIAL_FIT_H_

#include <vector>

#include "tools/tune/value_fit.h"

namespace tool {

// Tries every blend on the capture. Other captures may be tried at the same time.
void measure_spatial_path(MeasuredCapture& measured);

// Switches the wavelet path off and gives every level the blend with which chroma PSNR less the
// colour difference, both in dB, is best in sum over all levels while none is weaker than its lower
// neighbour's: PSNR alone would paint colours over their edges. Captures have been measured.
void fit_spatial_path(const std::vector<const MeasuredCapture*>& captures, TuningValues& values);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_SPATIAL_FIT_H_
