#include "tools/library/library_log.h"

#include <android/log.h>

#include <string>

#include "tools/files/failure.h"

namespace tool {
namespace {

int priority_of(LogLevel level) {
  switch (level) {
    case LogLevel::kError:
      return ANDROID_LOG_ERROR;
    case LogLevel::kWarning:
      return ANDROID_LOG_WARN;
    case LogLevel::kInfo:
      return ANDROID_LOG_INFO;
    case LogLevel::kDebug:
      break;
  }
  return ANDROID_LOG_VERBOSE;
}

void show(const __android_logger_data*, const char* message) {
  std::string text = message;
  while (!text.empty() && text.back() == '\n') text.pop_back();
  complain(text);
}

}  // namespace

LibraryLog::LibraryLog(LogLevel level) {
  __android_log_set_minimum_priority(priority_of(level));
  __android_log_set_logger(show);
}

LibraryLog::~LibraryLog() { __android_log_set_logger(__android_log_stderr_logger); }

}  // namespace tool
