// `vorel show`: the values that a tuning gives a frame, and where each comes from.
#ifndef VOREL_TOOLS_VERBS_SHOW_H_
#define VOREL_TOOLS_VERBS_SHOW_H_

#include <optional>
#include <string>

#include "tools/library/tuning_choice.h"

namespace tool {

struct ShowOptions {
  TuningRequest tuning;
  std::optional<int> noise_index;  // absent: a table of all levels
  bool json = false;
  std::optional<std::string> plot;  // SVG to write
};

void run_show(const ShowOptions& options);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_SHOW_H_
