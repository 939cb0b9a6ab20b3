// Decimal points that a tuning file needs and does not have: programs that rewrite JSON write 45.0
// as 45, which the library reads as 0.0.
#ifndef VOREL_TOOLS_TUNING_LOST_POINTS_H_
#define VOREL_TOOLS_TUNING_LOST_POINTS_H_

#include <string>
#include <vector>

#include "tools/tuning/tuning_view.h"

namespace tool {

struct LostPoints {
  std::vector<const JsonNode*> numbers;  // integers where the library needs reals
  bool all = false;  // no whole number kept its point: not a slip, but another program's work
};
[[nodiscard]] LostPoints find_lost_points(const TuningView& view);

// The text with the points written and nothing else changed, and their number. Texts that the
// library does not read come back as they are.
struct FixedText {
  std::string text;
  size_t points = 0;
};
[[nodiscard]] FixedText write_points(const std::string& text);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_LOST_POINTS_H_
