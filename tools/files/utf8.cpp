#include "tools/files/utf8.h"

#include <cstdint>

namespace tool {

size_t utf8_length(std::string_view text, size_t at) {
  const auto byte = [&](size_t i) {
    return at + i < text.size() ? static_cast<uint8_t>(text[at + i]) : uint8_t{0};
  };
  const uint8_t first = byte(0);
  if (first < 0x80) return 1;
  const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  const uint8_t second = byte(1);
  const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool no_character = (first == 0xED && second >= 0xA0) || (first == 0xF4 && second >= 0x90);
  return overlong || no_character ? 0 : length;
}

}  // namespace tool
