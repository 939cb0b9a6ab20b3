#include "tools/verbs/progress_bar.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace tool {
namespace {

constexpr int kBarWidth = 24;
constexpr std::chrono::milliseconds kLeastWait{100};  // between two lines
constexpr double kLeastSeconds = 1.0;                 // before the time left is told

std::string time_text(double seconds) {
  const int whole = static_cast<int>(seconds + 0.5);
  char text[32];
  if (whole >= 3600) {
    std::snprintf(text, sizeof(text), "%d:%02d:%02d", whole / 3600, whole / 60 % 60, whole % 60);
  } else {
    std::snprintf(text, sizeof(text), "%d:%02d", whole / 60, whole % 60);
  }
  return text;
}

}  // namespace

std::string progress_text(const char* unit, int done, std::optional<int> total, double seconds) {
  std::string count = std::string(unit) + " " + std::to_string(done);
  if (!total || *total < 1) return count;
  const int known = std::min(done, *total);  // a file may hold more frames than its length tells
  const auto filled = static_cast<size_t>(int64_t{kBarWidth} * known / *total);
  std::string text = "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "] " +
                     count + " of " + std::to_string(*total);
  if (known > 0 && seconds >= kLeastSeconds) {
    text += ", " + time_text(seconds / known * (*total - known)) + " left";
  }
  return text;
}

ProgressBar::ProgressBar(const char* unit, std::optional<int> total)
    : unit_(unit),
      total_(total),
      shown_(isatty(STDERR_FILENO) != 0 && total != 1),
      start_(std::chrono::steady_clock::now()),
      last_(start_ - kLeastWait) {}

ProgressBar::~ProgressBar() { clear(); }

void ProgressBar::advance() {
  const std::lock_guard<std::mutex> lock(mutex_);
  ++done_;
  const auto now = std::chrono::steady_clock::now();
  if (!shown_ || now - last_ < kLeastWait) return;
  last_ = now;
  const std::chrono::duration<double> elapsed = now - start_;
  std::fprintf(stderr, "\r\033[K%s", progress_text(unit_, done_, total_, elapsed.count()).c_str());
  std::fflush(stderr);
}

void ProgressBar::clear() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!shown_) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  last_ -= kLeastWait;
}

}  // namespace tool
