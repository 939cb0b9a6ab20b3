#include "bench/pair/frame_cost.h"

#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>

namespace {

std::atomic<long> g_allocations{0};

double milliseconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

}  // namespace

// The program's own malloc and calloc come before the C library's, for loaded libraries too.
extern "C" {
void* __libc_malloc(size_t bytes);
void* __libc_calloc(size_t count, size_t bytes);

__attribute__((visibility("default"))) void* malloc(size_t bytes) {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  return __libc_malloc(bytes);
}

__attribute__((visibility("default"))) void* calloc(size_t count, size_t bytes) {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  return __libc_calloc(count, bytes);
}
}

FrameCost cost_until_now() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const std::chrono::duration<double, std::milli> now =
      std::chrono::steady_clock::now().time_since_epoch();
  return {now.count(), milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime),
          static_cast<double>(usage.ru_nvcsw), static_cast<double>(g_allocations.load())};
}

FrameCost operator-(const FrameCost& after, const FrameCost& before) {
  return {after.wall_ms - before.wall_ms, after.cpu_ms - before.cpu_ms,
          after.switches - before.switches, after.allocations - before.allocations};
}

double percentile(std::vector<double> values, double part) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const auto rank = static_cast<size_t>(std::ceil(part * static_cast<double>(values.size())));
  return values[std::max<size_t>(rank, 1) - 1];
}
