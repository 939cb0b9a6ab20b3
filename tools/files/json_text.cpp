#include "tools/files/json_text.h"

#include <cstdlib>
#include <memory>
#include <new>

#include "tools/files/printable.h"

namespace tool {

json_t* json_text(const std::string& text) {
  json_t* value = json_stringn(text.data(), text.size());
  return value != nullptr ? value : json_string(printable(text).c_str());
}

std::string json_lines(json_t* value) {
  struct Release {
    void operator()(char* text) const { std::free(text); }
  };
  const std::unique_ptr<char, Release> text(
      json_dumps(value, JSON_INDENT(2) | JSON_REAL_PRECISION(8)));
  json_decref(value);
  if (!text) throw std::bad_alloc();
  return std::string(text.get()) + "\n";
}

}  // namespace tool
