// Slices and counters for time lines: the system's tracing on Android, a sink everywhere.
#ifndef VOREL_PLATFORM_TRACE_H_
#define VOREL_PLATFORM_TRACE_H_

#include <atomic>
#include <cstdint>

#include "vorel/trace.h"

extern std::atomic<vorel_trace_sink> g_trace_sink;

#if defined(__ANDROID__)
// Whether the category "camera" is being recorded.
[[nodiscard]] bool system_trace_is_on();
#else
[[nodiscard]] inline bool system_trace_is_on() { return false; }
#endif

[[nodiscard]] inline bool trace_is_on() {
  return g_trace_sink.load(std::memory_order_relaxed) != nullptr || system_trace_is_on();
}

// `name` must be a literal.
void emit_trace(int32_t kind, const char* name, int64_t value);

// Lasts as long as the object. `name` must be a literal.
class TraceSlice {
 public:
  explicit TraceSlice(const char* name) : on_(trace_is_on()) {
    if (on_) emit_trace(VOREL_TRACE_BEGIN, name, 0);
  }
  ~TraceSlice() {
    if (on_) emit_trace(VOREL_TRACE_END, nullptr, 0);
  }
  TraceSlice(const TraceSlice&) = delete;
  TraceSlice& operator=(const TraceSlice&) = delete;

 private:
  const bool on_;
};

inline void trace_counter(const char* name, int64_t value) {
  if (trace_is_on()) emit_trace(VOREL_TRACE_COUNTER, name, value);
}

#endif  // VOREL_PLATFORM_TRACE_H_
