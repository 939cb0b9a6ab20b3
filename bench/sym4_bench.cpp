// The Symlet-4 transform of one chroma plane, whole and pass by pass, and the border around it.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "bench/bench_frames.h"
#include "bench/bench_halves.h"
#include "vorel/wavelet/border_handler.h"
#include "vorel/wavelet/sym4_transform.h"

namespace {

// A bordered chroma plane, its subbands and a transform of its size.
struct Sym4Bench {
  int width;
  int height;
  HalfPlane plane;
  HalfPlane low;  // room for the two bands of a pass
  HalfPlane high;
  std::vector<HalfPlane> subbands;
  std::vector<buffer> records;
  buffer record;
  Sym4Transform transform;

  explicit Sym4Bench(const FrameSize& frame)
      : width(subband_cols(frame, 1)),
        height(subband_rows(frame, 1)),
        plane(height, width, 1),
        low(height, width / 2, 2),
        high(height, width / 2, 3),
        record(plane.record()) {
    for (int i = 0; i < 8; ++i) {
      const int divisor = i < 4 ? 4 : 2;
      subbands.emplace_back(subband_rows(frame, divisor), subband_cols(frame, divisor), 4 + i);
    }
    for (HalfPlane& band : subbands) records.push_back(band.record());
  }
  Sym4Bench(const Sym4Bench&) = delete;
  Sym4Bench& operator=(const Sym4Bench&) = delete;

  [[nodiscard]] bool setup() {
    return transform.setup(width, height, width / 2, height / 2, 0, nullptr, nullptr, nullptr);
  }
  void forward() {
    transform.forwardWtRun(&record, records.data(), record.width, record.height, 1, nullptr);
  }
  void inverse() {
    transform.inverseWtDifferentSband0Run(&records[0], records.data(), &record, record.width,
                                          record.height, 1);
  }
};

template <typename Body>
void register_sym4(const std::string& name, Body body) {
  register_for_frames("kernel/sym4/" + name,
                      [body](benchmark::State& state, const FrameSize& frame) {
                        Sym4Bench bench(frame);
                        if (!bench.setup()) return state.SkipWithError("no memory");
                        for (auto _ : state) {
                          body(bench);
                          benchmark::ClobberMemory();
                        }
                        bench.transform.deallocate();
                      });
}

// The vertical analysis as a loop that leaves everything to the compiler: what a pass of the
// library is to be held against.
void plain_fwt_vert(const _Float16* src, _Float16* low, _Float16* high, ptrdiff_t width,
                    ptrdiff_t height) {
  const _Float16 t[8] = {
      static_cast<_Float16>(0.0322265625f),      static_cast<_Float16>(0.012603759765625f),
      static_cast<_Float16>(0.0992431640625f),   static_cast<_Float16>(0.2978515625f),
      static_cast<_Float16>(0.8037109375f),      static_cast<_Float16>(0.49755859375f),
      static_cast<_Float16>(0.029632568359375f), static_cast<_Float16>(0.07574462890625f)};
  for (ptrdiff_t k = 2; k <= (height - 4) / 2; ++k) {
    const _Float16* a = src + 2 * k * width;
    _Float16* __restrict lo = low + k * width;
    _Float16* __restrict hi = high + k * width;
    const ptrdiff_t w = width;
#pragma clang loop vectorize(enable)
    for (ptrdiff_t x = 0; x < w; ++x) {
      lo[x] = a[x - 4 * w] * t[0] - a[x - 3 * w] * t[1] - a[x - 2 * w] * t[2] + a[x - w] * t[3] +
              a[x] * t[4] + a[x + w] * t[5] - a[x + 2 * w] * t[6] - a[x + 3 * w] * t[7];
      hi[x] = a[x - 3 * w] * t[6] - a[x - 4 * w] * t[7] + a[x - 2 * w] * t[5] - a[x - w] * t[4] +
              a[x] * t[3] + a[x + w] * t[2] - a[x + 2 * w] * t[1] - a[x + 3 * w] * t[0];
    }
  }
}

// Interleaved chroma of a frame and the two bordered planes made of it.
struct BorderBench {
  std::vector<uint8_t> chroma;
  HalfPlane planes[2];
  buffer in{};
  buffer out[2];

  explicit BorderBench(const FrameSize& frame)
      : chroma(make_bench_plane(frame.luma_bytes() / 2, 1)),
        planes{{subband_rows(frame, 1), subband_cols(frame, 1), 2},
               {subband_rows(frame, 1), subband_cols(frame, 1), 3}} {
    in.data = chroma.data();
    in.width = static_cast<uint32_t>(frame.width);
    in.height = static_cast<uint32_t>(frame.height) / 2;
    in.kind = VOREL_PLANE_PAIRS;
    for (int i = 0; i < 2; ++i) {
      out[i] = planes[i].record();
      out[i].padX = out[i].padY = 32;
      out[i].innerWidth = static_cast<uint32_t>(frame.width) / 2;
      out[i].innerHeight = in.height;
    }
  }
};

template <typename Body>
void register_border(const std::string& name, Body body) {
  register_for_frames("kernel/border/" + name,
                      [body](benchmark::State& state, const FrameSize& frame) {
                        BorderBench bench(frame);
                        for (auto _ : state) {
                          body(bench);
                          benchmark::ClobberMemory();
                        }
                      });
}

const bool kRegistered = [] {
  register_sym4("forward", [](Sym4Bench& bench) { bench.forward(); });
  register_sym4("inverse", [](Sym4Bench& bench) { bench.inverse(); });
  // As a frame does it: fresh working planes, both directions.
  register_sym4("frame", [](Sym4Bench& bench) {
    bench.transform.deallocate();
    if (!bench.setup()) return;
    bench.forward();
    bench.inverse();
  });
  register_sym4("fwt", [](Sym4Bench& bench) {
    bench.transform.fwt(bench.plane.samples.data(), bench.low.samples.data(),
                        bench.high.samples.data(), bench.width, bench.height);
  });
  register_sym4("fwtVert", [](Sym4Bench& bench) {
    bench.transform.fwtVert(bench.plane.samples.data(), bench.low.samples.data(),
                            bench.high.samples.data(), bench.width, bench.height);
  });
  register_sym4("fwtVert_plain_loop", [](Sym4Bench& bench) {
    plain_fwt_vert(bench.plane.samples.data(), bench.low.samples.data(), bench.high.samples.data(),
                   bench.width, bench.height);
  });
  register_sym4("iwt", [](Sym4Bench& bench) {
    bench.transform.iwt(bench.low.samples.data(), bench.high.samples.data(),
                        bench.plane.samples.data(), bench.width / 2, bench.height);
  });
  register_sym4("iwtVert", [](Sym4Bench& bench) {
    bench.transform.iwtVert(bench.low.samples.data(), bench.high.samples.data(),
                            bench.plane.samples.data(), bench.width, bench.height / 2);
  });
  register_border("copy_and_pad", [](BorderBench& bench) {
    BorderHandler::getInstance()->runCopyAndPad(&bench.in, &bench.out[0], &bench.out[1], 0,
                                                bench.out[0].height);
  });
  register_border("pad", [](BorderBench& bench) {
    BorderHandler::getInstance()->runPad(&bench.out[0], &bench.out[1], 0, bench.out[0].height);
  });
  register_border("box_filter_3x3",
                  [](BorderBench& bench) { boxFilter3x3(&bench.out[0], &bench.out[1], nullptr); });
  return true;
}();

}  // namespace
