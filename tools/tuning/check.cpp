#include "tools/tuning/check.h"

#include <strings.h>

#include <algorithm>
#include <string>

#include "tools/did_you_mean.h"
#include "tools/tuning/check_levels.h"
#include "tools/tuning/check_values.h"
#include "tools/tuning/tuning_text.h"
#include "tools/tuning/tuning_view.h"
#include "tuning/used_object.h"

namespace tool {
namespace {

constexpr char kIgnored[] = "the whole file is ignored";

// Sections in the order of the table; the empty name is the top level.
std::vector<std::string> sections() {
  std::vector<std::string> names = {""};
  for (const KnownKey& known : known_keys()) {
    const std::string section = section_of(known);
    if (std::find(names.begin(), names.end(), section) == names.end()) names.push_back(section);
  }
  return names;
}

bool is_known(const std::string& section, const std::string& name) {
  const auto names = sections();
  if (section.empty() && std::find(names.begin(), names.end(), name) != names.end()) return true;
  const KnownKey* known = find_key(join_path(section, name));
  return known != nullptr && section_of(*known) == section;
}

// What may have been meant: the same letters in another case, the same name elsewhere, or a name of
// this section that is nearly the same.
std::string guess(const std::string& section, const std::string& name) {
  std::vector<std::string> here = section.empty() ? sections() : std::vector<std::string>();
  std::string elsewhere;
  for (const KnownKey& known : known_keys()) {
    if (section_of(known) == section) {
      here.emplace_back(known.key.name);
    } else if (elsewhere.empty() && strcasecmp(known.key.name, name.c_str()) == 0) {
      elsewhere = known.path();
    }
  }
  const auto same = std::find_if(here.begin(), here.end(), [&](const std::string& other) {
    return !other.empty() && strcasecmp(other.c_str(), name.c_str()) == 0;
  });
  if (same != here.end()) return "; did you mean " + join_path(section, *same) + "?";
  return elsewhere.empty() ? did_you_mean(name, here) : "; did you mean " + elsewhere + "?";
}

// Names that the library does not know, and names that stand twice.
void check_names(const std::string& section, const JsonNode* object, FindingList& found) {
  if (object == nullptr) return;
  const auto& members = object->children;
  for (auto at = members.begin(); at != members.end(); ++at) {
    const auto same = [at](const JsonNode& other) { return other.name == at->name; };
    const std::string path = join_path(section, at->name);
    if (!is_known(section, at->name)) {
      found.warning(at->name_begin, path, "unknown key" + guess(section, at->name),
                    "it is ignored");
    }
    if (std::any_of(at + 1, members.end(), same)) {
      found.error(at->name_begin, path, "stands more than once in this object",
                  "only the last one is read");
    }
  }
}

// Whole sections that are no objects, and a version that is missing.
void check_sections(const TuningView& view, FindingList& found) {
  for (const std::string& section : sections()) {
    const Located holder = section.empty() ? view.object() : member(view.object(), section);
    if (!holder) continue;
    if (!json_is_object(holder.json)) {
      found.error(holder.begin(), section,
                  std::string("is ") + kind_of(holder.json) + ", an object is needed",
                  "nothing is read from it");
      continue;
    }
    check_names(section, holder.node, found);
  }
  const KnownKey& version = known_keys().front();
  if (!view.has(version)) {
    found.warning(view.object().begin(), version.path(), "is missing",
                  "each start logs an error line about it");
  }
}

size_t count_values(Located object) {
  const TuningView view(object);
  const auto& keys = known_keys();
  return static_cast<size_t>(std::count_if(keys.begin(), keys.end(), [&](const KnownKey& known) {
    return known.key.type != key_type::kText && view.has(known);
  }));
}

// A new tuning that was put first, or a rest that was left at the end.
void check_last_counts(Located root, Located used, FindingList& found) {
  const size_t count = json_array_size(root.json);
  const size_t here = count_values(used);
  for (size_t i = 0; i + 1 < count; ++i) {
    const size_t there = count_values(element(root, i));
    if (there < 4 || here * 2 >= there) continue;
    found.warning(used.begin(), "",
                  "the last object, the only one that counts, sets " + std::to_string(here) +
                      " of the values; object " + std::to_string(i + 1) + " sets " +
                      std::to_string(there),
                  "the others are ignored");
    return;
  }
}

// Whether the file has an object that the library reads.
bool check_root(Located root, FindingList& found) {
  if (!json_is_array(root.json)) {
    found.add(Severity::kWholeFile, root.begin(), "",
              std::string("the root is ") + kind_of(root.json) + ", an array of objects is needed",
              kIgnored);
    return false;
  }
  const size_t objects = json_array_size(root.json);
  const size_t bad = first_non_object(root.json);
  if (bad < objects) {
    const Located wrong = element(root, bad);
    found.add(Severity::kWholeFile, wrong.begin(), "",
              "element " + std::to_string(bad + 1) + " of the root is " + kind_of(wrong.json) +
                  ", an object is needed",
              kIgnored);
    return false;
  }
  if (objects == 0) {
    found.add(Severity::kWholeFile, root.begin(), "", "the root is an empty array",
              "the built-in values stay in force");
  }
  return objects > 0;
}

}  // namespace

std::vector<Finding> check_tuning_text(const std::string& text) {
  FindingList found(text);
  const TuningText tuning(text);
  if (!tuning.root()) {
    found.add(Severity::kWholeFile, tuning.fault().at, "", tuning.fault().what, kIgnored);
    return found.take();
  }
  if (tuning.leftover() < text.size()) {
    found.warning(tuning.leftover(), "", "text stands behind the end of the root", "it is ignored");
  }
  if (!check_root(tuning.root(), found)) return found.take();
  const TuningView view(tuning.used());
  check_last_counts(tuning.root(), tuning.used(), found);
  check_sections(view, found);
  check_values(view, found);
  // A file that sets nothing is the built-in tuning by intention.
  if (count_values(tuning.used()) > 0) check_levels(view, found);
  return found.take();
}

}  // namespace tool
