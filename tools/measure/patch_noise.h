// Noise of a patch that should be of one colour, such as a grey field of a test chart.
#ifndef VOREL_TOOLS_MEASURE_PATCH_NOISE_H_
#define VOREL_TOOLS_MEASURE_PATCH_NOISE_H_

#include <cstddef>
#include <cstdint>

namespace tool {

// Samples of one plane. Stride and step in bytes: from a row to the next, from a sample to the
// next.
struct PatchView {
  const uint8_t* samples;
  size_t stride;
  size_t step;
  int width;
  int height;
};

struct PatchNoise {
  double mean;
  double deviation;  // standard deviation, 8-bit steps
  // Share of the variance at spatial frequencies below 1/16 of a cycle per sample: blotches that
  // are wider than about eight samples. Of white noise about 0.012.
  double coarse_share;
};

// Sides of 1 and more.
[[nodiscard]] PatchNoise measure_patch(const PatchView& patch);

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_PATCH_NOISE_H_
