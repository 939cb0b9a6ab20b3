#include "harden/guarded_allocations.h"

#include <atomic>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>

namespace {

std::atomic<bool> g_active{false};
std::atomic<GuardedBytes::Guard> g_guard{GuardedBytes::Guard::kEnd};
std::mutex g_mutex;
std::map<void*, std::unique_ptr<GuardedBytes>> g_blocks;  // under g_mutex

// Zeroed, as new pages are.
void* guarded(size_t bytes) {
  auto block = std::make_unique<GuardedBytes>(bytes > 0 ? bytes : 1, g_guard.load());
  const std::lock_guard<std::mutex> lock(g_mutex);
  void* data = block->data();
  g_blocks[data] = std::move(block);
  return data;
}

}  // namespace

GuardedAllocations::GuardedAllocations(GuardedBytes::Guard guard) {
  g_guard = guard;
  g_active = true;
}

GuardedAllocations::~GuardedAllocations() { g_active = false; }

// The linker sends the objects' calls here (--wrap).
extern "C" {
void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t bytes);
void __real_free(void* block);

void* __wrap_malloc(size_t bytes) { return g_active ? guarded(bytes) : __real_malloc(bytes); }

void* __wrap_calloc(size_t count, size_t bytes) {
  return g_active ? guarded(count * bytes) : __real_calloc(count, bytes);
}

void __wrap_free(void* block) {
  {
    const std::lock_guard<std::mutex> lock(g_mutex);
    if (g_blocks.erase(block) > 0) return;
  }
  __real_free(block);
}
}
