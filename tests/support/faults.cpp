#include "tests/support/faults.h"

#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

namespace {

std::atomic<bool> g_active{false};
std::atomic<FaultScope::Kind> g_kind{FaultScope::Kind::kAllocation};
std::atomic<int> g_nth{0};
std::atomic<int> g_calls{0};
std::atomic<void* (*)(void*)> g_thread_function{nullptr};

bool must_fail(FaultScope::Kind kind) {
  if (!g_active || g_kind != kind) return false;
  return ++g_calls == g_nth;
}

}  // namespace

FaultScope::FaultScope(Kind kind, int nth, void* (*thread_function)(void*)) : nth_(nth) {
  g_kind = kind;
  g_thread_function = thread_function;
  g_nth = nth;
  g_calls = 0;
  g_active = true;
}

FaultScope::~FaultScope() { g_active = false; }

int FaultScope::calls() const { return g_calls; }

bool FaultScope::fired() const { return nth_ > 0 && g_calls >= nth_; }

// The linker sends the objects' calls here (--wrap).
extern "C" {
void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t bytes);
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*function)(void*), void* argument);

void* __wrap_malloc(size_t bytes) {
  return must_fail(FaultScope::Kind::kAllocation) ? nullptr : __real_malloc(bytes);
}

void* __wrap_calloc(size_t count, size_t bytes) {
  return must_fail(FaultScope::Kind::kAllocation) ? nullptr : __real_calloc(count, bytes);
}

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*function)(void*), void* argument) {
  const auto only = g_thread_function.load();
  const bool meant = only == nullptr || only == function;
  if (meant && must_fail(FaultScope::Kind::kThreadCreate)) return EAGAIN;
  return __real_pthread_create(thread, attributes, function, argument);
}

// operator new(size_t, std::nothrow), single objects and arrays. Wrapped like the rest, because the
// thread sanitizer defines the operators itself.
void* __real__ZnwmRKSt9nothrow_t(size_t bytes, const std::nothrow_t& tag);
void* __real__ZnamRKSt9nothrow_t(size_t bytes, const std::nothrow_t& tag);

void* __wrap__ZnwmRKSt9nothrow_t(size_t bytes, const std::nothrow_t& tag) {
  return must_fail(FaultScope::Kind::kAllocation) ? nullptr
                                                  : __real__ZnwmRKSt9nothrow_t(bytes, tag);
}

void* __wrap__ZnamRKSt9nothrow_t(size_t bytes, const std::nothrow_t& tag) {
  return must_fail(FaultScope::Kind::kAllocation) ? nullptr
                                                  : __real__ZnamRKSt9nothrow_t(bytes, tag);
}
}
