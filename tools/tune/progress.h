// What a long run tells while it works, and how it is stopped.
#ifndef VOREL_TOOLS_TUNE_PROGRESS_H_
#define VOREL_TOOLS_TUNE_PROGRESS_H_

#include <signal.h>

#include <chrono>
#include <mutex>
#include <string>

namespace tool {

// While an object lives, the first SIGINT or SIGTERM only sets a flag that the work looks at; the
// second does what it did before. One object at a time.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  [[nodiscard]] static bool requested();
  // Says that there is nothing to keep, and ends the program as the signal would have.
  [[noreturn]] static void give_up();

 private:
  struct sigaction before_int_;
  struct sigaction before_term_;
};

// One line on the terminal: the step, its share, the time that is left. Steps may be reported from
// several threads. Nothing is shown when standard error goes elsewhere.
class Progress {
 public:
  // `work` counts the units of the whole run.
  explicit Progress(double work);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void done(const std::string& step, double units);

 private:
  std::mutex mutex_;
  double work_;
  double done_ = 0.0;
  bool shown_;
  std::chrono::steady_clock::time_point start_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_PROGRESS_H_
