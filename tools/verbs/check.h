// `vorel check`: says what is wrong with tuning files.
#ifndef VOREL_TOOLS_VERBS_CHECK_H_
#define VOREL_TOOLS_VERBS_CHECK_H_

#include <string>
#include <vector>

namespace tool {

struct CheckOptions {
  std::vector<std::string> paths;  // files, and folders whose *.json files are meant
  bool strict = false;             // warnings are failures too
  bool json = false;               // one JSON object instead of lines
  bool fix = false;                // write lost decimal points first, the old file beside it
};

// Prints the findings of every file, or that there are none. A file that cannot be read counts as
// an error and does not keep the others from being checked. Returns kBadInput when any file has an
// error, kFailed when a fixed one could not be written, else kDone.
[[nodiscard]] int run_check(const CheckOptions& options);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_CHECK_H_
