// Shrinkage, the low band's denoising and the saturation step, on one core.
#include <android/log.h>

#include <cstdint>
#include <vector>

#include "bench/bench_frames.h"
#include "bench/bench_halves.h"
#include "vorel/wavelet/denoise.h"

namespace {

constexpr _Float16 kThreshold = 3640;  // 100, the built-in tuning's greatest, in the path's units
constexpr _Float16 kCap = 5;
constexpr uint32_t kBorder = 32;

// The seven subbands of a chroma plane, and memory to lend for the Haar planes.
struct Subbands {
  std::vector<HalfPlane> planes;
  std::vector<buffer> records;
  std::vector<_Float16> thresholds;
  HalfPlane lent;

  explicit Subbands(const FrameSize& frame)
      : thresholds(16, kThreshold),
        lent(11 * (subband_rows(frame, 4) + 1) * 2, subband_cols(frame, 4), 1) {
    for (int i = 0; i < 7; ++i) {
      const int divisor = i < 4 ? 4 : 2;
      planes.emplace_back(subband_rows(frame, divisor), subband_cols(frame, divisor), 2u + i);
    }
    for (HalfPlane& plane : planes) records.push_back(plane.record());
  }
};

// Coefficients shrink from run to run; the time does not depend on them.
template <typename Body>
void register_subbands(const std::string& name, Body body) {
  for (const int slope : {0, 3}) {
    register_for_frames("kernel/" + name + (slope > 0 ? "_radial" : ""),
                        [body, slope](benchmark::State& state, const FrameSize& frame) {
                          Subbands subbands(frame);
                          Denoise denoise;
                          for (auto _ : state) {
                            body(denoise, subbands, static_cast<_Float16>(slope));
                            benchmark::ClobberMemory();
                          }
                        });
  }
}

// Chroma within `reach` of neutral; `percentage` 0 leaves the gain at 1.
void register_saturation(const std::string& name, int percentage, uint8_t reach) {
  register_for_frames("kernel/saturation/" + name, [percentage, reach](benchmark::State& state,
                                                                       const FrameSize& frame) {
    const uint32_t rows = static_cast<uint32_t>(frame.height / 2);
    const uint32_t cols = static_cast<uint32_t>(frame.width / 2);
    std::vector<HalfPlane> planes;
    buffer records[2];
    for (uint32_t i = 0; i < 2; ++i) {
      planes.emplace_back(subband_rows(frame, 1), subband_cols(frame, 1), i);
    }
    for (size_t i = 0; i < 2; ++i) {
      for (_Float16& sample : planes[i].samples) {
        sample = static_cast<_Float16>(128 + static_cast<int>(sample) % reach);
      }
      records[i] = planes[i].record();
      records[i].padX = records[i].padY = kBorder;
      records[i].innerWidth = cols;
      records[i].innerHeight = rows;
    }
    std::vector<uint8_t> pairs(size_t{rows} * cols * 2);
    buffer out{};
    out.data = pairs.data();
    out.height = rows;
    out.width = 2 * cols;
    Denoise denoise;
    for (auto _ : state) {
      denoise.applySaturationRegion(&records[0], &records[1], &out, nullptr,
                                    static_cast<_Float16>(percentage),
                                    static_cast<_Float16>(percentage / 2), 65, 40, 0, rows);
      benchmark::ClobberMemory();
    }
  });
}

const bool kRegistered = [] {
  register_subbands("shrinkage_level1", [](Denoise& denoise, Subbands& subbands, _Float16 slope) {
    buffer& band = subbands.records[4];
    denoise.shrinkage1(static_cast<_Float16*>(band.data), kThreshold, slope, kCap,
                       static_cast<int>(band.height), static_cast<int>(band.width), 4, 0,
                       static_cast<_Float16>(5.83984375f));
  });
  register_subbands("haar_denoise", [](Denoise& denoise, Subbands& subbands, _Float16 slope) {
    buffer lent = subbands.lent.record();
    denoise.haarL2Denoise(&subbands.records[0], &lent, kThreshold, slope, kCap, nullptr);
  });
  register_subbands("denoise_plane", [](Denoise& denoise, Subbands& subbands, _Float16 slope) {
    buffer lent = subbands.lent.record();
    denoise.denoiseChroma1And2HaarRun(subbands.records.data(), &lent, subbands.thresholds.data(),
                                      slope, kCap, nullptr);
  });
  register_saturation("unit_gain", 0, 100);
  register_saturation("near_neutral", 20, 20);
  register_saturation("all_colours", 20, 100);
  return true;
}();

}  // namespace
