#include "bench/bench_frames.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace {

double measure_copy_seconds(size_t bytes) {
  std::vector<uint8_t> src(bytes, 1);
  std::vector<uint8_t> dst(bytes, 2);
  std::vector<double> seconds;
  for (int i = 0; i < 9; ++i) {
    const auto start = std::chrono::steady_clock::now();
    std::memcpy(dst.data(), src.data(), bytes);
    benchmark::DoNotOptimize(dst.data());
    benchmark::ClobberMemory();
    seconds.push_back(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  std::nth_element(seconds.begin(), seconds.begin() + 4, seconds.end());
  return seconds[4];
}

}  // namespace

void compare_with_copy(benchmark::State& state, const FrameSize& frame) {
  const double copy = measure_copy_seconds(frame.frame_bytes());
  state.counters["copy_ms"] = copy * 1000;
  state.counters["x_copy"] = benchmark::Counter(
      copy, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
