#include "tools/pictures/picture.h"

#include <algorithm>
#include <cstring>

namespace tool {
namespace {

// Copies the top left part that both planes have, then repeats the last column and row of what was
// copied. A sample is `bytes` bytes wide.
void copy_plane(const uint8_t* src, Size src_size, uint8_t* dst, Size dst_size, size_t bytes) {
  const auto columns = static_cast<size_t>(std::min(src_size.width, dst_size.width));
  const int rows = std::min(src_size.height, dst_size.height);
  const size_t src_stride = static_cast<size_t>(src_size.width) * bytes;
  const size_t dst_stride = static_cast<size_t>(dst_size.width) * bytes;
  for (int y = 0; y < rows; ++y) {
    uint8_t* row = dst + static_cast<size_t>(y) * dst_stride;
    std::memcpy(row, src + static_cast<size_t>(y) * src_stride, columns * bytes);
    const uint8_t* last = row + (columns - 1) * bytes;
    for (size_t x = columns * bytes; x < dst_stride; x += bytes) std::memcpy(row + x, last, bytes);
  }
  const uint8_t* last_row = dst + static_cast<size_t>(rows - 1) * dst_stride;
  for (int y = rows; y < dst_size.height; ++y) {
    std::memcpy(dst + static_cast<size_t>(y) * dst_stride, last_row, dst_stride);
  }
}

}  // namespace

std::string size_text(Size size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height);
}

bool is_legal_size(int64_t width, int64_t height) {
  return width >= 1 && height >= 1 && width <= kMaxSide && height <= kMaxSide &&
         static_cast<size_t>(width) * static_cast<size_t>(height) <= kMaxPixels;
}

std::string size_problem(int64_t width, int64_t height) {
  return std::to_string(width) + " x " + std::to_string(height) + " pixels are too many; up to " +
         std::to_string(kMaxSide) + " a side and " + std::to_string(kMaxPixels) +
         " in all can be read";
}

size_t frame_bytes(Size size) {
  const auto width = static_cast<size_t>(size.width);
  const auto height = static_cast<size_t>(size.height);
  return width * height + (width + 1) / 2 * 2 * ((height + 1) / 2);
}

RgbImage::RgbImage(int width_, int height_)
    : width(width_), height(height_), pixels(stride() * static_cast<size_t>(height_)) {}

Nv21Frame::Nv21Frame(int width_, int height_, Colour colour_)
    : width(width_), height(height_), colour(colour_), data(luma_bytes() + chroma_bytes()) {}

Size Picture::size() const {
  return std::visit([](const auto& image) { return Size{image.width, image.height}; }, pixels);
}

Nv21Frame with_size(const Nv21Frame& frame, Size size) {
  Nv21Frame result(size.width, size.height, frame.colour);
  copy_plane(frame.y(), {frame.width, frame.height}, result.y(), size, 1);
  copy_plane(frame.vu(), {frame.chroma_width(), frame.chroma_height()}, result.vu(),
             {result.chroma_width(), result.chroma_height()}, 2);
  return result;
}

}  // namespace tool
