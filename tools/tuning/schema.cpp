#include "tools/tuning/schema.h"

#include <cmath>

#include "tools/tuning/json.h"
#include "tools/tuning/known_keys.h"
#include "tools/tuning/tuning_view.h"
#include "tuning/tuning.h"

namespace tool {
namespace {

constexpr char kAbout[] =
    "Tuning of the colour noise removal for one camera sensor: an array of objects, of which the "
    "last one counts. What a schema cannot say: numbers of MFD_UV_tuning's tables and of "
    "chromaNoise_values need a decimal point (45 reads as 0.0) and all other numbers must not have "
    "one (8.0 reads as 0); "
    "noiseIndex_values ascend; a table has as many values as there are levels. 'vorel check' finds "
    "all of it.";

void set_text(json_t* object, const char* name, const std::string& text) {
  json_object_set_new(object, name, json_string(text.c_str()));
}

// Reals keep their point, integers have none.
json_t* number_json(const KnownKey& known, double number) {
  return known.is_real() ? json_real(number) : json_integer(std::llround(number));
}

std::string built_in_text(const KnownKey& known) {
  std::string text;
  for (int32_t i = 0; i < known.key.defaults.count; ++i) {
    text += (i > 0 ? ", " : "") + number_text(known, default_value(known.key, i));
  }
  return text + (known.per_level ? " at every level" : "");
}

std::string hover_text(const KnownKey& known) {
  std::string text = known.note.description;
  if (known.key.type == key_type::kText) return text;
  if (*known.note.unit != '\0') text += std::string(" Unit: ") + known.note.unit + ".";
  if (known.note.most < INT32_MAX) {
    text += " Range: " + number_text(known, known.note.least) + " to " +
            number_text(known, known.note.most) + ".";
  }
  if (!known.for_command) text += " Built in: " + built_in_text(known) + ".";
  if (known.is_real()) text += " Write a decimal point: 45 reads as 0.0.";
  return text;
}

json_t* value_schema(const KnownKey& known) {
  json_t* schema = json_object();
  if (known.key.type == key_type::kText) {
    set_text(schema, "type", "string");
    json_object_set_new(schema, "maxLength", json_integer(kTuningVersionSize - 1));
    return schema;
  }
  set_text(schema, "type", known.is_real() ? "number" : "integer");
  json_object_set_new(schema, "minimum", number_json(known, known.note.least));
  json_object_set_new(schema, "maximum", number_json(known, known.note.most));
  return schema;
}

json_t* default_json(const KnownKey& known) {
  if (known.key.count == 1) return number_json(known, default_value(known.key, 0));
  json_t* values = json_array();
  for (int32_t i = 0; i < known.key.count; ++i) {
    json_array_append_new(values, number_json(known, default_value(known.key, i)));
  }
  return values;
}

json_t* key_schema(const KnownKey& known) {
  const bool is_level_list = known.key.count_field != kNoField;
  json_t* schema = value_schema(known);
  if (known.key.count > 1) {
    json_t* items = schema;
    schema = json_object();
    set_text(schema, "type", "array");
    json_object_set_new(schema, "items", items);
    const bool any_length = known.per_level || is_level_list;
    json_object_set_new(schema, "minItems", json_integer(any_length ? 1 : known.key.count));
    json_object_set_new(schema, "maxItems", json_integer(known.key.count));
    if (is_level_list) json_object_set_new(schema, "uniqueItems", json_true());
  }
  set_text(schema, "description", hover_text(known));
  if (known.key.type != key_type::kText && !known.for_command) {
    json_object_set_new(schema, "default", default_json(known));
  }
  return schema;
}

json_t* object_schema() {
  json_t* schema = json_object();
  set_text(schema, "type", "object");
  json_object_set_new(schema, "properties", json_object());
  json_object_set_new(schema, "additionalProperties", json_false());
  return schema;
}

}  // namespace

std::string tuning_schema() {
  json_t* tuning = object_schema();
  json_t* properties = json_object_get(tuning, "properties");
  for (const KnownKey& known : known_keys()) {
    json_t* into = properties;
    if (known.key.section != nullptr) {
      json_t* section = json_object_get(properties, known.key.section);
      if (section == nullptr) {
        section = object_schema();
        json_object_set_new(properties, known.key.section, section);
      }
      into = json_object_get(section, "properties");
    }
    json_object_set_new(into, known.key.name, key_schema(known));
  }
  json_object_set_new(tuning, "required",
                      json_pack("[s, s]", "noiseIndex_values", "enableNoiseIndex"));
  const Json schema(json_pack("{s:s, s:s, s:s, s:s, s:i, s:o}", "$schema",
                              "http://json-schema.org/draft-07/schema#", "title", "Tuning file",
                              "description", kAbout, "type", "array", "minItems", 1, "items",
                              tuning));
  return json_text(schema.get(), JSON_INDENT(2) | JSON_REAL_PRECISION(9)) + "\n";
}

}  // namespace tool
