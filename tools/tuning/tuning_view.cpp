#include "tools/tuning/tuning_view.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tool {

Located TuningView::value(const KnownKey& known) const {
  const std::string section = section_of(known);
  return member(section.empty() ? used_ : member(used_, section), known.key.name);
}

Located TuningView::value(const KnownKey& known, size_t index) const {
  return known.key.count == 1 ? value(known) : element(value(known), index);
}

bool TuningView::is_sound(const KnownKey& known) const {
  const Located all = value(known);
  if (!all) return true;
  if (known.key.count > 1 && !json_is_array(all.json)) return false;
  const size_t length = known.key.count > 1 ? json_array_size(all.json) : 1;
  for (size_t i = 0; i < std::min(length, static_cast<size_t>(known.key.count)); ++i) {
    const json_t* json = value(known, i).json;
    const json_int_t integer = json_integer_value(json);
    if (known.is_real() ? !json_is_number(json)
                        : !json_is_integer(json) || integer != static_cast<int32_t>(integer)) {
      return false;
    }
  }
  return true;
}

double TuningView::number(const KnownKey& known, size_t index) const {
  const Located found = value(known, index);
  return json_is_number(found.json) ? json_number_value(found.json)
                                    : default_value(known.key, static_cast<int32_t>(index));
}

size_t TuningView::begin(const KnownKey& known, size_t index) const {
  const std::string section = section_of(known);
  for (const Located& place :
       {value(known, index), value(known), section.empty() ? used_ : member(used_, section)}) {
    if (place.node != nullptr) return place.begin();
  }
  return used_.begin();
}

size_t TuningView::levels() const {
  for (const KnownKey& known : known_keys()) {
    if (known.key.count_field == kNoField || !has(known)) continue;
    return std::clamp<size_t>(json_array_size(value(known).json), 1, kNoiseLevels);
  }
  return kNoiseLevels;
}

std::string value_path(const KnownKey& known, size_t index) {
  return known.key.count == 1 ? known.path() : known.path() + "[" + std::to_string(index) + "]";
}

std::string number_text(const KnownKey& known, double number) {
  return known.is_real() ? real_text(number) : std::to_string(std::llround(number));
}

std::string real_text(double number) {
  char text[32];
  const auto [end, error] = std::to_chars(text, text + sizeof(text), number);
  std::string shown(text, end);
  const bool has_point = shown.find_first_of(".ein") != std::string::npos;
  return error != std::errc() ? "" : has_point ? shown : shown + ".0";
}

}  // namespace tool
