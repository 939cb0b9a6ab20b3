#include "tools/pictures/picture_name.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace tool {
namespace {

struct Extension {
  std::string_view text;
  FileKind kind;
};

constexpr Extension kExtensions[] = {
    {"png", FileKind::kPng},  {"jpg", FileKind::kJpeg}, {"jpeg", FileKind::kJpeg},
    {"nv21", FileKind::kRaw}, {"nm21", FileKind::kRaw}, {"nv21_m", FileKind::kRaw},
    {"nv12", FileKind::kRaw}, {"i420", FileKind::kRaw}, {"yv12", FileKind::kRaw},
    {"raw", FileKind::kRaw},  {"yuv", FileKind::kRaw},  {"y4m", FileKind::kY4m},
};

bool is_digit(char c) { return c >= '0' && c <= '9'; }
char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// A number at `pos`, which moves past it.
std::optional<int64_t> read_number(std::string_view text, size_t& pos) {
  int64_t value = 0;
  const char* first = text.data() + pos;
  const auto [end, error] = std::from_chars(first, text.data() + text.size(), value);
  if (error != std::errc() || !is_digit(*first)) return std::nullopt;
  pos += static_cast<size_t>(end - first);
  return value;
}

// A pair of numbers around the letter x or an underscore that starts at `pos`.
std::optional<Size> read_pair(std::string_view text, size_t& pos, char separator) {
  size_t at = pos;
  const std::optional<int64_t> width = read_number(text, at);
  if (!width || at >= text.size() || lower(text[at]) != separator) return std::nullopt;
  ++at;
  if (at >= text.size()) return std::nullopt;
  const std::optional<int64_t> height = read_number(text, at);
  if (!height || !is_legal_size(*width, *height)) return std::nullopt;
  pos = at;
  return Size{static_cast<int>(*width), static_cast<int>(*height)};
}

}  // namespace

std::optional<FileKind> kind_of_name(const std::string& path) {
  const std::string extension = extension_of(path);
  for (const Extension& known : kExtensions) {
    if (extension == known.text) return known.kind;
  }
  return std::nullopt;
}

const char* known_extensions() { return "png, jpg, y4m, nv21, nv12, i420, yv12, yuv or raw"; }

std::vector<Size> sizes_in_name(const std::string& path) {
  const std::string name = base_name(path);
  std::vector<Size> sizes;
  for (const char separator : {'x', '_'}) {
    for (size_t i = 0; i < name.size(); ++i) {
      // Numbers are taken whole: the "920x1080" in "1920x1080" is no size.
      if (!is_digit(name[i]) || (i > 0 && is_digit(name[i - 1]))) continue;
      size_t end = i;
      const std::optional<Size> size = read_pair(name, end, separator);
      if (size) sizes.push_back(*size);
    }
  }
  return sizes;
}

std::optional<Size> parse_size(const std::string& text) {
  for (const char separator : {'x', '_'}) {
    size_t end = 0;
    if (text.empty() || !is_digit(text[0])) return std::nullopt;
    const std::optional<Size> size = read_pair(text, end, separator);
    if (size && end == text.size()) return size;
  }
  return std::nullopt;
}

std::string base_name(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string extension_of(const std::string& path) {
  const std::string name = base_name(path);
  const size_t dot = name.rfind('.');
  if (dot == std::string::npos) return "";
  std::string extension = name.substr(dot + 1);
  std::transform(extension.begin(), extension.end(), extension.begin(), lower);
  return extension;
}

std::string stem_of(const std::string& path) {
  const std::string name = base_name(path);
  return name.substr(0, name.rfind('.'));
}

}  // namespace tool
