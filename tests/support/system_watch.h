// What the library asks of the system, made visible and the same in every run.
#ifndef VOREL_TESTS_SUPPORT_SYSTEM_WATCH_H_
#define VOREL_TESTS_SUPPORT_SYSTEM_WATCH_H_

#include "tests/support/log_capture.h"

// While an object lives, the clock goes on by 1234 microseconds with every line of `log`, and the
// name, processors and nice value that a thread takes are lines of their own. One at a time. Test
// programs that use it link `test_faults`.
class SystemWatch {
 public:
  explicit SystemWatch(const LogCapture* log);
  ~SystemWatch();
  SystemWatch(const SystemWatch&) = delete;
  SystemWatch& operator=(const SystemWatch&) = delete;
};

// While an object lives, every look at the clock finds it a microsecond later: what is timed counts
// the times that it ran. One at a time, without a SystemWatch.
class TickingClock {
 public:
  TickingClock();
  ~TickingClock();
  TickingClock(const TickingClock&) = delete;
  TickingClock& operator=(const TickingClock&) = delete;
};

// Whether a line comes from workers that start, which they do beside the frame: it has no place in
// an order of lines, and does not move the clock.
bool is_from_start(const LogLine& line);

#endif  // VOREL_TESTS_SUPPORT_SYSTEM_WATCH_H_
