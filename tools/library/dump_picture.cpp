#include "tools/library/dump_picture.h"

#include <libyuv.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "tools/files/file_bytes.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/png_file.h"
#include "tools/pictures/raw_file.h"

namespace tool {
namespace {

constexpr uint8_t kMidGrey = 128;
constexpr float kLowScale = 0.25f;  // two levels, each doubling the scale
constexpr float kDetailScale = 8.0f;

uint8_t grey(float value, float offset) {
  const float shown = value + offset;
  if (!(shown > 0.0f)) return std::isnan(value) && offset > 0.0f ? kMidGrey : 0;
  return static_cast<uint8_t>(std::min(shown + 0.5f, 255.0f));
}

float shown_value(float sample, DumpContent content) {
  switch (content) {
    case DumpContent::kLow:
      return sample * kLowScale;
    case DumpContent::kDetail:
      return sample * kDetailScale;
    default:
      return sample;
  }
}

std::vector<uint8_t> grey_samples(const DumpFile& file, const std::vector<uint8_t>& bytes) {
  if (file.layout == DumpLayout::kBytes) return bytes;
  const float offset = file.content == DumpContent::kDetail ? kMidGrey : 0.0f;
  std::vector<uint8_t> samples(bytes.size() / 2);
  for (size_t i = 0; i < samples.size(); ++i) {
    uint16_t bits = 0;
    std::memcpy(&bits, bytes.data() + 2 * i, sizeof(bits));
    samples[i] = grey(shown_value(half_value(bits), file.content), offset);
  }
  return samples;
}

// The colours of a chroma plane, on mid grey.
Nv21Frame chroma_on_grey(Size plane, const std::vector<uint8_t>& bytes) {
  Nv21Frame frame(plane.width / 2 * 2, 2 * plane.height);
  std::fill_n(frame.y(), frame.luma_bytes(), kMidGrey);
  std::copy_n(bytes.begin(), std::min(bytes.size(), frame.chroma_bytes()), frame.vu());
  return frame;
}

// Frames and interleaved chroma are shown in colour.
bool is_grey(const DumpFile& file) {
  return file.content != DumpContent::kFrame &&
         (file.content != DumpContent::kPairs || file.layout != DumpLayout::kBytes);
}

}  // namespace

float half_value(uint16_t bits) {
  const float sign = (bits & 0x8000) != 0 ? -1.0f : 1.0f;
  const int exponent = (bits >> 10) & 31;
  const int fraction = bits & 1023;
  if (exponent == 31) {
    return fraction != 0 ? std::numeric_limits<float>::quiet_NaN()
                         : sign * std::numeric_limits<float>::infinity();
  }
  if (exponent == 0) return sign * std::ldexp(static_cast<float>(fraction), -24);
  return sign * std::ldexp(static_cast<float>(1024 + fraction), exponent - 25);
}

Nv21Frame read_dump_frame(const DumpFile& file) {
  if (file.layout != DumpLayout::kYuyv) return read_raw(file.path, file.size, {});
  const std::vector<uint8_t> bytes = read_file(file.path, kMaxFrameBytes);
  const Nv21Frame sizes(file.size.width, file.size.height);
  std::vector<uint8_t> y(sizes.luma_bytes());
  std::vector<uint8_t> u(sizes.chroma_bytes() / 2);
  std::vector<uint8_t> v(sizes.chroma_bytes() / 2);
  libyuv::YUY2ToI420(bytes.data(), 2 * file.size.width, y.data(), file.size.width, u.data(),
                     sizes.chroma_width(), v.data(), sizes.chroma_width(), file.size.width,
                     file.size.height);
  return nv21_from_planes(file.size.width, file.size.height, y.data(), u.data(), v.data());
}

RgbImage dump_image(const DumpFile& file) {
  if (file.content == DumpContent::kFrame) return nv21_to_rgb(read_dump_frame(file));
  const std::vector<uint8_t> bytes = read_file(file.path, kMaxFrameBytes);
  if (!is_grey(file)) return nv21_to_rgb(chroma_on_grey(file.size, bytes));
  const std::vector<uint8_t> samples = grey_samples(file, bytes);
  RgbImage image(file.size.width, file.size.height);
  for (size_t i = 0; i < image.pixels.size(); ++i) image.pixels[i] = samples[i / 3];
  return image;
}

std::vector<uint8_t> dump_png(const DumpFile& file) {
  if (!is_grey(file)) return encode_png(dump_image(file), {});
  return encode_grey_png(grey_samples(file, read_file(file.path, kMaxFrameBytes)), file.size);
}

}  // namespace tool
