// The library's log lines on standard error.
#ifndef VOREL_TOOLS_LIBRARY_LIBRARY_LOG_H_
#define VOREL_TOOLS_LIBRARY_LIBRARY_LOG_H_

namespace tool {

enum class LogLevel { kError, kWarning, kInfo, kDebug };

// While an object lives, every log line of the process that is of `level` or more serious is
// written to standard error as "vorel: <text>", and none goes to the log. One object at a time;
// lines may come from any thread.
class LibraryLog {
 public:
  explicit LibraryLog(LogLevel level);
  ~LibraryLog();
  LibraryLog(const LibraryLog&) = delete;
  LibraryLog& operator=(const LibraryLog&) = delete;
};

}  // namespace tool

#endif  // VOREL_TOOLS_LIBRARY_LIBRARY_LOG_H_
