#include "tools/files/file_bytes.h"

#include <sys/stat.h>

#include "tools/files/input_file.h"

namespace tool {
namespace {

constexpr size_t kTextLimit = size_t{64} << 20;

}  // namespace

std::vector<uint8_t> read_file(const std::string& path, size_t limit) {
  return InputFile(path).read_all(limit);
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
