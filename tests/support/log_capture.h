// Collects what the library logs.
#ifndef VOREL_TESTS_SUPPORT_LOG_CAPTURE_H_
#define VOREL_TESTS_SUPPORT_LOG_CAPTURE_H_

#include <string>
#include <vector>

struct LogLine {
  int priority;
  std::string tag;
  std::string text;
};

// While an object lives, every log line of the process goes to it instead of to the log.
// One at a time.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<LogLine> lines() const;
  std::vector<std::string> texts() const;
  void clear();

  // Number of lines whose text is, starts with or contains `text`.
  int count(const std::string& text) const;
  int count_prefix(const std::string& text) const;
  int count_containing(const std::string& text) const;
  // Number of error lines.
  int errors() const;
};

#endif  // VOREL_TESTS_SUPPORT_LOG_CAPTURE_H_
