// The stages of a frame on six workers, whole frames, and a frame that the noise gate lets pass.
#include "bench/bench_frames.h"
#include "core/stages.h"
#include "tests/support/log_sink.h"
#include "vorel/wavelet/chroma_post_process.h"

namespace {

void drop_line(int, const char*, const char*) {}

enum class Paths { kSpatial, kWavelet, kBoth };

// A handle with the built-in tuning for every noise index, and a frame to run on it.
class BenchHandle {
 public:
  BenchHandle(const FrameSize& size, Paths paths)
      : size_(size), frame_(make_bench_plane(size.frame_bytes(), 5)) {
    set_log_sink<drop_line>();
    const vorel_options options = vorel_default_options(size.width, size.height);
    handle_ = vorel_open(&options, nullptr);
    handle_->tuning.enableNoiseIndex = 0;
    handle_->tuning.enable = paths != Paths::kWavelet ? 1 : 0;
    handle_->tuning.mfd_uv_tuning.enable = paths != Paths::kSpatial ? 1 : 0;
  }
  ~BenchHandle() { vorel_deinit(handle_); }
  BenchHandle(const BenchHandle&) = delete;
  BenchHandle& operator=(const BenchHandle&) = delete;

  void run(int noise_index) {
    const vorel_frame frame{sizeof(frame), frame_.data(),     frame_.data() + size_.luma_bytes(),
                            size_.width,   size_.width,       size_.width,
                            size_.height,  VOREL_LAYOUT_NV21, noise_index};
    benchmark::DoNotOptimize(vorel_denoise_frame(handle_, &frame, nullptr));
  }

  // The picture of a frame that the gate lets pass, by the plain call: nothing to wait for.
  void pass(int noise_index) {
    benchmark::DoNotOptimize(vorel_run(handle_, frame_.data(), frame_.data() + size_.luma_bytes(),
                                       size_.width, size_.height, VOREL_FMT_NV21, noise_index));
  }

  // The record of a frame whose workers are up, for calling stages one by one.
  vorel_thread* hold_frame() {
    run(640);
    static_cast<void>(start_pool(&handle_->pool));
    join_pool(&handle_->pool);
    return &handle_->thread[0];
  }
  void set_threshold(int noise_index) { handle_->tuning.enableNoiseIndex = noise_index; }

 private:
  FrameSize size_;
  std::vector<uint8_t> frame_;
  vorel* handle_;
};

void register_stage(const std::string& name, int (*stage)(vorel_thread*), Paths paths) {
  register_for_frames("stage/" + name,
                      [stage, paths](benchmark::State& state, const FrameSize& size) {
                        BenchHandle handle(size, paths);
                        vorel_thread* run = handle.hold_frame();
                        for (auto _ : state) benchmark::DoNotOptimize(stage(run));
                      });
}

void register_frame(const std::string& name, Paths paths) {
  register_for_frames("frame/" + name, [paths](benchmark::State& state, const FrameSize& size) {
    BenchHandle handle(size, paths);
    for (auto _ : state) handle.run(640);
  });
}

[[maybe_unused]] const bool g_registered = [] {
  register_stage("vorel_deinterleave", vorel_deinterleave, Paths::kSpatial);
  register_stage("vorel_box_filter", vorel_box_filter, Paths::kSpatial);
  register_stage("vorel_yuv", vorel_yuv, Paths::kSpatial);
  register_stage("vorel_interleave", vorel_interleave, Paths::kSpatial);
  register_stage("MFD_UV", MFD_UV, Paths::kWavelet);
  register_frame("spatial", Paths::kSpatial);
  register_frame("wavelet", Paths::kWavelet);
  register_frame("both", Paths::kBoth);
  register_for_frames("frame/gate", [](benchmark::State& state, const FrameSize& size) {
    BenchHandle handle(size, Paths::kBoth);
    handle.set_threshold(1000);
    for (auto _ : state) handle.pass(999);
  });
  return true;
}();

}  // namespace
