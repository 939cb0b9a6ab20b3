// Checks of a tuning file's values one by one.
#ifndef VOREL_TOOLS_TUNING_CHECK_VALUES_H_
#define VOREL_TOOLS_TUNING_CHECK_VALUES_H_

#include "tools/tuning/finding.h"
#include "tools/tuning/tuning_view.h"

namespace tool {

// "an integer", "a string" and so on.
[[nodiscard]] const char* kind_of(const json_t* value);

// Kinds, ranges and lengths of everything that the view has.
void check_values(const TuningView& view, FindingList& found);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_CHECK_VALUES_H_
