#include <ctime>

#include "vorel/debug.h"

void set_current_time(timeval* t) { gettimeofday(t, nullptr); }

int64_t get_elapsed_time_usec(const timeval* t) {
  timeval now;
  gettimeofday(&now, nullptr);
  return (static_cast<int64_t>(now.tv_sec) - t->tv_sec) * 1000000 +
         (static_cast<int64_t>(now.tv_usec) - t->tv_usec);
}

int64_t get_elapsed_time_msec(const timeval* t) { return get_elapsed_time_usec(t) / 1000; }
