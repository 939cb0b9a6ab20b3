// The search for the two luma keys.
#ifndef VOREL_TOOLS_TUNE_LUMA_FIT_H_
#define VOREL_TOOLS_TUNE_LUMA_FIT_H_

#include <vector>

#include "tools/tune/value_fit.h"

namespace tool {

// Gives every level the luma thresholds of the highest luma PSNR; they do not fall from a level to
// the next. Switches the spatial path on where that pays, and leaves everything as it is otherwise.
void fit_luma(const std::vector<MeasuredCapture>& captures, TuningValues& values);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_LUMA_FIT_H_
