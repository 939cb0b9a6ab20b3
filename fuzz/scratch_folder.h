// A folder in memory that goes when its owner does.
#ifndef VOREL_FUZZ_SCRATCH_FOLDER_H_
#define VOREL_FUZZ_SCRATCH_FOLDER_H_

#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

class ScratchFolder {
 public:
  ScratchFolder() {
    if (mkdtemp(path_) == nullptr) std::abort();
  }
  ~ScratchFolder() {
    clear();
    rmdir(path_);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const char* path() const { return path_; }

  // Returns the file's path.
  std::string write(const std::string& name, const void* data, size_t size) const {
    std::string path = std::string(path_) + "/" + name;
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0 || ::write(file, data, size) != static_cast<ssize_t>(size)) std::abort();
    close(file);
    return path;
  }

  struct Contents {
    int files = 0;
    size_t bytes = 0;
  };

  // Removes what is in it.
  Contents clear() const {
    contents() = {};
    nftw(path_, remove_entry, kDescriptors, FTW_DEPTH | FTW_PHYS);
    return contents();
  }

 private:
  static constexpr int kDescriptors = 8;

  static Contents& contents() {
    static Contents removed;
    return removed;
  }
  static int remove_entry(const char* path, const struct stat* found, int, FTW* place) {
    if (place->level == 0) return 0;
    if (S_ISREG(found->st_mode)) {
      ++contents().files;
      contents().bytes += static_cast<size_t>(found->st_size);
    }
    return remove(path);
  }

#if defined(__ANDROID__)
  char path_[40] = "/data/local/tmp/vorel_fuzz_XXXXXX";
#else
  char path_[40] = "/dev/shm/vorel_fuzz_XXXXXX";
#endif
};

#endif  // VOREL_FUZZ_SCRATCH_FOLDER_H_
