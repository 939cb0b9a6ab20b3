#include "tools/files/file_bytes.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "tools/files/failure.h"

namespace tool {
namespace {

constexpr size_t kTextLimit = size_t{64} << 20;
constexpr size_t kBlock = size_t{1} << 20;

struct Closer {
  void operator()(FILE* file) const { std::fclose(file); }
};

}  // namespace

std::vector<uint8_t> read_file(const std::string& path, size_t limit) {
  const std::unique_ptr<FILE, Closer> file(std::fopen(path.c_str(), "rbe"));
  if (!file) throw input_error(path, errno_text(errno));
  struct stat status{};
  if (fstat(fileno(file.get()), &status) != 0) throw input_error(path, errno_text(errno));
  if (S_ISDIR(status.st_mode)) throw input_error(path, errno_text(EISDIR));

  std::vector<uint8_t> bytes;
  if (S_ISREG(status.st_mode) && static_cast<uint64_t>(status.st_size) <= limit) {
    bytes.reserve(static_cast<size_t>(status.st_size) + 1);
  }
  size_t used = 0;
  for (;;) {
    bytes.resize(std::max(used + 1, std::min(bytes.capacity(), used + kBlock)));
    const size_t got = std::fread(bytes.data() + used, 1, bytes.size() - used, file.get());
    used += got;
    if (used > limit) {
      throw input_error(path, "is longer than " + std::to_string(limit) + " bytes");
    }
    if (std::feof(file.get()) != 0 || std::ferror(file.get()) != 0) break;
  }
  if (std::ferror(file.get()) != 0) throw input_error(path, errno_text(errno));
  bytes.resize(used);
  return bytes;
}

std::string read_text_file(const std::string& path) {
  const std::vector<uint8_t> bytes = read_file(path, kTextLimit);
  return {bytes.begin(), bytes.end()};
}

bool is_same_file(const std::string& a, const std::string& b) {
  struct stat first{};
  struct stat second{};
  return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

}  // namespace tool
