// Other work for the processors while frames are timed.
#ifndef VOREL_BENCH_BUSY_LOOPS_H_
#define VOREL_BENCH_BUSY_LOOPS_H_

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <vector>

// Processes that do nothing but run; they end with the object, and with this process.
class BusyLoops {
 public:
  explicit BusyLoops(unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
      const pid_t child = fork();
      if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (volatile unsigned turns = 0;;) turns = turns + 1;
      }
      if (child > 0) children_.push_back(child);
    }
  }
  ~BusyLoops() {
    for (const pid_t child : children_) {
      kill(child, SIGKILL);
      waitpid(child, nullptr, 0);
    }
  }
  BusyLoops(const BusyLoops&) = delete;
  BusyLoops& operator=(const BusyLoops&) = delete;

 private:
  std::vector<pid_t> children_;
};

#endif  // VOREL_BENCH_BUSY_LOOPS_H_
