// Output files that appear only when they are complete.
#ifndef VOREL_TOOLS_FILES_ATOMIC_FILE_H_
#define VOREL_TOOLS_FILES_ATOMIC_FILE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "tools/files/doomed_path.h"

namespace tool {

// Writes to a hidden file beside `path` and gives it that name in `commit`, after its bytes are on
// the disk. Without `commit`, or after a signal, nothing is left behind and an older file of that
// name is untouched. Devices, pipes and
// standard output ("-") are written directly. Every failure throws, naming `path`.
class AtomicFile {
 public:
  explicit AtomicFile(const std::string& path);
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  void write(std::span<const uint8_t> bytes);
  void write(const std::string& text);
  void commit();

 private:
  void open_standard_output();
  void open_beside();
  void close_checked();

  std::string path_;       // as given, for messages
  std::string target_;     // symbolic links resolved
  std::string temporary_;  // empty when the target is written directly
  std::unique_ptr<DoomedPath> doomed_;
  int descriptor_ = -1;
};

// `AtomicFile` in one call.
void write_file(const std::string& path, std::span<const uint8_t> bytes);

}  // namespace tool

#endif  // VOREL_TOOLS_FILES_ATOMIC_FILE_H_
