#include "tools/files/input_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "tools/files/failure.h"

namespace tool {
namespace {

constexpr size_t kBlock = size_t{1} << 20;
constexpr size_t kFirstPeek = 4096;

FILE* open_input(const std::string& path) {
  if (path != kStandardStream) return std::fopen(path.c_str(), "rbe");
  if (isatty(STDIN_FILENO) != 0) {
    throw usage_error("standard input is a terminal; send a picture or a video through a pipe");
  }
  const int copy = dup(STDIN_FILENO);
  return copy < 0 ? nullptr : fdopen(copy, "rb");
}

}  // namespace

InputFile::InputFile(const std::string& path)
    : name_(path == kStandardStream ? "standard input" : path), file_(open_input(path)) {
  struct stat status{};
  if (!file_ || fstat(fileno(file_.get()), &status) != 0) {
    throw input_error(name_, errno_text(errno));
  }
  if (S_ISDIR(status.st_mode)) throw input_error(name_, errno_text(EISDIR));
  if (S_ISREG(status.st_mode)) length_ = static_cast<uint64_t>(status.st_size);
}

void InputFile::check_error() const {
  if (std::ferror(file_.get()) != 0) throw input_error(name_, errno_text(errno));
}

const std::vector<uint8_t>& InputFile::peek(size_t count) {
  // In growing steps: most files are much shorter than what a caller would look at.
  for (bool more = true; more && front_.size() < count;) {
    const size_t had = front_.size();
    const size_t step = std::min(count - had, std::max(had, kFirstPeek));
    front_.resize(had + step);
    const size_t got = std::fread(front_.data() + had, 1, step, file_.get());
    front_.resize(had + got);
    more = got == step;
  }
  check_error();
  return front_;
}

size_t InputFile::read(uint8_t* bytes, size_t count) {
  const size_t from_front = std::min(count, front_.size() - taken_);
  if (from_front > 0) std::memcpy(bytes, front_.data() + taken_, from_front);
  taken_ += from_front;
  if (from_front == count) return count;
  const size_t got = std::fread(bytes + from_front, 1, count - from_front, file_.get());
  check_error();
  return from_front + got;
}

std::vector<uint8_t> InputFile::read_all(size_t limit) {
  std::vector<uint8_t> bytes;
  if (length_ && *length_ <= limit) bytes.reserve(static_cast<size_t>(*length_) + 1);
  size_t used = 0;
  for (;;) {
    bytes.resize(std::max(used + 1, std::min(bytes.capacity(), used + kBlock)));
    const size_t got = read(bytes.data() + used, bytes.size() - used);
    used += got;
    if (used > limit) {
      throw input_error(name_, "is longer than " + std::to_string(limit) + " bytes");
    }
    if (got == 0) break;
  }
  bytes.resize(used);
  return bytes;
}

std::optional<std::string> InputFile::read_line(size_t limit) {
  std::string line;
  uint8_t byte = 0;
  size_t got = read(&byte, 1);
  if (got == 0) return std::nullopt;
  for (; got == 1 && byte != '\n' && line.size() < limit; got = read(&byte, 1)) {
    line.push_back(static_cast<char>(byte));
  }
  return line;
}

}  // namespace tool
