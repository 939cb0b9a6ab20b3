#include "tools/pictures/picture_size.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "tools/files/failure.h"
#include "tools/files/input_file.h"
#include "tools/pictures/jpeg_file.h"
#include "tools/pictures/picture_name.h"
#include "tools/pictures/png_file.h"
#include "tools/pictures/y4m_file.h"

namespace tool {
namespace {

constexpr size_t kHeaderBytes = size_t{1} << 20;
constexpr size_t kPngSizeAt = 16;  // width and height, 4 bytes each

using Bytes = std::vector<uint8_t>;

int big_endian(const Bytes& bytes, size_t at, size_t count) {
  int value = 0;
  for (size_t i = at; i < at + count; ++i) value = value << 8 | bytes[i];
  return value;
}

std::optional<Size> size_of_png(const Bytes& bytes) {
  if (bytes.size() < kPngSizeAt + 8) return std::nullopt;
  return Size{big_endian(bytes, kPngSizeAt, 4), big_endian(bytes, kPngSizeAt + 4, 4)};
}

// Goes from marker to marker up to the one that starts a frame (SOF).
std::optional<Size> size_of_jpeg(const Bytes& bytes) {
  for (size_t pos = 2; pos + 9 <= bytes.size();) {
    if (bytes[pos] != 0xFF) return std::nullopt;
    const uint8_t marker = bytes[pos + 1];
    if (marker == 0xFF) {  // a fill byte
      ++pos;
      continue;
    }
    const bool other_table = marker == 0xC4 || marker == 0xC8 || marker == 0xCC;
    if (marker >= 0xC0 && marker <= 0xCF && !other_table) {
      return Size{big_endian(bytes, pos + 7, 2), big_endian(bytes, pos + 5, 2)};
    }
    pos += 2 + static_cast<size_t>(big_endian(bytes, pos + 2, 2));
  }
  return std::nullopt;
}

std::optional<Size> size_of_y4m(const Bytes& bytes) {
  const std::string text(bytes.begin(),
                         std::find(bytes.begin(), bytes.end(), static_cast<uint8_t>('\n')));
  const size_t width = text.find(" W");
  const size_t height = text.find(" H");
  if (width == std::string::npos || height == std::string::npos) return std::nullopt;
  Size size{};
  if (std::sscanf(text.c_str() + width + 2, "%6d", &size.width) != 1) return std::nullopt;
  if (std::sscanf(text.c_str() + height + 2, "%6d", &size.height) != 1) return std::nullopt;
  return size;
}

std::optional<Size> size_told(const std::string& path, const ReadOptions& options) {
  if (kind_of_name(path) == FileKind::kRaw) {
    if (options.size) return options.size;
    const std::vector<Size> sizes = sizes_in_name(path);
    return sizes.empty() ? std::nullopt : std::optional(sizes.front());
  }
  InputFile file(path);
  if (!file.length()) return std::nullopt;  // what is taken from a pipe is gone
  const Bytes& bytes = file.peek(kHeaderBytes);
  if (is_png(bytes)) return size_of_png(bytes);
  if (is_jpeg(bytes)) return size_of_jpeg(bytes);
  if (is_y4m(bytes)) return size_of_y4m(bytes);
  return std::nullopt;
}

}  // namespace

std::optional<Size> size_of_file(const std::string& path, const ReadOptions& options) {
  try {
    const std::optional<Size> size = size_told(path, options);
    return size && is_legal_size(size->width, size->height) ? size : std::nullopt;
  } catch (const Failure&) {
    return std::nullopt;
  }
}

}  // namespace tool
