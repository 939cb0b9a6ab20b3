#include "tests/support/log_capture.h"

#include <android/log.h>

#include <algorithm>
#include <mutex>

#include "tests/support/log_sink.h"

namespace {

std::mutex g_mutex;
std::vector<LogLine> g_lines;

void collect(int priority, const char* tag, const char* text) {
  const std::lock_guard<std::mutex> lock(g_mutex);
  g_lines.push_back({priority, tag != nullptr ? tag : "", text});
}

template <typename Predicate>
int count_lines(Predicate predicate) {
  const std::lock_guard<std::mutex> lock(g_mutex);
  return static_cast<int>(std::count_if(g_lines.begin(), g_lines.end(), predicate));
}

}  // namespace

LogCapture::LogCapture() {
  clear();
  __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
  set_log_sink<collect>();
}

LogCapture::~LogCapture() { __android_log_set_logger(__android_log_stderr_logger); }

std::vector<LogLine> LogCapture::lines() const {
  const std::lock_guard<std::mutex> lock(g_mutex);
  return g_lines;
}

std::vector<std::string> LogCapture::texts() const {
  std::vector<std::string> texts;
  for (const LogLine& line : lines()) texts.push_back(line.text);
  return texts;
}

void LogCapture::clear() {
  const std::lock_guard<std::mutex> lock(g_mutex);
  g_lines.clear();
}

int LogCapture::count(const std::string& text) const {
  return count_lines([&](const LogLine& line) { return line.text == text; });
}

int LogCapture::count_prefix(const std::string& text) const {
  return count_lines([&](const LogLine& line) { return line.text.rfind(text, 0) == 0; });
}

int LogCapture::count_containing(const std::string& text) const {
  return count_lines([&](const LogLine& line) { return line.text.find(text) != line.text.npos; });
}

int LogCapture::errors() const {
  return count_lines([](const LogLine& line) { return line.priority == ANDROID_LOG_ERROR; });
}
