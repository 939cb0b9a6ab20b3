// Texts that are no plain UTF-8.
#ifndef VOREL_TOOLS_TUNING_TEXT_ENCODING_H_
#define VOREL_TOOLS_TUNING_TEXT_ENCODING_H_

#include <optional>
#include <string>

#include "tools/tuning/json_places.h"

namespace tool {

// What is wrong with the first `size` bytes: a byte-order mark, UTF-16, a zero byte, bytes that are
// no UTF-8.
[[nodiscard]] std::optional<JsonFault> encoding_fault(const std::string& text, size_t size);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_TEXT_ENCODING_H_
