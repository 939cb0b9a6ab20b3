// Plane conversion on one core, a whole frame in one call.
#include "bench/bench_frames.h"
#include "vorel/convert.h"

namespace {

interleaving_tuning make_tuning(int32_t y_upper, int32_t uv) {
  interleaving_tuning tuning{};
  tuning.d_Y_upper_thresh = y_upper;
  tuning.d_Y_lower_thresh = 1;
  tuning.d_UV_thresh = uv;
  tuning.cs_upper_thresh = 48;
  tuning.cs_lower_thresh = 36;
  return tuning;
}

// A frame, what is restored into it, and half-precision planes with their border.
struct RestorePlanes {
  explicit RestorePlanes(const FrameSize& size)
      : y(make_bench_plane(size.luma_bytes(), 1)),
        uv(make_bench_plane(size.luma_bytes() / 2, 2)),
        low(make_bench_plane(size.luma_bytes(), 3)),
        high(size.luma_bytes(), 128),
        u(make_bench_plane(size.luma_bytes() / 4, 4)),
        v(make_bench_plane(size.luma_bytes() / 4, 5)),
        packed(make_bench_plane(size.luma_bytes() * 2, 6)),
        packed_u(make_bench_plane(size.luma_bytes() / 2, 7)),
        packed_v(make_bench_plane(size.luma_bytes() / 2, 8)),
        mfd_width(size.width / 2 + 64),
        mfd_u(static_cast<size_t>(mfd_width * size.height / 2)),
        mfd_v(mfd_u.size()) {}

  std::vector<uint8_t> y, uv, low, high, u, v, packed, packed_u, packed_v;
  int mfd_width;
  std::vector<_Float16> mfd_u, mfd_v;
};

template <typename Kernel>
void register_restore(const std::string& name, const interleaving_tuning& tuning, Kernel kernel) {
  register_for_frames("kernel/" + name, [=](benchmark::State& state, const FrameSize& size) {
    RestorePlanes planes(size);
    interleaving_tuning own = tuning;
    for (auto _ : state) {
      kernel(planes, size, &own);
      benchmark::ClobberMemory();
    }
  });
}

void restore_yuv420(RestorePlanes& p, const FrameSize& size, interleaving_tuning* tuning) {
  restore_interleave_yuv420_neon(p.y.data(), p.uv.data(), p.low.data(), p.high.data(), p.u.data(),
                                 p.v.data(), size.width, size.height, p.y.data(), p.uv.data(),
                                 tuning);
}

void restore_mfd(RestorePlanes& p, const FrameSize& size, interleaving_tuning* tuning) {
  restore_interleave_yuv420_mfd_uv_neon(p.y.data(), p.uv.data(), p.low.data(), p.high.data(),
                                        p.u.data(), p.v.data(), size.width, size.height, p.y.data(),
                                        p.mfd_u.data(), p.mfd_v.data(), p.mfd_width, tuning);
}

void restore_uv420(RestorePlanes& p, const FrameSize& size, interleaving_tuning* tuning) {
  restore_interleave_uv420_neon(nullptr, p.uv.data(), nullptr, nullptr, p.u.data(), p.v.data(),
                                size.width, size.height, p.uv.data(), tuning);
}

void restore_yuv422(RestorePlanes& p, const FrameSize& size, interleaving_tuning* tuning) {
  restore_interleave_yuv422_neon(p.packed.data(), p.low.data(), p.high.data(), p.packed_u.data(),
                                 p.packed_v.data(), size.width, size.height, tuning);
}

void register_upsample(const std::string& name, void* (*run)(void*), int bytes_per_sample) {
  register_for_frames("kernel/" + name, [=](benchmark::State& state, const FrameSize& size) {
    const int cols = size.width / 16;
    const int rows = (size.height + 15) / 16;
    const std::vector<uint8_t> src = make_bench_plane(static_cast<size_t>(cols * rows), 1);
    std::vector<uint8_t> dst(src.size() * static_cast<size_t>(bytes_per_sample));
    upsample_job job{cols, rows, src.data(), dst.data()};
    for (auto _ : state) {
      run(&job);
      benchmark::ClobberMemory();
    }
  });
}

void register_deinterleave(const std::string& name, void* (*run)(void*)) {
  register_for_frames("kernel/" + name, [=](benchmark::State& state, const FrameSize& size) {
    const std::vector<uint8_t> packed = make_bench_plane(2 * size.luma_bytes(), 1);
    const size_t rows = static_cast<size_t>((size.height + 15) / 16);
    const size_t cols = static_cast<size_t>(size.width / 16);
    std::vector<uint8_t> y(256 * rows * cols), u(rows * cols), v(rows * cols);
    deinterleave_job job{};
    job.width = size.width;
    job.height = size.height;
    job.y = y.data();
    job.u = u.data();
    job.v = v.data();
    job.uv_in = job.packed_in = packed.data();
    for (auto _ : state) {
      run(&job);
      benchmark::ClobberMemory();
    }
  });
}

[[maybe_unused]] const bool g_registered = [] {
  const interleaving_tuning usual = make_tuning(4, 16);
  register_deinterleave("deinterleave_yuv420", deinterleave_yuv420_uv_downsample);
  register_deinterleave("deinterleave_yuv422", deinterleave_yuv422_uv_downsample);
  register_upsample("upsample_y", upsample_y, 256);
  register_upsample("upsample_uv420", upsample_uv420, 64);
  register_upsample("upsample_uv422", upsample_uv422, 128);
  register_restore("restore_yuv420", usual, restore_yuv420);
  register_restore("restore_yuv420_mfd_uv", usual, restore_mfd);
  register_restore("restore_uv420", usual, restore_uv420);
  register_restore("restore_yuv422", usual, restore_yuv422);
  // Totals above 128: every mean takes a real division.
  register_restore("restore_yuv420_wide_totals", make_tuning(200, 300), restore_yuv420);
  return true;
}();

}  // namespace
