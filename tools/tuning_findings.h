// What is wrong with a tuning file.
#ifndef VOREL_TOOLS_TUNING_FINDINGS_H_
#define VOREL_TOOLS_TUNING_FINDINGS_H_

#include <string>
#include <vector>

namespace tool {

struct Finding {
  bool is_error;  // the library cannot use the file, or not this value
  std::string text;
};

[[nodiscard]] std::vector<Finding> check_tuning_text(const std::string& text);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_FINDINGS_H_
