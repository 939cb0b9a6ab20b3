// `vorel check`: says what is wrong with tuning files.
#ifndef VOREL_TOOLS_VERBS_CHECK_H_
#define VOREL_TOOLS_VERBS_CHECK_H_

#include <string>
#include <vector>

namespace tool {

// Prints the findings of every file, or that there are none. A file that cannot be read counts as
// an error and does not keep the others from being checked. Returns kBadInput when any file has an
// error, else kDone; warnings alone are no failure unless `strict`.
[[nodiscard]] int run_check(const std::vector<std::string>& paths, bool strict);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_CHECK_H_
