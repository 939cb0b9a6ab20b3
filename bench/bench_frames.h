// Frame sizes of the benchmarks and the yardstick that makes their figures comparable: the time of
// copying one NV21 frame of the same size once, on one core, measured right before.
#ifndef VOREL_BENCH_BENCH_FRAMES_H_
#define VOREL_BENCH_BENCH_FRAMES_H_

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "bench/bench_picture.h"

struct FrameSize {
  int width;
  int height;

  size_t luma_bytes() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
  size_t frame_bytes() const { return luma_bytes() / 2 * 3; }
  std::string name() const { return std::to_string(width) + "x" + std::to_string(height); }
};

inline constexpr FrameSize kBenchFrames[] = {{1920, 1080}, {4000, 3000}};

// Measures the copy of one frame and adds two counters: "copy_ms", and "x_copy", the benchmark's
// time per iteration in copies. Call it before the timing loop.
void compare_with_copy(benchmark::State& state, const FrameSize& frame);

// Registers `body(state, frame)` as "<name>/<width>x<height>" for every size, in wall-clock
// milliseconds.
template <typename Body>
void register_for_frames(const std::string& name, Body body) {
  for (const FrameSize& frame : kBenchFrames) {
    benchmark::RegisterBenchmark((name + "/" + frame.name()).c_str(),
                                 [body, frame](benchmark::State& state) {
                                   compare_with_copy(state, frame);
                                   body(state, frame);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
  }
}

#endif  // VOREL_BENCH_BENCH_FRAMES_H_
