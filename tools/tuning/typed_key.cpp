#include "tools/tuning/typed_key.h"

#include <charconv>
#include <cmath>
#include <map>

#include "tools/did_you_mean.h"
#include "tools/files/failure.h"
#include "tools/tuning/tuning_view.h"

namespace tool {
namespace {

std::string without_ending(const std::string& name) {
  for (const std::string ending : {"_table", "Table"}) {
    if (name.ends_with(ending)) return name.substr(0, name.size() - ending.size());
  }
  return name;
}

// Every spelling of a key, the full path first. Of two keys with one spelling the first has it.
const std::map<std::string, const KnownKey*>& spellings() {
  static const std::map<std::string, const KnownKey*> all = [] {
    std::map<std::string, const KnownKey*> names;
    std::map<std::string, int> uses;
    for (const KnownKey& known : known_keys()) {
      names.emplace(known.path(), &known);
      ++uses[known.key.name];
    }
    for (const KnownKey& known : known_keys()) {
      if (uses[known.key.name] == 1) names.emplace(known.key.name, &known);
    }
    const std::map<std::string, const KnownKey*> whole = names;
    for (const auto& [name, known] : whole) names.emplace(without_ending(name), known);
    return names;
  }();
  return all;
}

bool has_own_values(const KnownKey& known) { return known.key.count > 1 && !known.per_level; }

std::string without_index(const std::string& text) { return text.substr(0, text.find('[')); }

size_t index_of(const std::string& text, const KnownKey& known) {
  const std::string behind = text.substr(without_index(text).size());
  const std::string last = std::to_string(known.key.count - 1);
  if (!has_own_values(known)) {
    if (behind.empty()) return 0;
    throw usage_error("--key: " + known.path() +
                      " takes no index: a swept value holds at every level");
  }
  for (int i = 0; i < known.key.count; ++i) {
    if (behind == "[" + std::to_string(i) + "]") return static_cast<size_t>(i);
  }
  throw usage_error("--key: " + known.path() + " has several values; write " + known.path() +
                    "[0] to [" + last + "]");
}

}  // namespace

TypedKey typed_key(const std::string& text) {
  const auto found = spellings().find(without_index(text));
  if (found == spellings().end()) {
    std::vector<std::string> names;
    for (const auto& [name, known] : spellings()) names.push_back(name);
    throw usage_error("--key: '" + text + "' is no key of a tuning" +
                      did_you_mean(without_index(text), names));
  }
  const KnownKey& known = *found->second;
  if (known.key.type == key_type::kText || known.key.count_field != kNoField || known.for_command) {
    throw usage_error("--key: " + known.path() + " is no value that changes a frame");
  }
  return {&known, index_of(text, known)};
}

std::string short_name(const KnownKey& known) { return without_ending(known.key.name); }

double typed_value(const KnownKey& known, const std::string& text) {
  double value = 0.0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || !std::isfinite(value)) {
    throw usage_error("--values: '" + text + "' is no number");
  }
  if (!known.is_real() && value != std::floor(value)) {
    throw usage_error("--values: " + text + " is no integer, which " + known.path() + " takes");
  }
  const KeyNote& note = known.note;
  if (value < note.least || value > note.most) {
    const std::string consequence = value < note.least ? note.below : note.above;
    throw usage_error("--values: " + text + " is outside " + number_text(known, note.least) +
                      " to " + number_text(known, note.most) + ", the range of " + known.path() +
                      (consequence.empty() ? "" : "; " + consequence));
  }
  return value;
}

}  // namespace tool
