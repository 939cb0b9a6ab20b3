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
std::atomic<bool> g_from_there{false};
std::atomic<int> g_live_blocks{0};
std::atomic<void* (*)(void*)> g_thread_function{nullptr};

void* counted(void* block) {
  if (block != nullptr) ++g_live_blocks;
  return block;
}

bool is_allocation_due() { return FaultScope::is_due(FaultScope::Kind::kAllocation); }

}  // namespace

FaultScope::FaultScope(Kind kind, int nth, void* (*thread_function)(void*), Span span) : nth_(nth) {
  g_from_there = span == Span::kFromThere;
  g_kind = kind;
  g_thread_function = thread_function;
  g_nth = nth;
  g_calls = 0;
  g_active = true;
}

FaultScope::~FaultScope() { g_active = false; }

bool FaultScope::is_due(Kind kind) {
  if (!g_active || g_kind != kind) return false;
  const int call = ++g_calls;
  return g_from_there && g_nth > 0 ? call >= g_nth : call == g_nth;
}

int FaultScope::live_blocks() { return g_live_blocks; }

int FaultScope::calls() const { return g_calls; }

bool FaultScope::fired() const { return nth_ > 0 && g_calls >= nth_; }

// The linker sends the objects' calls here (--wrap).
extern "C" {
void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t bytes);
void __real_free(void* block);
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*function)(void*), void* argument);

void* __wrap_malloc(size_t bytes) {
  return is_allocation_due() ? nullptr : counted(__real_malloc(bytes));
}

void* __wrap_calloc(size_t count, size_t bytes) {
  return is_allocation_due() ? nullptr : counted(__real_calloc(count, bytes));
}

void __wrap_free(void* block) {
  if (block != nullptr) --g_live_blocks;
  __real_free(block);
}

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*function)(void*), void* argument) {
  const auto only = g_thread_function.load();
  const bool meant = only == nullptr || only == function;
  if (meant && FaultScope::is_due(FaultScope::Kind::kThreadCreate)) return EAGAIN;
  return __real_pthread_create(thread, attributes, function, argument);
}

// operator new(size_t, std::nothrow), single objects and arrays, and the delete of an object of
// known size. Wrapped like the rest, because the thread sanitizer defines the operators itself.
void* __real__ZnwmRKSt9nothrow_t(size_t bytes, const std::nothrow_t& tag);
void* __real__ZnamRKSt9nothrow_t(size_t bytes, const std::nothrow_t& tag);
void __real__ZdlPvm(void* block, size_t bytes);

void* __wrap__ZnwmRKSt9nothrow_t(size_t bytes, const std::nothrow_t& tag) {
  return is_allocation_due() ? nullptr : counted(__real__ZnwmRKSt9nothrow_t(bytes, tag));
}

void* __wrap__ZnamRKSt9nothrow_t(size_t bytes, const std::nothrow_t& tag) {
  return is_allocation_due() ? nullptr : counted(__real__ZnamRKSt9nothrow_t(bytes, tag));
}

void __wrap__ZdlPvm(void* block, size_t bytes) {
  if (block != nullptr) --g_live_blocks;
  __real__ZdlPvm(block, bytes);
}
}
