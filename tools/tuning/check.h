// Finds what is wrong with a tuning file that the library would accept without a word.
#ifndef VOREL_TOOLS_TUNING_CHECK_H_
#define VOREL_TOOLS_TUNING_CHECK_H_

#include <string>
#include <vector>

#include "tools/tuning/finding.h"

namespace tool {

// In the order of the text. Only the object that the library uses is looked into.
[[nodiscard]] std::vector<Finding> check_tuning_text(const std::string& text);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_CHECK_H_
