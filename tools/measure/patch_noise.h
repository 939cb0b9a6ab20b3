// Noise of a patch that should be of one colour, such as a grey field of a test chart.
#ifndef VOREL_TOOLS_MEASURE_PATCH_NOISE_H_
#define VOREL_TOOLS_MEASURE_PATCH_NOISE_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "tools/pictures/picture.h"
#include "tools/pictures/side_by_side.h"

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

struct PatchPlanes {
  PatchNoise y;
  PatchNoise u;
  PatchNoise v;
};

// Of a rectangle in the frame, 2 x 2 and larger: chroma samples that lie in it with all their
// pixels, but one at least.
[[nodiscard]] PatchPlanes measure_patch(const Nv21Frame& frame, const Crop& patch);

// Throws a usage error, which names the option and the picture's `path`, for an area that is less
// than 2 x 2 or does not lie in the picture.
void check_area(const char* option, const Crop& area, Size size, const std::string& path);

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_PATCH_NOISE_H_
