// Frames and the wavelet stage on 2, 4, 6 and 8 workers, computed: few machines that build this
// have a phone's cores. What traces cost while nobody records them.
#include <map>
#include <tuple>

#include "bench/frame_schedule.h"
#include "platform/trace.h"

namespace {

constexpr int kRounds = 15;

constexpr FrameSize kFrames[] = {{1280, 720}, {1920, 1080}, {4000, 3000}};

const std::vector<FramePhase>& frame_of(const FrameSize& size, int workers) {
  static std::map<std::pair<int, int>, std::vector<FramePhase>> recorded;
  std::vector<FramePhase>& phases = recorded[{size.width, workers}];
  if (phases.empty()) phases = record_frame(size, workers, kRounds);
  return phases;
}

void register_schedule(const std::string& name, const char* stage, int workers) {
  for (const FrameSize& size : kFrames) {
    benchmark::RegisterBenchmark(
        (name + "/" + size.name()).c_str(),
        [=](benchmark::State& state) {
          compare_with_copy(state, size);
          for (auto _ : state) {
            state.SetIterationTime(scheduled_ms(frame_of(size, workers), stage, workers) / 1e3);
          }
        })
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime()
        ->Iterations(1);
  }
}

[[maybe_unused]] const bool g_registered = [] {
  static constexpr std::pair<int, const char*> kCounts[] = {
      {2, "two"}, {4, "four"}, {6, "six"}, {8, "eight"}};
  for (const auto& [workers, word] : kCounts) {
    register_schedule(std::string("frame/") + word + "_workers", nullptr, workers);
  }
  for (const auto& [workers, word] : kCounts) {
    register_schedule(std::string("stage/MFD_UV/") + word + "_workers", "MFD_UV", workers);
  }
  // A frame has about 160 slices.
  benchmark::RegisterBenchmark("trace/off/slices_of_1000_frames", [](benchmark::State& state) {
    for (auto _ : state) {
      for (int i = 0; i < 160'000; ++i) {
        const TraceSlice slice("off");
        benchmark::ClobberMemory();
      }
    }
  })->Unit(benchmark::kMillisecond);
  return true;
}();

}  // namespace
