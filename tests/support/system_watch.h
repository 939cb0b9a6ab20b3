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

// Whether a line comes from workers that start, which they do beside the frame: it has no place in
// an order of lines, and does not move the clock.
bool is_from_start(const LogLine& line);

#endif  // VOREL_TESTS_SUPPORT_SYSTEM_WATCH_H_
