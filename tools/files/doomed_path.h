// Files that must not outlive the program.
#ifndef VOREL_TOOLS_FILES_DOOMED_PATH_H_
#define VOREL_TOOLS_FILES_DOOMED_PATH_H_

#include <sys/types.h>

#include <string>

namespace tool {

// Arranges that SIGINT, SIGTERM, SIGHUP, SIGQUIT and SIGPIPE remove every doomed path before they
// end the program.
// A signal that is ignored at the start (nohup) stays ignored. A write past a file size limit
// becomes an error like any other instead of a signal. Call once, before threads exist.
void install_signal_handlers();

// Does not return once such a signal is removing files: what fails for want of them needs no words.
void wait_while_ending();

// While an object lives, a signal removes `path`. The destructor only forgets the path; its owner
// removes it.
class DoomedPath {
 public:
  explicit DoomedPath(const std::string& path);
  ~DoomedPath();
  DoomedPath(const DoomedPath&) = delete;
  DoomedPath& operator=(const DoomedPath&) = delete;

  // Creates the file for writing, or returns -1 with errno; EEXIST when there is one, which is
  // then not doomed. A signal waits until the file exists, and no file is created after one.
  int create(mode_t mode);

 private:
  int slot_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_FILES_DOOMED_PATH_H_
