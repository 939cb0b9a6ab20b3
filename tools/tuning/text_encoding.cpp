#include "tools/tuning/text_encoding.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace tool {
namespace {

// Length of the UTF-8 character at `at`, 0 when there is none: no overlong forms, no surrogates,
// nothing above U+10FFFF.
size_t character_length(std::string_view text, size_t at) {
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

bool is_utf16(std::string_view text) {
  if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) return true;
  // Without a mark: ASCII characters with a zero byte before or behind each.
  return text.size() >= 2 && (text[0] == '\0') != (text[1] == '\0');
}

}  // namespace

std::optional<JsonFault> encoding_fault(const std::string& text, size_t size) {
  if (is_utf16(text)) return JsonFault{0, "the text is UTF-16; save it as UTF-8"};
  if (text.starts_with("\xEF\xBB\xBF")) {
    return JsonFault{0, "a byte-order mark (EF BB BF) stands here; save as UTF-8 without it"};
  }
  for (size_t at = 0; at < std::min(size, text.size());) {
    if (text[at] == '\0') {
      return JsonFault{at, "a zero byte stands here, where the text ends for the library"};
    }
    const size_t length = character_length(text, at);
    if (length == 0) {
      char hex[8];
      std::snprintf(hex, sizeof(hex), "%02X", static_cast<uint8_t>(text[at]));
      return JsonFault{
          at, "the byte " + std::string(hex) + " is no UTF-8 here; save the file as UTF-8"};
    }
    at += length;
  }
  return std::nullopt;
}

}  // namespace tool
