// JSON for programs that read what a verb prints.
#ifndef VOREL_TOOLS_FILES_JSON_TEXT_H_
#define VOREL_TOOLS_FILES_JSON_TEXT_H_

#include <jansson.h>

#include <string>

namespace tool {

// A new string value. File names that are no UTF-8 are written as `printable` shows them.
[[nodiscard]] json_t* json_text(const std::string& text);

// The value's text with an indent of two and a line end. Takes over the caller's reference.
[[nodiscard]] std::string json_lines(json_t* value);

}  // namespace tool

#endif  // VOREL_TOOLS_FILES_JSON_TEXT_H_
