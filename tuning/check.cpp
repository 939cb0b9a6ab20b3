#include "tuning/check.h"

#include <strings.h>

#include <algorithm>
#include <cstring>

#include "tuning/findings.h"
#include "tuning/keys.h"

namespace {

// Noise levels that the file leaves in force.
size_t level_count(const json_t* used) {
  for (const tuning_key& key : tuning_keys()) {
    if (key.count_field == kNoField) continue;
    const json_t* values = json_object_get(used, key.name);
    if (values == nullptr) break;
    return std::clamp<size_t>(json_array_size(values), 1, kNoiseLevels);
  }
  return kNoiseLevels;
}

void check_array_length(const tuning_key& key, size_t length, size_t levels, FindingList& found) {
  const finding_text path = path_of(key.section, key.name);
  const size_t most = static_cast<size_t>(key.count);
  if (length > most) {
    found.warning(path, format_text("has %zu values, %zu are read", length, most),
                  format_text("the rest is ignored"));
  }
  if (key.count_field != kNoField) {
    if (length == 0) {
      found.error(path, format_text("holds no level"),
                  format_text("every frame gets the first value of each table"));
    }
    return;
  }
  const size_t needed = key.current != kNoField ? levels : most;
  if (length < needed) {
    found.warning(path, format_text("has %zu of %zu values", length, needed),
                  format_text("the others keep their built-in values"));
  }
}

void check_order(const tuning_key& key, const json_t* values, FindingList& found) {
  const size_t length = std::min<size_t>(json_array_size(values), kNoiseLevels);
  for (size_t i = 1; i < length; ++i) {
    const json_int_t before = json_integer_value(json_array_get(values, i - 1));
    const json_int_t level = json_integer_value(json_array_get(values, i));
    if (level > before) continue;
    found.error(
        element_path(key, i),
        format_text("%" JSON_INTEGER_FORMAT " is not above %" JSON_INTEGER_FORMAT " before it",
                    level, before),
        format_text("levels are searched by bisection: frames may get another level's values"));
  }
}

void check_key(const tuning_key& key, const json_t* value, size_t levels, FindingList& found) {
  const finding_text path = path_of(key.section, key.name);
  if (key.count == 1) {
    check_value(key, path, value, found);
    return;
  }
  if (!json_is_array(value)) {
    found.error(
        path, format_text("is %s, an array is needed", kind_of(value)),
        key.count_field != kNoField
            ? format_text("no level is left: every frame gets the first value of each table")
            : format_text("nothing is read from it"));
    return;
  }
  const size_t length = json_array_size(value);
  check_array_length(key, length, levels, found);
  for (size_t i = 0; i < std::min(length, static_cast<size_t>(key.count)); ++i) {
    check_value(key, element_path(key, i), json_array_get(value, i), found);
  }
  if (key.count_field != kNoField) check_order(key, value, found);
}

bool is_section(const char* name) {
  for (const tuning_key& key : tuning_keys()) {
    if (key.section != nullptr && std::strcmp(key.section, name) == 0) return true;
  }
  return false;
}

bool in_section(const tuning_key& key, const char* section) {
  if (section == nullptr || key.section == nullptr) return section == key.section;
  return std::strcmp(section, key.section) == 0;
}

// For `vorel`, not for the library: the chroma noise that each level belongs to.
constexpr char kChromaNoise[] = "chromaNoise_values";

bool is_known(const char* section, const char* name) {
  if (section == nullptr && std::strcmp(name, kChromaNoise) == 0) return true;
  if (section == nullptr && is_section(name)) return true;
  for (const tuning_key& key : tuning_keys()) {
    if (in_section(key, section) && std::strcmp(key.name, name) == 0) return true;
  }
  return false;
}

// What may have been meant: the same letters in another case, or the same name elsewhere.
finding_text guess(const char* section, const char* name) {
  for (const tuning_key& key : tuning_keys()) {
    if (section == nullptr && key.section != nullptr && strcasecmp(key.section, name) == 0) {
      return format_text("unknown key, did you mean %s?", key.section);
    }
  }
  for (const bool same_section : {true, false}) {
    for (const tuning_key& key : tuning_keys()) {
      if (in_section(key, section) != same_section || strcasecmp(key.name, name) != 0) continue;
      return format_text("unknown key, did you mean %s?", path_of(key.section, key.name).chars);
    }
  }
  return format_text("unknown key");
}

void check_unknown(const char* section, json_t* object, FindingList& found) {
  for (void* at = json_object_iter(object); at != nullptr; at = json_object_iter_next(object, at)) {
    const char* name = json_object_iter_key(at);
    if (is_known(section, name)) continue;
    found.warning(path_of(section, name), guess(section, name), format_text("it is ignored"));
  }
}

void check_used_object(json_t* used, FindingList& found) {
  const size_t levels = level_count(used);
  const char* section = nullptr;
  for (const tuning_key& key : tuning_keys()) {
    const bool first_of_section = !in_section(key, section);
    section = key.section;
    const json_t* holder = section != nullptr ? json_object_get(used, section) : used;
    if (first_of_section && holder != nullptr && !json_is_object(holder)) {
      found.error(format_text("%s", section),
                  format_text("is %s, an object is needed", kind_of(holder)),
                  format_text("nothing is read from it"));
    }
    const json_t* value = json_object_get(holder, key.name);
    if (value != nullptr) {
      check_key(key, value, levels, found);
    } else if (key.type == key_type::kText) {
      found.warning(path_of(key.section, key.name), format_text("is missing"),
                    format_text("each start logs an error line about it"));
    }
  }
  check_unknown(nullptr, used, found);
  section = nullptr;
  for (const tuning_key& key : tuning_keys()) {
    if (!in_section(key, section) && key.section != nullptr) {
      check_unknown(key.section, json_object_get(used, key.section), found);
    }
    section = key.section;
  }
}

}  // namespace

int check_tuning(json_t* root, tuning_finding_function report, void* context) {
  FindingList found(report, context);
  const finding_text root_path = format_text("root");
  const finding_text ignored = format_text("the whole file is ignored");
  if (!json_is_array(root)) {
    const char* kind = root != nullptr ? kind_of(root) : "missing";
    found.error(root_path, format_text("is %s, an array of objects is needed", kind), ignored);
    return found.count();
  }
  const size_t objects = json_array_size(root);
  for (size_t i = 0; i < objects; ++i) {
    const json_t* element = json_array_get(root, i);
    if (json_is_object(element)) continue;
    found.error(format_text("root[%zu]", i),
                format_text("is %s, an object is needed", kind_of(element)), ignored);
    return found.count();
  }
  if (objects == 0) {
    found.error(root_path, format_text("is an empty array"),
                format_text("the built-in values stay in force"));
    return found.count();
  }
  check_used_object(json_array_get(root, objects - 1), found);
  return found.count();
}
