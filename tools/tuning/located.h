// JSON values together with where they stand.
#ifndef VOREL_TOOLS_TUNING_LOCATED_H_
#define VOREL_TOOLS_TUNING_LOCATED_H_

#include <jansson.h>

#include <string>

#include "tools/tuning/json_places.h"

namespace tool {

// Both null when there is no such value.
struct Located {
  const json_t* json = nullptr;
  const JsonNode* node = nullptr;

  explicit operator bool() const { return json != nullptr; }
  [[nodiscard]] size_t begin() const { return node != nullptr ? node->begin : 0; }
};

// Of members of one name the last counts, as for jansson.
[[nodiscard]] inline Located member(Located object, const std::string& name) {
  Located found{json_object_get(object.json, name.c_str()), nullptr};
  if (!found || object.node == nullptr) return found;
  for (const JsonNode& child : object.node->children) {
    if (child.name == name) found.node = &child;
  }
  return found;
}

[[nodiscard]] inline Located element(Located array, size_t index) {
  Located found{json_array_get(array.json, index), nullptr};
  if (!found || array.node == nullptr) return found;
  if (index < array.node->children.size()) found.node = &array.node->children[index];
  return found;
}

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_LOCATED_H_
