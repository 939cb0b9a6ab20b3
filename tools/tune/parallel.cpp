#include "tools/tune/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <vector>

namespace tool {

void for_each_in_parallel(size_t count, const std::function<void(size_t)>& work) {
  std::vector<std::exception_ptr> failures(count);
  std::atomic<size_t> next{0};
  const auto run = [&] {
    for (size_t i = next++; i < count; i = next++) {
      try {
        work(i);
      } catch (...) {
        failures[i] = std::current_exception();
      }
    }
  };
  {
    const size_t cores = std::clamp<size_t>(std::thread::hardware_concurrency(), 1, 64);
    std::vector<std::jthread> workers;
    for (size_t i = 1; i < std::min(count, cores); ++i) workers.emplace_back(run);
    run();
  }
  for (const std::exception_ptr& failure : failures) {
    if (failure) std::rethrow_exception(failure);
  }
}

}  // namespace tool
