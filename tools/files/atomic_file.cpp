#include "tools/files/atomic_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "tools/files/failure.h"
#include "tools/files/input_file.h"

namespace tool {
namespace {

constexpr mode_t kNewFileMode = 0666;  // less the umask
constexpr int kNameAttempts = 100;

Failure cannot_write(const std::string& path, int error) {
  return output_error(path, "cannot be written: " + errno_text(error));
}

// The file behind a symbolic link, so that the link stays one.
std::string resolve(const std::string& path) {
  char* real = realpath(path.c_str(), nullptr);
  if (real == nullptr) return path;
  std::string resolved = real;
  free(real);
  return resolved;
}

std::string directory_of(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

}  // namespace

AtomicFile::AtomicFile(const std::string& path) : path_(path) {
  if (path == kStandardStream) {
    open_standard_output();
    return;
  }
  target_ = resolve(path);
  struct stat existing{};
  const bool exists = stat(target_.c_str(), &existing) == 0;
  if (!exists && errno != ENOENT) throw cannot_write(path_, errno);
  if (exists && S_ISDIR(existing.st_mode)) throw cannot_write(path_, EISDIR);
  if (exists && access(target_.c_str(), W_OK) != 0) throw cannot_write(path_, errno);
  if (exists && !S_ISREG(existing.st_mode)) {
    descriptor_ = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor_ < 0) throw cannot_write(path_, errno);
    return;
  }
  open_beside();
  // A file that is replaced keeps its permissions.
  if (exists) static_cast<void>(fchmod(descriptor_, existing.st_mode & 07777));
}

AtomicFile::~AtomicFile() {
  if (descriptor_ >= 0) close(descriptor_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

void AtomicFile::open_standard_output() {
  path_ = "standard output";
  if (isatty(STDOUT_FILENO) != 0) {
    throw usage_error("standard output is a terminal; send the picture to a file or a pipe");
  }
  descriptor_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
  if (descriptor_ < 0) throw cannot_write(path_, errno);
}

void AtomicFile::open_beside() {
  for (int i = 0; i < kNameAttempts; ++i) {
    const std::string name = directory_of(target_) + ".vorel-" + std::to_string(getpid()) + "-" +
                             std::to_string(i) + ".tmp";
    if (access(name.c_str(), F_OK) == 0) continue;
    doomed_ = std::make_unique<DoomedPath>(name);
    descriptor_ = doomed_->create(kNewFileMode);
    if (descriptor_ >= 0) {
      temporary_ = name;
      return;
    }
    const int error = errno;
    doomed_.reset();
    if (error != EEXIST) throw cannot_write(path_, error);
  }
  throw cannot_write(path_, EEXIST);
}

void AtomicFile::write(std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      throw cannot_write(path_, errno);
    }
    bytes = bytes.subspan(static_cast<size_t>(written));
  }
}

void AtomicFile::write(const std::string& text) {
  write(std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
}

void AtomicFile::close_checked() {
  // Pipes and some devices cannot be synchronised; that is no failure.
  if (fsync(descriptor_) != 0 && errno != EINVAL && errno != EROFS && errno != ENOTSUP) {
    throw cannot_write(path_, errno);
  }
  const int result = close(descriptor_);
  descriptor_ = -1;
  if (result != 0) throw cannot_write(path_, errno);
}

void AtomicFile::commit() {
  close_checked();
  if (temporary_.empty()) return;
  if (rename(temporary_.c_str(), target_.c_str()) != 0) {
    const int error = errno;
    wait_while_ending();
    throw cannot_write(path_, error);
  }
  temporary_.clear();
  doomed_.reset();
}

void write_file(const std::string& path, std::span<const uint8_t> bytes) {
  AtomicFile file(path);
  file.write(bytes);
  file.commit();
}

}  // namespace tool
