// Checks of values that only together are wrong: levels, gates, pairs of thresholds, polynomial.
#ifndef VOREL_TOOLS_TUNING_CHECK_LEVELS_H_
#define VOREL_TOOLS_TUNING_CHECK_LEVELS_H_

#include <vector>

#include "tools/tuning/finding.h"
#include "tools/tuning/tuning_view.h"

namespace tool {

void check_levels(const TuningView& view, FindingList& found);

// Positions of the levels that give nothing to any frame, since the gate leaves alone what lies
// near them.
[[nodiscard]] std::vector<size_t> unreachable_levels(const std::vector<double>& levels,
                                                     double gate);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_CHECK_LEVELS_H_
