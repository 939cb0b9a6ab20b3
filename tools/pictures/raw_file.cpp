#include "tools/pictures/raw_file.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "tools/files/failure.h"
#include "tools/pictures/picture_name.h"

namespace tool {
namespace {

constexpr size_t kMaxRawBytes = 2 * kMaxFrameBytes;  // strides leave gaps

// Length of the library's own dump of a frame of odd height, which has no whole last chroma row;
// nothing for other frames.
std::optional<size_t> dump_bytes(const RawShape& shape) {
  const auto [width, height] = shape.size;
  const bool odd = width % 2 == 0 && height % 2 != 0 && height > 2;
  if (!odd || shape.layout != Layout::kNv21 || shape.stride != 0) return std::nullopt;
  return static_cast<size_t>(height) * static_cast<size_t>(width / 2) * 3;
}

Layout choose_layout(const std::string& path, const ReadOptions& options) {
  if (options.layout) return *options.layout;
  if (const std::optional<Layout> named = layout_of_name(path)) return *named;
  if (extension_of(path) != "yuv") return Layout::kNv21;
  complain(path + ": taken as planes (I420), as most .yuv files are; --layout says otherwise");
  return Layout::kI420;
}

// Frames in a file of `length` bytes; nothing when it does not fit.
std::optional<int> count_frames(const RawShape& shape, uint64_t length, std::optional<int> asked) {
  const size_t each = shape.bytes();
  if (!asked) {
    return length == each || length == dump_bytes(shape) ? std::optional(1) : std::nullopt;
  }
  if (*asked != kAllFrames) {
    return length >= each * static_cast<size_t>(*asked) ? asked : std::nullopt;
  }
  return length > 0 && length % each == 0 ? std::optional(static_cast<int>(length / each))
                                          : std::nullopt;
}

std::string length_problem(const RawShape& shape, uint64_t length, std::optional<int> asked) {
  const size_t each = shape.bytes();
  std::string layout = layout_name(shape.layout);
  std::transform(layout.begin(), layout.end(), layout.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  std::string text = "holds " + std::to_string(length) + " bytes, but a frame of " +
                     size_text(shape.size) + " has " + std::to_string(each) + " (" + layout + ")";
  if (asked && *asked != kAllFrames) text += ", and " + std::to_string(*asked) + " are asked for";
  if (!asked && length > each && length % each == 0) {
    text += "; to read " + std::to_string(length / each) + " frames say --frames all";
  }
  return text;
}

std::vector<Size> possible_sizes(const std::string& name, const std::string& path,
                                 const ReadOptions& options) {
  const std::vector<Size> sizes =
      options.size ? std::vector<Size>{*options.size} : sizes_in_name(path);
  if (sizes.empty()) {
    throw input_error(name,
                      "the size of a raw frame is needed: give --size WxH or put it into the "
                      "name, as in frame_1920x1080.nv21");
  }
  return sizes;
}

void check_stride(const RawShape& shape) {
  if (shape.stride != 0 && shape.stride < least_stride(shape.size)) {
    throw usage_error("--stride " + std::to_string(shape.stride) + " is less than a row of " +
                      size_text(shape.size) + " has: " + std::to_string(least_stride(shape.size)));
  }
}

// A dump's half row is no chroma: the last whole row stands in for it.
void complete_dump(std::vector<uint8_t>& bytes, const RawShape& shape) {
  const size_t stride = shape.chroma_stride();
  const size_t whole = shape.luma_stride() * static_cast<size_t>(shape.size.height) +
                       stride * (static_cast<size_t>(shape.size.height) / 2);
  bytes.resize(whole + stride);
  std::copy_n(bytes.begin() + static_cast<ptrdiff_t>(whole - stride), stride,
              bytes.begin() + static_cast<ptrdiff_t>(whole));
}

}  // namespace

RawReader::RawReader(InputFile file, const std::string& path, const ReadOptions& options)
    : file_(std::move(file)), colour_(options.colour()) {
  const std::vector<Size> sizes = possible_sizes(file_.name(), path, options);
  shape_.layout = choose_layout(path, options);
  shape_.stride = options.stride.value_or(0);
  const std::optional<uint64_t> length = file_.length();
  if (!length) {
    shape_.size = sizes.front();
    if (options.frames != kAllFrames) frames_ = options.frames;
  } else {
    for (const Size size : sizes) {
      shape_.size = size;
      frames_ = count_frames(shape_, *length, options.frames);
      if (frames_) break;
    }
    if (!frames_) shape_.size = sizes.front();
  }
  check_stride(shape_);
  if (length && !frames_) {
    throw input_error(file_.name(), length_problem(shape_, *length, options.frames));
  }
  if (shape_.bytes() > kMaxRawBytes) throw input_error(file_.name(), "its frames are too large");
}

std::optional<Picture> RawReader::next() {
  if (frames_ && frames_read_ == *frames_) return std::nullopt;
  const auto origin = std::make_shared<Origin>();
  std::vector<uint8_t>& bytes = origin->bytes;
  bytes.resize(shape_.bytes());
  bytes.resize(file_.read(bytes.data(), bytes.size()));
  if (bytes.empty() && !frames_) return std::nullopt;
  const bool is_dump = frames_read_ == 0 && bytes.size() == dump_bytes(shape_);
  if (bytes.size() != shape_.bytes() && !is_dump) {
    throw input_error(file_.name(), "frame " + std::to_string(frames_read_ + 1) + " is cut short");
  }
  std::vector<uint8_t> completed;
  if (is_dump) {
    completed = bytes;
    complete_dump(completed, shape_);
  }
  if (frames_read_++ == 0) {
    if (const std::optional<Layout> likelier =
            likelier_layout(is_dump ? completed : bytes, shape_)) {
      warn(file_.name() + ": read as " + layout_name(shape_.layout) +
           ", but its chroma looks like " +
           (is_planar(*likelier) ? "planes: --layout i420 or yv12"
                                 : "pairs: --layout nv21 or nv12") +
           " may be right");
    }
  }
  origin->kind = FileKind::kRaw;
  origin->layout = shape_.layout;
  origin->dense = shape_.stride == 0 || shape_.stride == shape_.size.width;
  return Picture{unpack_raw(is_dump ? completed : bytes, shape_, colour_), {}, origin};
}

Nv21Frame read_raw(const std::string& path, std::optional<Size> size, Colour colour) {
  ReadOptions options{size, colour.range, colour.matrix};
  options.layout = Layout::kNv21;
  return std::get<Nv21Frame>(RawReader(InputFile(path), path, options).next().value().pixels);
}

}  // namespace tool
