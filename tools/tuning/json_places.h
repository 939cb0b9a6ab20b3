// Where everything in a JSON text stands. What a text means is jansson's to say, as for the
// library; it keeps no places, and of a text that is no JSON it tells less than this does.
#ifndef VOREL_TOOLS_TUNING_JSON_PLACES_H_
#define VOREL_TOOLS_TUNING_JSON_PLACES_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tool {

struct JsonNode {
  size_t begin = 0;  // of the value, in bytes; `end` is behind it
  size_t end = 0;
  size_t name_begin = 0;  // of a member of an object
  std::string name;
  std::vector<JsonNode> children;  // of arrays and objects, in the order of the text
};

// The first thing that makes a text no JSON, in words that follow "here".
struct JsonFault {
  size_t at = 0;
  std::string what;
};

struct JsonPlaces {
  JsonNode root;  // as far as it could be followed
  std::optional<JsonFault> fault;
};

// Follows the array or object that the text starts with; what stands behind it is not looked at.
[[nodiscard]] JsonPlaces find_places(const std::string& text);

// Line and column, both from 1. A column is a character, not a byte.
struct TextPlace {
  size_t line = 1;
  size_t column = 1;
};
[[nodiscard]] TextPlace place_of(const std::string& text, size_t offset);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_JSON_PLACES_H_
