// The library's log lines, shown to the user and kept for the program.
#ifndef VOREL_TOOLS_LIBRARY_LIBRARY_LOG_H_
#define VOREL_TOOLS_LIBRARY_LIBRARY_LOG_H_

#include <optional>
#include <string>
#include <vector>

namespace tool {

enum class LogLevel { kError, kWarning, kInfo, kDebug };

struct LogRecord {
  int priority;
  std::string text;
};

// While an object lives, every log line of the process comes here instead of going to the log.
// Lines of `level` and more serious ones are written to standard error as "vorel: <text>", errors
// only by `show_errors`, unless every line is shown: who takes the lines knows whether an error
// ends the run, and then says so itself. One object at a time; lines may come from any thread.
class LibraryLog {
 public:
  explicit LibraryLog(LogLevel level);
  ~LibraryLog();
  LibraryLog(const LibraryLog&) = delete;
  LibraryLog& operator=(const LibraryLog&) = delete;

  // The lines since the last call.
  [[nodiscard]] std::vector<LogRecord> take();

  // Shows the errors among lines that were taken.
  void show_errors(const std::vector<LogRecord>& lines) const;
};

// The first error among the lines.
[[nodiscard]] std::optional<std::string> first_error(const std::vector<LogRecord>& lines);

// What follows `prefix` in the last line that starts with it.
[[nodiscard]] std::optional<std::string> text_after(const std::vector<LogRecord>& lines,
                                                    const std::string& prefix);

}  // namespace tool

#endif  // VOREL_TOOLS_LIBRARY_LIBRARY_LOG_H_
