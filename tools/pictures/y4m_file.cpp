#include "tools/pictures/y4m_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <charconv>
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

// A line without its end, or as much of it as there is; nothing at the end of the file.
std::optional<std::string> read_line(FILE* file) {
  std::string line;
  int c = std::fgetc(file);
  if (c == EOF) return std::nullopt;
  for (; c != EOF && c != '\n' && line.size() < kMaxLine; c = std::fgetc(file)) {
    line.push_back(static_cast<char>(c));
  }
  return line;
}

int parse_number(const std::string& text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() ? value : 0;
}

// The 8-bit 4:2:0 kinds differ in where chroma samples lie, which does not matter here.
bool is_supported_chroma(const std::string& name) {
  return name == "420" || name == "420jpeg" || name == "420mpeg2" || name == "420paldv";
}

std::string default_tags(Colour colour) {
  return std::string("F30:1 Ip A1:1 C420jpeg ") + kRangeTag +
         (colour.range == Range::kFull ? "FULL" : "LIMITED");
}

}  // namespace

Y4mReader::Y4mReader(const std::string& path, Colour colour, bool range_is_given)
    : path_(path), file_(std::fopen(path.c_str(), "rbe")), colour_(colour) {
  if (!file_) throw input_error(path_, errno_text(errno));
  const std::optional<std::string> line = read_line(file_.get());
  if (!line && std::ferror(file_.get()) != 0) throw input_error(path_, errno_text(errno));
  if (!line || line->rfind(kMagic, 0) != 0) throw input_error(path_, "is no y4m file");
  parse_header(*line, range_is_given);
  count_frames(line->size() + 1);
}

void Y4mReader::parse_header(const std::string& line, bool range_is_given) {
  std::istringstream words(line.substr(sizeof(kMagic) - 1));
  for (std::string word; words >> word;) {
    const std::string value = word.substr(1);
    if (word[0] == 'W') {
      size_.width = parse_number(value);
      continue;
    }
    if (word[0] == 'H') {
      size_.height = parse_number(value);
      continue;
    }
    if (word[0] == 'C' && !is_supported_chroma(value)) {
      throw input_error(path_, "holds " + value + " video; only 8-bit 4:2:0 is supported");
    }
    if (!range_is_given && word.rfind(kRangeTag, 0) == 0) {
      colour_.range = word == std::string(kRangeTag) + "LIMITED" ? Range::kLimited : Range::kFull;
    }
    tags_ += (tags_.empty() ? "" : " ") + word;
  }
  if (!is_legal_size(size_.width, size_.height)) {
    const bool too_large = size_.width > 0 && size_.height > 0;
    throw input_error(
        path_, "its header names no usable frame size: " +
                   (too_large ? size_problem(size_.width, size_.height) : "\"" + line + "\""));
  }
}

void Y4mReader::count_frames(size_t header_bytes) {
  struct stat status{};
  if (fstat(fileno(file_.get()), &status) != 0 || !S_ISREG(status.st_mode)) return;
  const size_t frame = sizeof(kFrameMagic) + frame_bytes(size_);  // line end instead of terminator
  expected_frames_ = static_cast<int>((static_cast<size_t>(status.st_size) - header_bytes) / frame);
}

std::optional<Nv21Frame> Y4mReader::next() {
  const std::optional<std::string> line = read_line(file_.get());
  if (!line && std::ferror(file_.get()) != 0) throw input_error(path_, errno_text(errno));
  if (!line) return std::nullopt;
  const std::string name = "frame " + std::to_string(frames_read_ + 1);
  if (line->rfind(kFrameMagic, 0) != 0) {
    throw input_error(path_, name + " does not start with FRAME");
  }
  std::vector<uint8_t> bytes(frame_bytes(size_));
  if (std::fread(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) {
    throw input_error(path_, name + " is cut short");
  }
  ++frames_read_;
  const size_t luma = static_cast<size_t>(size_.width) * static_cast<size_t>(size_.height);
  const uint8_t* u = bytes.data() + luma;
  Nv21Frame frame =
      nv21_from_planes(size_.width, size_.height, bytes.data(), u, u + (bytes.size() - luma) / 2);
  frame.colour = colour_;
  return frame;
}

void Y4mWriter::write(const Nv21Frame& frame, const std::string& tags) {
  const Size size{frame.width, frame.height};
  if (!size_) {
    size_ = size;
    file_.write(std::string(kMagic) + " W" + std::to_string(size.width) + " H" +
                std::to_string(size.height) + " " +
                (tags.empty() ? default_tags(frame.colour) : tags) + "\n");
  }
  const ChromaPlanes chroma = split_chroma(frame);
  file_.write(std::string(kFrameMagic) + "\n");
  file_.write(std::span(frame.y(), frame.luma_bytes()));
  file_.write(chroma.u);
  file_.write(chroma.v);
}

}  // namespace tool
