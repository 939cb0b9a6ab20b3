// The undecimated Haar transform of the low band, whole and kernel by kernel.
#include <cstdint>
#include <vector>

#include "bench/bench_frames.h"
#include "bench/bench_halves.h"
#include "vorel/wavelet/haar_transform.h"

namespace {

// A low band of the frame, room for its subbands and a transform of its size.
struct HaarBench {
  int width;
  int height;
  HalfPlane band;
  std::vector<HalfPlane> subbands;
  std::vector<buffer> records;
  HaarTransform haar;

  explicit HaarBench(const FrameSize& frame)
      : width(subband_cols(frame, 4)), height(subband_rows(frame, 4)), band(height, width, 1) {
    for (uint32_t i = 0; i < 7; ++i) {
      subbands.emplace_back(height, width, 2 + i);
      records.push_back(subbands.back().record());
    }
    ready = haar.setup(width, height, 0, nullptr);
  }
  ~HaarBench() { haar.deallocate(); }
  HaarBench(const HaarBench&) = delete;
  HaarBench& operator=(const HaarBench&) = delete;

  bool ready;
};

template <typename Body>
void register_haar(const std::string& name, Body body) {
  register_for_frames("kernel/haar/" + name,
                      [body](benchmark::State& state, const FrameSize& frame) {
                        HaarBench bench(frame);
                        if (!bench.ready) return state.SkipWithError("no memory");
                        for (auto _ : state) {
                          body(bench);
                          benchmark::ClobberMemory();
                        }
                      });
}

using Method = void (HaarTransform::*)(_Float16*, _Float16*, _Float16*, int, int);

void register_method(const std::string& name, Method method) {
  register_haar(name, [method](HaarBench& bench) {
    (bench.haar.*method)(bench.subbands[0].samples.data(), bench.subbands[1].samples.data(),
                         bench.subbands[2].samples.data(), bench.width, bench.height);
  });
}

const bool kRegistered = [] {
  register_haar("forward", [](HaarBench& bench) {
    buffer band = bench.band.record();
    bench.haar.forwardUnHaarRun(&band, bench.records.data(), band.width, band.height, false, false);
  });
  register_haar("inverse", [](HaarBench& bench) {
    buffer band = bench.band.record();
    bench.haar.inverseUnHaarRunAllSubbands(bench.records.data(), &band, band.width, band.height);
  });
  register_method("fwt", &HaarTransform::fwt);
  register_method("fwtVert", &HaarTransform::fwtVert);
  register_method("fwtL2Dir", &HaarTransform::fwtL2Dir);
  register_method("fwtVertL2Dir", &HaarTransform::fwtVertL2Dir);
  register_method("iwtDir", &HaarTransform::iwtDir);
  register_method("iwtVertDir", &HaarTransform::iwtVertDir);
  register_method("iwtL2Dir", &HaarTransform::iwtL2Dir);
  register_method("iwtVertL2Dir", &HaarTransform::iwtVertL2Dir);
  return true;
}();

}  // namespace
