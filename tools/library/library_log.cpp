#include "tools/library/library_log.h"

#include <android/log.h>

#include <cstdio>
#include <mutex>
#include <string_view>

namespace tool {
namespace {

std::mutex g_mutex;
std::vector<LogRecord> g_lines;
int g_shown_from = ANDROID_LOG_WARN;

bool every_line_is_shown() { return g_shown_from < ANDROID_LOG_WARN; }

// The command warns of an unknown sensor itself and says more.
constexpr std::string_view kNotShown = "Not supported sensor type";

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

void show(const std::string& text) { std::fprintf(stderr, "vorel: %s\n", text.c_str()); }

void receive(const __android_logger_data* data, const char* message) {
  std::string text = message;
  while (!text.empty() && text.back() == '\n') text.pop_back();
  const std::lock_guard<std::mutex> lock(g_mutex);
  const bool is_error = data->priority >= ANDROID_LOG_ERROR;
  if (data->priority >= g_shown_from && (!is_error || every_line_is_shown())) show(text);
  g_lines.push_back({data->priority, std::move(text)});
}

}  // namespace

LibraryLog::LibraryLog(LogLevel level) {
  g_shown_from = priority_of(level);
  g_lines.clear();
  // Everything arrives: the command reads some lines that it does not show.
  __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
  __android_log_set_logger(receive);
}

LibraryLog::~LibraryLog() { __android_log_set_logger(__android_log_stderr_logger); }

std::vector<LogRecord> LibraryLog::take() {
  const std::lock_guard<std::mutex> lock(g_mutex);
  std::vector<LogRecord> lines;
  lines.swap(g_lines);
  return lines;
}

void LibraryLog::show_errors(const std::vector<LogRecord>& lines) const {
  if (every_line_is_shown()) return;
  for (const LogRecord& line : lines) {
    if (line.priority >= ANDROID_LOG_ERROR && !line.text.starts_with(kNotShown)) show(line.text);
  }
}

std::optional<std::string> first_error(const std::vector<LogRecord>& lines) {
  for (const LogRecord& line : lines) {
    if (line.priority >= ANDROID_LOG_ERROR) return line.text;
  }
  return std::nullopt;
}

std::optional<std::string> text_after(const std::vector<LogRecord>& lines,
                                      const std::string& prefix) {
  std::optional<std::string> found;
  for (const LogRecord& line : lines) {
    if (line.text.starts_with(prefix)) found = line.text.substr(prefix.size());
  }
  return found;
}

}  // namespace tool
