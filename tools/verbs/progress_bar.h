// A line on the terminal that shows how far the work is.
#ifndef VOREL_TOOLS_VERBS_PROGRESS_BAR_H_
#define VOREL_TOOLS_VERBS_PROGRESS_BAR_H_

#include <chrono>
#include <mutex>
#include <optional>
#include <string>

namespace tool {

// "37 of 60", "37" without a total, with a bar and the time that is left once it can be told.
[[nodiscard]] std::string progress_text(const char* unit, int done, std::optional<int> total,
                                        double seconds);

// Shown on standard error when that is a terminal, else nowhere. Any thread may call.
class ProgressBar {
 public:
  // `unit` is what is counted: "frame", "picture".
  ProgressBar(const char* unit, std::optional<int> total);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void advance();
  // Takes the line away while something else is printed; the next `advance` brings it back.
  void clear();
  [[nodiscard]] bool is_shown() const { return shown_; }

 private:
  const char* unit_;
  std::optional<int> total_;
  bool shown_;
  std::mutex mutex_;
  int done_ = 0;
  std::chrono::steady_clock::time_point start_;
  std::chrono::steady_clock::time_point last_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_PROGRESS_BAR_H_
