// A private directory for the run of the program.
#ifndef VOREL_TOOLS_FILES_TEMPORARY_DIRECTORY_H_
#define VOREL_TOOLS_FILES_TEMPORARY_DIRECTORY_H_

#include <memory>
#include <string>
#include <vector>

#include "tools/files/doomed_path.h"

namespace tool {

// A directory that only this user may enter, below TMPDIR or /tmp; it goes, with the files that
// `add` put into it, when the object does or a signal ends the program.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }
  void add(const std::string& name, const std::string& content);

 private:
  struct File {
    std::string path;
    std::unique_ptr<DoomedPath> doomed;
  };
  std::string path_;
  std::unique_ptr<DoomedPath> doomed_;
  std::vector<File> files_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_FILES_TEMPORARY_DIRECTORY_H_
