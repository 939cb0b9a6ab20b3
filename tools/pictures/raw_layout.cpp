#include "tools/pictures/raw_layout.h"

#include <libyuv.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "tools/pictures/picture_name.h"

namespace tool {
namespace {

struct NamedLayout {
  std::string_view name;
  Layout layout;
};

constexpr NamedLayout kLayouts[] = {{"nv21", Layout::kNv21},
                                    {"nv12", Layout::kNv12},
                                    {"i420", Layout::kI420},
                                    {"yv12", Layout::kYv12}};

constexpr NamedLayout kExtensions[] = {
    {"nv21", Layout::kNv21}, {"nm21", Layout::kNv21}, {"nv21_m", Layout::kNv21},
    {"nv12", Layout::kNv12}, {"i420", Layout::kI420}, {"yv12", Layout::kYv12},
};

template <size_t kCount>
std::optional<Layout> find(const NamedLayout (&table)[kCount], const std::string& name) {
  for (const NamedLayout& entry : table) {
    if (entry.name == name) return entry.layout;
  }
  return std::nullopt;
}

size_t half(int side) { return (static_cast<size_t>(side) + 1) / 2; }

void copy_rows(const uint8_t* src, size_t src_stride, uint8_t* dst, size_t row_bytes, size_t rows) {
  for (size_t y = 0; y < rows; ++y) {
    std::memcpy(dst + y * row_bytes, src + y * src_stride, row_bytes);
  }
}

}  // namespace

const char* layout_name(Layout layout) { return kLayouts[static_cast<size_t>(layout)].name.data(); }

std::optional<Layout> parse_layout(const std::string& name) { return find(kLayouts, name); }

std::optional<Layout> layout_of_name(const std::string& path) {
  return find(kExtensions, extension_of(path));
}

int least_stride(Size size) { return (size.width + 1) / 2 * 2; }

size_t RawShape::luma_stride() const {
  return static_cast<size_t>(stride > 0 ? stride : size.width);
}

size_t RawShape::chroma_stride() const {
  const size_t pairs = stride > 0 ? static_cast<size_t>(stride) : 2 * half(size.width);
  return is_planar(layout) ? (pairs + 1) / 2 : pairs;
}

size_t RawShape::bytes() const {
  const size_t planes = is_planar(layout) ? 2 : 1;
  return luma_stride() * static_cast<size_t>(size.height) +
         planes * chroma_stride() * half(size.height);
}

Nv21Frame unpack_raw(const std::vector<uint8_t>& bytes, const RawShape& shape, Colour colour) {
  Nv21Frame frame(shape.size.width, shape.size.height, colour);
  const auto width = static_cast<size_t>(frame.width);
  const auto height = static_cast<size_t>(frame.height);
  const size_t stride = shape.chroma_stride();
  const size_t rows = half(frame.height);
  const uint8_t* first = bytes.data() + shape.luma_stride() * height;
  const uint8_t* second = first + stride * rows;
  copy_rows(bytes.data(), shape.luma_stride(), frame.y(), width, height);
  const int chroma_stride = static_cast<int>(stride);
  switch (shape.layout) {
    case Layout::kNv21:
      copy_rows(first, stride, frame.vu(), 2 * half(frame.width), rows);
      break;
    case Layout::kNv12:
      libyuv::SwapUVPlane(first, chroma_stride, frame.vu(), frame.chroma_stride(),
                          frame.chroma_width(), frame.chroma_height());
      break;
    case Layout::kI420:
      std::swap(first, second);
      [[fallthrough]];
    case Layout::kYv12:
      libyuv::MergeUVPlane(first, chroma_stride, second, chroma_stride, frame.vu(),
                           frame.chroma_stride(), frame.chroma_width(), frame.chroma_height());
      break;
  }
  return frame;
}

std::vector<uint8_t> pack_raw(const Nv21Frame& frame, Layout layout) {
  if (layout == Layout::kNv21) return frame.data;
  std::vector<uint8_t> bytes(frame.data.size());
  std::memcpy(bytes.data(), frame.y(), frame.luma_bytes());
  uint8_t* first = bytes.data() + frame.luma_bytes();
  if (layout == Layout::kNv12) {
    libyuv::SwapUVPlane(frame.vu(), frame.chroma_stride(), first, frame.chroma_stride(),
                        frame.chroma_width(), frame.chroma_height());
    return bytes;
  }
  uint8_t* second = first + frame.chroma_bytes() / 2;
  if (layout == Layout::kI420) std::swap(first, second);
  libyuv::SplitUVPlane(frame.vu(), frame.chroma_stride(), first, frame.chroma_width(), second,
                       frame.chroma_width(), frame.chroma_width(), frame.chroma_height());
  return bytes;
}

}  // namespace tool
