#include "tuning/findings.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "tuning/tuning.h"

namespace {

// Values that the loader takes as they are and the filters make nothing good of.
struct value_range {
  const char* name;
  json_int_t least;
  json_int_t most;
  const char* consequence;
};
constexpr value_range kRanges[] = {
    {"span_row", 0, 15, "negative spans give black planes, large ones take very long"},
    {"span_col", 0, 15, "negative spans give black planes, large ones take very long"},
    {"val_delta_th", 0, 15, "from 16 on the filtered planes become 0"},
    {"val_weight_denom_shift", 0, 31, "only the low 5 bits count"},
    {"d_Y_upper_thresh_table", 0, 128, "the weighted means go wrong"},
    {"d_UV_thresh_table", 0, 128, "the weighted means go wrong"},
};

void check_integer(const tuning_key& key, const finding_text& path, const json_t* value,
                   FindingList& found) {
  if (!json_is_integer(value)) {
    found.error(path, format_text("is %s, an integer is needed", kind_of(value)),
                format_text("read as 0"));
    return;
  }
  const json_int_t number = json_integer_value(value);
  if (key.type == key_type::kInt && number != static_cast<int32_t>(number)) {
    found.error(path, format_text("%" JSON_INTEGER_FORMAT " does not fit 32 bits", number),
                format_text("read as %d", static_cast<int32_t>(number)));
    return;
  }
  for (const value_range& range : kRanges) {
    if (std::strcmp(range.name, key.name) != 0) continue;
    if (number >= range.least && number <= range.most) continue;
    found.warning(path,
                  format_text("%" JSON_INTEGER_FORMAT " is outside %" JSON_INTEGER_FORMAT
                              " to %" JSON_INTEGER_FORMAT,
                              number, range.least, range.most),
                  format_text("%s", range.consequence));
  }
}

void check_real(const finding_text& path, const json_t* value, FindingList& found) {
  if (json_is_integer(value)) {
    const json_int_t number = json_integer_value(value);
    found.error(path, format_text("is an integer, a real number is needed"),
                format_text("read as 0.0; write %" JSON_INTEGER_FORMAT ".0", number));
  } else if (!json_is_real(value)) {
    found.error(path, format_text("is %s, a real number is needed", kind_of(value)),
                format_text("read as 0.0"));
  } else if (std::isinf(static_cast<float>(json_real_value(value)))) {
    found.error(path, format_text("%g does not fit a float", json_real_value(value)),
                format_text("read as infinity"));
  }
}

void check_text(const finding_text& path, const json_t* value, FindingList& found) {
  if (!json_is_string(value)) {
    found.error(path, format_text("is %s, a string is needed", kind_of(value)),
                format_text("the version is logged as an empty text"));
  } else if (json_string_length(value) >= kTuningVersionSize) {
    found.warning(path, format_text("is longer than %zu bytes", kTuningVersionSize - 1),
                  format_text("the rest is cut off"));
  }
}

}  // namespace

finding_text format_text(const char* pattern, ...) {
  finding_text result;
  va_list arguments;
  va_start(arguments, pattern);
  std::vsnprintf(result.chars, sizeof(result.chars), pattern, arguments);
  va_end(arguments);
  return result;
}

const char* kind_of(const json_t* value) {
  switch (json_typeof(value)) {
    case JSON_OBJECT:
      return "an object";
    case JSON_ARRAY:
      return "an array";
    case JSON_STRING:
      return "a string";
    case JSON_INTEGER:
      return "an integer";
    case JSON_REAL:
      return "a real number";
    case JSON_TRUE:
    case JSON_FALSE:
      return "a boolean";
    case JSON_NULL:
      return "null";
  }
  return "of no known kind";
}

finding_text path_of(const char* section, const char* name) {
  return section != nullptr ? format_text("%s.%s", section, name) : format_text("%s", name);
}

finding_text element_path(const tuning_key& key, size_t index) {
  return format_text("%s[%zu]", path_of(key.section, key.name).chars, index);
}

void check_value(const tuning_key& key, const finding_text& path, const json_t* value,
                 FindingList& found) {
  switch (key.type) {
    case key_type::kText:
      check_text(path, value, found);
      break;
    case key_type::kFlag:
    case key_type::kInt:
      check_integer(key, path, value, found);
      break;
    case key_type::kReal:
      check_real(path, value, found);
      break;
  }
}
