#include "tools/files/printable.h"

#include <cstdint>
#include <cstdio>

#include "tools/files/utf8.h"

namespace tool {
namespace {

// Bytes of the UTF-8 character at `pos` that is fit to show; 0 when there is none. Two-byte forms
// below U+00A0 are control characters.
size_t shown_bytes(const std::string& text, size_t pos) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
  const size_t length = utf8_length(text, pos);
  if (length == 1) return byte(pos) >= 0x20 && byte(pos) != 0x7F ? 1 : 0;
  return length == 2 && byte(pos) == 0xC2 && byte(pos + 1) < 0xA0 ? 0 : length;
}

std::string escaped(char c) {
  if (c == '\n') return "\\n";
  if (c == '\t') return "\\t";
  char text[8];
  std::snprintf(text, sizeof(text), "\\x%02x", static_cast<unsigned>(static_cast<uint8_t>(c)));
  return text;
}

}  // namespace

std::string printable(const std::string& text) {
  std::string shown;
  for (size_t pos = 0; pos < text.size();) {
    const size_t length = shown_bytes(text, pos);
    shown += length > 0 ? text.substr(pos, length) : escaped(text[pos]);
    pos += length > 0 ? length : 1;
  }
  return shown;
}

}  // namespace tool
