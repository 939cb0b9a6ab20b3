// What is wrong with a tuning file, in words.
#ifndef VOREL_TOOLS_TUNING_FINDINGS_H_
#define VOREL_TOOLS_TUNING_FINDINGS_H_

#include <string>
#include <vector>

namespace tool {

struct Finding {
  bool is_error;       // the library reads something else than is written
  bool is_whole_file;  // the library reads nothing of it
  std::string text;
};

[[nodiscard]] std::vector<Finding> check_tuning_text(const std::string& text);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_FINDINGS_H_
