#include "tools/tuning/text_encoding.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "tools/files/utf8.h"

namespace tool {
namespace {

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
    const size_t length = utf8_length(text, at);
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
