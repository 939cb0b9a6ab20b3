// Exit statuses of the command and the exception that carries one to main.
#ifndef VOREL_TOOLS_FILES_FAILURE_H_
#define VOREL_TOOLS_FILES_FAILURE_H_

#include <stdexcept>
#include <string>

namespace tool {

enum ExitStatus {
  kDone = 0,
  kBadUsage = 1,  // options that make no sense
  kBadInput = 2,  // a file that cannot be read or does not hold what it should
  kFailed = 3,    // the library refused a frame, or a result could not be written
};

// What ended the run. The text is shown after "vorel: " and names the file it is about.
class Failure : public std::runtime_error {
 public:
  Failure(ExitStatus status, const std::string& text) : std::runtime_error(text), status_(status) {}
  [[nodiscard]] ExitStatus status() const { return status_; }

 private:
  ExitStatus status_;
};

[[nodiscard]] inline Failure usage_error(const std::string& text) { return {kBadUsage, text}; }

[[nodiscard]] inline Failure input_error(const std::string& path, const std::string& reason) {
  return {kBadInput, path + ": " + reason};
}

[[nodiscard]] inline Failure output_error(const std::string& path, const std::string& reason) {
  return {kFailed, path + ": " + reason};
}

// Text of an errno value.
[[nodiscard]] std::string errno_text(int error);

// One line on standard error: "vorel: <text>" and "vorel: warning: <text>". Control characters in
// names are shown, not obeyed.
void complain(const std::string& text);
void warn(const std::string& text);

}  // namespace tool

#endif  // VOREL_TOOLS_FILES_FAILURE_H_
