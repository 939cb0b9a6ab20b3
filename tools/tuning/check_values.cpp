#include "tools/tuning/check_values.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

#include "tools/tuning/lost_points.h"
#include "tuning/tuning.h"

namespace tool {
namespace {

std::string is_of_kind(const json_t* value, const char* needed) {
  return std::string("is ") + kind_of(value) + ", " + needed + " is needed";
}

// Ends a finding that speaks for several values of a table.
std::string and_more(size_t count) {
  return count > 0 ? " (and " + std::to_string(count) + " more of this table)" : "";
}

void check_text(const KnownKey& known, Located value, FindingList& found) {
  if (!json_is_string(value.json)) {
    found.error(value.begin(), known.path(), is_of_kind(value.json, "a string"),
                "the version is logged as an empty text");
  } else if (json_string_length(value.json) >= kTuningVersionSize) {
    found.warning(value.begin(), known.path(),
                  "is longer than " + std::to_string(kTuningVersionSize - 1) + " bytes",
                  "the rest is cut off");
  }
}

class ValueCheck {
 public:
  ValueCheck(const TuningView& view, FindingList& found)
      : view_(view), found_(found), lost_(find_lost_points(view)) {}

  void check_all() {
    if (lost_.all) {
      found_.error(lost_.numbers.front()->begin, "",
                   std::to_string(lost_.numbers.size()) +
                       " numbers have lost their decimal points to a program that rewrote the file",
                   "each reads as 0.0; 'vorel check --fix' writes the points");
    }
    for (const KnownKey& known : known_keys()) {
      const Located value = view_.value(known);
      if (!value) continue;
      if (known.key.type == key_type::kText) {
        check_text(known, value, found_);
      } else if (known.key.count == 1) {
        if (check_one(known, 0)) check_range(known, {0});
      } else {
        check_array(known, value);
      }
    }
    tell_short_tables();
  }

 private:
  // Whether the value is of the kind that is read.
  bool check_one(const KnownKey& known, size_t index) {
    const Located value = view_.value(known, index);
    const std::string path = value_path(known, index);
    return known.is_real() ? check_real(value, path) : check_integer(known, value, path);
  }

  bool check_integer(const KnownKey& known, Located value, const std::string& path) {
    if (!json_is_integer(value.json)) {
      found_.error(value.begin(), path, is_of_kind(value.json, "an integer"), "read as 0");
      return false;
    }
    const json_int_t number = json_integer_value(value.json);
    if (known.key.type == key_type::kFlag || number == static_cast<int32_t>(number)) return true;
    found_.error(value.begin(), path, std::to_string(number) + " does not fit 32 bits",
                 "read as " + std::to_string(static_cast<int32_t>(number)));
    return false;
  }

  bool check_real(Located value, const std::string& path) {
    if (json_is_integer(value.json)) {
      if (lost_.all) return true;
      const std::string number = std::to_string(json_integer_value(value.json));
      found_.error(value.begin(), path, "is an integer, a real number is needed",
                   "read as 0.0; write " + number + ".0");
      return false;
    }
    if (!json_is_real(value.json)) {
      found_.error(value.begin(), path, is_of_kind(value.json, "a real number"), "read as 0.0");
      return false;
    }
    if (!std::isinf(static_cast<float>(json_real_value(value.json)))) return true;
    found_.error(value.begin(), path,
                 real_text(json_real_value(value.json)) + " does not fit a float",
                 "read as infinity");
    return false;
  }

  // One finding for all values of a key that are too small, and one for those too large.
  void check_range(const KnownKey& known, const std::vector<size_t>& readable) {
    for (const bool above : {false, true}) {
      std::vector<size_t> outside;
      for (const size_t i : readable) {
        const double number = view_.number(known, i);
        if (above ? number > known.note.most : number < known.note.least) outside.push_back(i);
      }
      if (outside.empty()) continue;
      const size_t first = outside.front();
      found_.add(known.note.ruins ? Severity::kError : Severity::kWarning,
                 view_.begin(known, first), value_path(known, first),
                 number_text(known, view_.number(known, first)) + " is outside " +
                     number_text(known, known.note.least) + " to " +
                     number_text(known, known.note.most) + and_more(outside.size() - 1),
                 above ? known.note.above : known.note.below);
    }
  }

  void check_array(const KnownKey& known, Located value) {
    const bool holds_levels = known.key.count_field != kNoField;
    if (!json_is_array(value.json)) {
      found_.error(value.begin(), known.path(), is_of_kind(value.json, "an array"),
                   holds_levels ? "no level is left: every frame gets the first value of each table"
                                : "nothing is read from it");
      return;
    }
    const size_t length = json_array_size(value.json);
    const size_t most = static_cast<size_t>(known.key.count);
    if (length > most) {
      found_.warning(
          element(value, most).begin(), known.path(),
          "has " + std::to_string(length) + " values, " + std::to_string(most) + " are read",
          "the rest is ignored");
    }
    if (holds_levels && length == 0) {
      found_.error(value.begin(), known.path(), "holds no level",
                   "every frame gets the first value of each table");
    }
    const size_t needed = known.per_level ? view_.levels() : most;
    if (!holds_levels && length < needed) {
      short_[{length, needed, known.for_command}].push_back(&known);
    }
    std::vector<size_t> readable;
    for (size_t i = 0; i < std::min(length, most); ++i) {
      if (check_one(known, i)) readable.push_back(i);
    }
    check_range(known, readable);
  }

  // One finding for all tables of one length.
  void tell_short_tables() {
    for (const auto& [kind, keys] : short_) {
      const auto& [length, needed, for_command] = kind;
      const KnownKey& first = *keys.front();
      const std::string more =
          keys.size() > 1 ? " (and " + std::to_string(keys.size() - 1) + " more tables)" : "";
      found_.warning(
          view_.value(first).begin(), first.path(),
          "has " + std::to_string(length) + " of " + std::to_string(needed) + " values" + more,
          for_command ? "noisier frames get the last level that has one"
                      : "the others keep their built-in values");
    }
  }

  const TuningView& view_;
  FindingList& found_;
  LostPoints lost_;
  std::map<std::tuple<size_t, size_t, bool>, std::vector<const KnownKey*>> short_;
};

}  // namespace

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

void check_values(const TuningView& view, FindingList& found) {
  ValueCheck(view, found).check_all();
}

}  // namespace tool
