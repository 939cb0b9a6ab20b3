#include "tools/files/temporary_directory.h"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "tools/files/failure.h"

namespace tool {

TemporaryDirectory::TemporaryDirectory() {
  const char* base = getenv("TMPDIR");
  path_ = std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/vorel-XXXXXX";
  if (mkdtemp(path_.data()) == nullptr) {
    throw output_error(path_, "no temporary directory: " + errno_text(errno));
  }
  doomed_ = std::make_unique<DoomedPath>(path_, DoomedPath::Kind::kDirectory);
}

TemporaryDirectory::~TemporaryDirectory() {
  for (const File& file : files_) unlink(file.path.c_str());
  rmdir(path_.c_str());
}

void TemporaryDirectory::add(const std::string& name, const std::string& content) {
  const std::string path = path_ + "/" + name;
  files_.push_back({path, std::make_unique<DoomedPath>(path, DoomedPath::Kind::kFile)});
  FILE* file = std::fopen(path.c_str(), "wbe");
  bool written = file != nullptr;
  int error = errno;
  if (file != nullptr) {
    written = std::fwrite(content.data(), 1, content.size(), file) == content.size();
    if (!written) error = errno;
    if (std::fclose(file) != 0 && written) {
      written = false;
      error = errno;
    }
  }
  if (!written) throw output_error(path, "cannot be written: " + errno_text(error));
}

}  // namespace tool
