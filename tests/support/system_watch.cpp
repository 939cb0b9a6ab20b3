#include "tests/support/system_watch.h"

#include <android/log.h>
#include <sys/time.h>

#include <algorithm>
#include <atomic>
#include <cstdint>

#include "tests/support/faults.h"

namespace {

constexpr int64_t kStepUsec = 1234;

std::atomic<const LogCapture*> g_log{nullptr};
std::atomic<bool> g_ticks{false};
std::atomic<int64_t> g_looks{0};

// Nothing is allocated for it when nobody watches.
void show(const char* what, const char* value) {
  if (g_log.load() == nullptr) return;
  __android_log_print(ANDROID_LOG_DEBUG, "SYSTEM", "%s %s", what, value);
}

void show(const char* what, int value) {
  if (g_log.load() == nullptr) return;
  __android_log_print(ANDROID_LOG_DEBUG, "SYSTEM", "%s %d", what, value);
}

}  // namespace

SystemWatch::SystemWatch(const LogCapture* log) { g_log = log; }

SystemWatch::~SystemWatch() { g_log = nullptr; }

TickingClock::TickingClock() { g_ticks = true; }

TickingClock::~TickingClock() { g_ticks = false; }

bool is_from_start(const LogLine& line) {
  return line.text.rfind("ThreadPool::init", 0) == 0 || line.text.rfind("worker ", 0) == 0;
}

// The linker sends the library's calls here (--wrap).
extern "C" {
int __real_gettimeofday(timeval* time, void* zone);
void __real__Z15set_thread_namePKc(const char* name);
int __real__Z19set_thread_affinityj(uint32_t mask);
void __real__Z15set_thread_nicei(int nice_value);

int __wrap_gettimeofday(timeval* time, void* zone) {
  if (FaultScope::is_due(FaultScope::Kind::kClock)) return -1;
  const LogCapture* log = g_log.load();
  int64_t usec = 0;
  if (g_ticks) {
    usec = ++g_looks;
  } else if (log != nullptr) {
    const std::vector<LogLine> lines = log->lines();
    usec = kStepUsec * std::count_if(lines.begin(), lines.end(),
                                     [](const LogLine& line) { return !is_from_start(line); });
  } else {
    return __real_gettimeofday(time, zone);
  }
  time->tv_sec = usec / 1000000;
  time->tv_usec = usec % 1000000;
  return 0;
}

void __wrap__Z15set_thread_namePKc(const char* name) {
  show("worker name", name);
  __real__Z15set_thread_namePKc(name);
}

int __wrap__Z19set_thread_affinityj(uint32_t mask) {
  show("worker processors", static_cast<int>(mask));
  return __real__Z19set_thread_affinityj(mask);
}

void __wrap__Z15set_thread_nicei(int nice_value) {
  show("driver nice", nice_value);
  __real__Z15set_thread_nicei(nice_value);
}
}
