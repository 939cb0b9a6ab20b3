#include "tools/tune/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/files/failure.h"

namespace tool {
namespace {

volatile sig_atomic_t stop_requested = 0;  // the signal
struct sigaction after_first_signal[2];

void note_signal(int signal) {
  stop_requested = signal;
  sigaction(SIGINT, &after_first_signal[0], nullptr);
  sigaction(SIGTERM, &after_first_signal[1], nullptr);
}

}  // namespace

Interruption::Interruption() {
  stop_requested = 0;
  sigaction(SIGINT, nullptr, &before_int_);
  sigaction(SIGTERM, nullptr, &before_term_);
  after_first_signal[0] = before_int_;
  after_first_signal[1] = before_term_;
  struct sigaction action{};
  action.sa_handler = note_signal;
  action.sa_flags = SA_RESTART;
  // What is ignored (nohup) stays ignored.
  if (before_int_.sa_handler != SIG_IGN) sigaction(SIGINT, &action, nullptr);
  if (before_term_.sa_handler != SIG_IGN) sigaction(SIGTERM, &action, nullptr);
}

Interruption::~Interruption() {
  sigaction(SIGINT, &before_int_, nullptr);
  sigaction(SIGTERM, &before_term_, nullptr);
}

bool Interruption::requested() { return stop_requested != 0; }

void Interruption::give_up() {
  constexpr char kReason[] = "interrupted before there was anything to keep";
  complain(kReason);
  raise(stop_requested);
  throw Failure(kFailed, kReason);  // only where the signal is held back
}

Progress::Progress(double work)
    : work_(work), shown_(isatty(STDERR_FILENO) != 0), start_(std::chrono::steady_clock::now()) {}

Progress::~Progress() {
  if (shown_) std::fputs("\r\033[K", stderr);
}

void Progress::done(const std::string& step, double units) {
  const std::lock_guard<std::mutex> lock(mutex_);
  done_ += units;
  if (!shown_) return;
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
  const double share = std::min(1.0, done_ / work_);
  const double left = elapsed.count() * (1.0 - share) / std::max(share, 1e-3);
  std::fprintf(stderr, "\r\033[K%s: %.0f %%, about %.0f s left", step.c_str(), 100.0 * share,
               std::ceil(left));
  std::fflush(stderr);
}

}  // namespace tool
