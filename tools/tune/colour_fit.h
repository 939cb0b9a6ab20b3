// The search by colour difference, which follows the search by squared error.
#ifndef VOREL_TOOLS_TUNE_COLOUR_FIT_H_
#define VOREL_TOOLS_TUNE_COLOUR_FIT_H_

#include <vector>

#include "tools/tune/value_fit.h"

namespace tool {

// Moves the thresholds of every level to where the mean CIEDE2000 of its captures, with the same
// prices, is least; no threshold falls from a level to the next. Works on one window of each
// capture, with as much colour detail as the whole, through the whole library.
void refine_for_colour_difference(const std::vector<const MeasuredCapture*>& captures,
                                  const Prices& prices, TuningValues& values);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_COLOUR_FIT_H_
