// Owners of what jansson hands out.
#ifndef VOREL_TOOLS_TUNING_JSON_H_
#define VOREL_TOOLS_TUNING_JSON_H_

#include <jansson.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace tool {

struct JsonRelease {
  void operator()(json_t* json) const { json_decref(json); }
};
using Json = std::unique_ptr<json_t, JsonRelease>;

// The value as text; empty when it cannot be written.
[[nodiscard]] inline std::string json_text(const json_t* json, size_t flags) {
  struct TextRelease {
    void operator()(char* text) const { std::free(text); }
  };
  const std::unique_ptr<char, TextRelease> text(json_dumps(json, flags));
  return text ? text.get() : "";
}

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_JSON_H_
