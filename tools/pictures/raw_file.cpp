#include "tools/pictures/raw_file.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "tools/files/failure.h"
#include "tools/files/file_bytes.h"
#include "tools/pictures/picture_name.h"

namespace tool {
namespace {

// Length of the library's own dump of such a frame.
size_t dump_bytes(Size size) {
  return static_cast<size_t>(size.height) * static_cast<size_t>(size.width / 2) * 3;
}

bool fits(Size size, size_t length) {
  const bool odd_dump = size.width % 2 == 0 && size.height % 2 != 0 && size.height > 2;
  return length == frame_bytes(size) || (odd_dump && length == dump_bytes(size));
}

std::string length_problem(Size size, size_t length) {
  const size_t expected = frame_bytes(size);
  std::string text = "holds " + std::to_string(length) + " bytes, but an NV21 frame of " +
                     size_text(size) + " has " + std::to_string(expected);
  if (length > expected && length % expected == 0) {
    text += "; for " + std::to_string(length / expected) + " frames use a y4m file";
  }
  return text;
}

Size find_size(const std::string& path, std::optional<Size> size, size_t length) {
  std::vector<Size> candidates;
  if (size) {
    candidates.push_back(*size);
  } else {
    candidates = sizes_in_name(path);
  }
  if (candidates.empty()) {
    throw input_error(path,
                      "the size of a raw frame is needed: give --size WxH or put it into the "
                      "name, as in frame_1920x1080.nv21");
  }
  for (const Size candidate : candidates) {
    if (fits(candidate, length)) return candidate;
  }
  throw input_error(path, length_problem(candidates.front(), length));
}

}  // namespace

Nv21Frame read_raw(const std::string& path, std::optional<Size> size, Colour colour) {
  const std::vector<uint8_t> bytes = read_file(path, kMaxFrameBytes);
  const Size found = find_size(path, size, bytes.size());
  Nv21Frame frame(found.width, found.height, colour);
  if (bytes.size() == frame.data.size()) {
    frame.data = bytes;
    return frame;
  }
  // A dump's half row is no chroma: the last whole row stands in for it.
  const auto stride = static_cast<size_t>(frame.chroma_stride());
  const size_t whole = frame.luma_bytes() + stride * (static_cast<size_t>(found.height) / 2);
  std::copy_n(bytes.begin(), whole, frame.data.begin());
  std::memcpy(frame.data.data() + whole, frame.data.data() + whole - stride, stride);
  return frame;
}

}  // namespace tool
