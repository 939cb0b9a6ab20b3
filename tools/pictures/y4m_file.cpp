#include "tools/pictures/y4m_file.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <sstream>
#include <vector>

#include "tools/files/failure.h"
#include "tools/pictures/colour.h"

namespace tool {
namespace {

constexpr size_t kMaxLine = 1024;
constexpr char kMagic[] = "YUV4MPEG2";
constexpr char kFrameMagic[] = "FRAME";
constexpr char kRangeTag[] = "XCOLORRANGE=";

int parse_number(const std::string& text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() ? value : 0;
}

// The 8-bit 4:2:0 kinds differ in where chroma samples lie, which does not matter here.
bool is_supported_chroma(const std::string& name) {
  return name == "420" || name == "420jpeg" || name == "420mpeg2" || name == "420paldv";
}

std::string default_tags(const Nv21Frame& frame) {
  return "W" + std::to_string(frame.width) + " H" + std::to_string(frame.height) +
         " F30:1 Ip A1:1 C420jpeg " + kRangeTag +
         (frame.colour.range == Range::kFull ? "FULL" : "LIMITED");
}

}  // namespace

bool is_y4m(const std::vector<uint8_t>& bytes) {
  constexpr size_t kLength = sizeof(kMagic) - 1;
  return bytes.size() >= kLength && std::memcmp(bytes.data(), kMagic, kLength) == 0;
}

Y4mReader::Y4mReader(InputFile file, Colour colour, bool range_is_given)
    : file_(std::move(file)), colour_(colour) {
  const std::optional<std::string> line = file_.read_line(kMaxLine);
  if (!line || line->rfind(kMagic, 0) != 0) throw input_error(file_.name(), "is no y4m file");
  parse_header(*line, range_is_given);
  count_frames(line->size() + 1);
}

void Y4mReader::parse_header(const std::string& line, bool range_is_given) {
  std::istringstream words(line.substr(sizeof(kMagic) - 1));
  for (std::string word; words >> word;) {
    const std::string value = word.substr(1);
    if (word[0] == 'W') size_.width = parse_number(value);
    if (word[0] == 'H') size_.height = parse_number(value);
    if (word[0] == 'C' && !is_supported_chroma(value)) {
      throw input_error(file_.name(), "holds " + value + " video; only 8-bit 4:2:0 is supported");
    }
    if (!range_is_given && word.rfind(kRangeTag, 0) == 0) {
      colour_.range = word == std::string(kRangeTag) + "LIMITED" ? Range::kLimited : Range::kFull;
    }
    tags_ += (tags_.empty() ? "" : " ") + word;
  }
  if (!is_legal_size(size_.width, size_.height)) {
    const bool too_large = size_.width > 0 && size_.height > 0;
    throw input_error(file_.name(), "its header names no usable frame size: " +
                                        (too_large ? size_problem(size_.width, size_.height)
                                                   : "\"" + line + "\""));
  }
}

void Y4mReader::count_frames(size_t header_bytes) {
  const std::optional<uint64_t> length = file_.length();
  if (!length) return;
  const size_t frame = sizeof(kFrameMagic) + frame_bytes(size_);  // line end instead of terminator
  // The header may end with the file instead of a line.
  expected_frames_ =
      static_cast<int>((*length - std::min<uint64_t>(*length, header_bytes)) / frame);
}

std::optional<Picture> Y4mReader::next() {
  const std::optional<std::string> line = file_.read_line(kMaxLine);
  if (!line) return std::nullopt;
  const std::string name = "frame " + std::to_string(frames_read_ + 1);
  if (line->rfind(kFrameMagic, 0) != 0) {
    throw input_error(file_.name(), name + " does not start with FRAME");
  }
  Nv21Frame frame(size_.width, size_.height, colour_);
  chroma_.resize(frame.chroma_bytes());
  if (file_.read(frame.y(), frame.luma_bytes()) != frame.luma_bytes() ||
      file_.read(chroma_.data(), chroma_.size()) != chroma_.size()) {
    throw input_error(file_.name(), name + " is cut short");
  }
  ++frames_read_;
  join_chroma(chroma_.data(), chroma_.data() + chroma_.size() / 2, frame);
  Picture picture{std::move(frame), {}, nullptr};
  picture.metadata.y4m_tags = tags_;
  picture.metadata.y4m_frame_tags = line->substr(sizeof(kFrameMagic) - 1);
  return picture;
}

void Y4mWriter::write(const Nv21Frame& frame, const Metadata& metadata) {
  if (!started_) {
    file_.write(std::string(kMagic) + " " +
                (metadata.y4m_tags.empty() ? default_tags(frame) : metadata.y4m_tags) + "\n");
    started_ = true;
  }
  const ChromaPlanes chroma = split_chroma(frame);
  file_.write(std::string(kFrameMagic) + metadata.y4m_frame_tags + "\n");
  file_.write(std::span(frame.y(), frame.luma_bytes()));
  file_.write(chroma.u);
  file_.write(chroma.v);
}

}  // namespace tool
