#include "tools/tuning/lost_points.h"

#include <algorithm>
#include <cmath>

#include "tools/tuning/tuning_text.h"

namespace tool {

LostPoints find_lost_points(const TuningView& view) {
  LostPoints lost;
  bool kept = false;
  for (const KnownKey& known : known_keys()) {
    if (!known.is_real()) continue;
    const size_t length = json_array_size(view.value(known).json);
    for (size_t i = 0; i < std::min(length, static_cast<size_t>(known.key.count)); ++i) {
      const Located value = view.value(known, i);
      const double number = json_number_value(value.json);
      if (json_is_integer(value.json) && value.node != nullptr) lost.numbers.push_back(value.node);
      if (json_is_real(value.json) && number == std::floor(number)) kept = true;
    }
  }
  lost.all = !kept && lost.numbers.size() > 1;
  return lost;
}

FixedText write_points(const std::string& text) {
  const TuningText tuning(text);
  if (!tuning.used()) return {text, 0};
  std::vector<const JsonNode*> numbers = find_lost_points(TuningView(tuning.used())).numbers;
  std::sort(numbers.begin(), numbers.end(),
            [](const JsonNode* a, const JsonNode* b) { return a->end > b->end; });
  std::string fixed = text;
  for (const JsonNode* number : numbers) fixed.insert(number->end, ".0");
  return {fixed, numbers.size()};
}

}  // namespace tool
