// Half-precision planes of the wavelet path for benchmarks.
#ifndef VOREL_BENCH_BENCH_HALVES_H_
#define VOREL_BENCH_BENCH_HALVES_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bench/bench_frames.h"
#include "vorel/wavelet/buffer.h"

// Columns and rows of a chroma plane with its border, divided by 1 (the plane), 2 (level-1
// subbands) or 4 (level-2 subbands).
inline int subband_cols(const FrameSize& frame, int divisor) {
  return (frame.width / 2 + 64) / divisor;
}
inline int subband_rows(const FrameSize& frame, int divisor) {
  return (frame.height / 2 + 64) / divisor;
}

// A dense plane that looks like chroma: about neutral, with noise.
struct HalfPlane {
  uint32_t rows;
  uint32_t cols;
  std::vector<_Float16> samples;

  HalfPlane(int height, int width, uint32_t seed)
      : rows(static_cast<uint32_t>(height)), cols(static_cast<uint32_t>(width)) {
    const std::vector<uint8_t> bytes = make_bench_plane(size_t{rows} * cols, seed);
    samples.assign(bytes.begin(), bytes.end());
  }
  buffer record() {
    buffer plane{};
    plane.data = samples.data();
    plane.height = rows;
    plane.width = cols;
    plane.borrowed = true;
    return plane;
  }
};

#endif  // VOREL_BENCH_BENCH_HALVES_H_
