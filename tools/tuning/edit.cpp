#include "tools/tuning/edit.h"

#include <functional>

#include "tools/files/failure.h"
#include "tools/tuning/frame_values.h"
#include "tools/tuning/json.h"
#include "tuning/used_object.h"

namespace tool {
namespace {

using Edit = std::function<void(json_t* used)>;

std::string edited(const std::string& path, const std::string& text, const Edit& edit) {
  json_error_t error;
  const Json root(json_loadb(text.data(), text.size(), JSON_DISABLE_EOF_CHECK, &error));
  if (!root) {
    throw input_error(path, "line " + std::to_string(error.line) + ": " + error.text);
  }
  json_t* last = used_object(root.get());
  if (!json_is_object(last)) throw input_error(path, "is no array of tuning objects");
  edit(last);
  std::string result = json_text(root.get(), JSON_INDENT(2));
  if (result.empty()) throw input_error(path, "cannot be edited");
  return result;
}

// A section of the object that counts, made when it is missing; the object for an empty name.
json_t* section_in(json_t* used, const char* name) {
  if (*name == '\0') return used;
  json_t* section = json_object_get(used, name);
  if (!json_is_object(section)) {
    section = json_object();
    json_object_set_new(used, name, section);
  }
  return section;
}

json_t* number_for(const KnownKey& known, double value) {
  return known.is_real() ? json_real(value) : json_integer(static_cast<json_int_t>(value));
}

}  // namespace

std::string with_paths_off(const std::string& path, const std::string& text, bool spatial_off,
                           bool wavelet_off) {
  return edited(path, text, [&](json_t* used) {
    if (spatial_off) json_object_set_new(used, "enable", json_integer(0));
    if (wavelet_off) {
      json_object_set_new(section_in(used, "MFD_UV_tuning"), "enable", json_integer(0));
    }
  });
}

std::string with_value(const std::string& path, const std::string& text, const TypedKey& key,
                       double value) {
  const KnownKey& known = *key.known;
  const LoadedTuning loaded(text);
  return edited(path, text, [&](json_t* used) {
    json_t* section = section_in(used, section_of(known).c_str());
    if (known.key.count == 1) {
      json_object_set_new(section, known.key.name, number_for(known, value));
      return;
    }
    const size_t count = known.per_level ? loaded.levels() : static_cast<size_t>(known.key.count);
    json_t* values = json_array();
    for (size_t i = 0; i < count; ++i) {
      const bool is_meant = known.per_level || i == key.index;
      json_array_append_new(values, number_for(known, is_meant ? value : loaded.stored(known, i)));
    }
    json_object_set_new(section, known.key.name, values);
  });
}

}  // namespace tool
