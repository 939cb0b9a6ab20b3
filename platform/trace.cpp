#include "platform/trace.h"

#if defined(__ANDROID__)
#define ATRACE_TAG ATRACE_TAG_CAMERA
#include <cutils/trace.h>
#endif

std::atomic<vorel_trace_sink> g_trace_sink{nullptr};

namespace {

std::atomic<void*> g_user{nullptr};

#if defined(__ANDROID__)
void emit_to_system(int32_t kind, const char* name, int64_t value) {
  switch (kind) {
    case VOREL_TRACE_BEGIN:
      ATRACE_BEGIN(name);
      break;
    case VOREL_TRACE_END:
      ATRACE_END();
      break;
    default:
      ATRACE_INT64(name, value);
      break;
  }
}
#else
void emit_to_system(int32_t, const char*, int64_t) {}
#endif

}  // namespace

#if defined(__ANDROID__)
bool system_trace_is_on() { return ATRACE_ENABLED() != 0; }
#endif

void emit_trace(int32_t kind, const char* name, int64_t value) {
  emit_to_system(kind, name, value);
  const vorel_trace_sink sink = g_trace_sink.load(std::memory_order_acquire);
  if (sink != nullptr) sink(g_user.load(std::memory_order_relaxed), kind, name, value);
}

void vorel_set_trace_sink(vorel_trace_sink sink, void* user) {
  g_user.store(user, std::memory_order_relaxed);
  g_trace_sink.store(sink, std::memory_order_release);
}
