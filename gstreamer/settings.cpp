#include "gstreamer/settings.h"

#include <charconv>
#include <cstring>

bool parse_noise_index(const char* text, std::optional<int32_t>* index) {
  if (text == nullptr || std::strcmp(text, "auto") == 0) {
    *index = std::nullopt;
    return true;
  }
  int32_t value = 0;
  const char* end = text + std::strlen(text);
  const auto [stop, error] = std::from_chars(text, end, value);
  if (error != std::errc() || stop != end || value < 0) return false;
  *index = value;
  return true;
}
