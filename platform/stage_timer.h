// Timing lines of debug level 1.
#ifndef VOREL_PLATFORM_STAGE_TIMER_H_
#define VOREL_PLATFORM_STAGE_TIMER_H_

#include <cstdint>

#include "platform/log.h"
#include "vorel/debug.h"

// Runs from construction when the debug level is exactly 1; otherwise does nothing.
class StageTimer {
 public:
  explicit StageTimer(int32_t debug_level) : enabled_(debug_level == 1) { restart(); }

  void restart() {
    if (enabled_) set_current_time(&start_);
  }

  // Logs "<name>: elapsed time <microseconds>".
  void log(const char* name) const {
    if (!enabled_) return;
    VOREL_LOGI("%s: elapsed time %lld", name,
               static_cast<long long>(get_elapsed_time_usec(&start_)));
  }

 private:
  bool enabled_;
  timeval start_{};
};

#endif  // VOREL_PLATFORM_STAGE_TIMER_H_
