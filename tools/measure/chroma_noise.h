// How much colour noise a frame has, estimated from the frame alone.
//
// Noise is about equally strong everywhere, and the two chroma planes have mostly their own.
// Texture is neither: it differs from place to place, and where it changes, both planes change
// together. So the estimate takes a quiet quarter of the frame, what the planes do not share there,
// and lowers it as far as other places are busier and as far as the planes agree.
//
// It looks at diagonal differences of means over a few chroma samples, which edges along rows and
// columns do not reach. Means of 4 x 4 samples decide: JPEG files and the noise filters of cameras
// take the finer noise away, not this.
//
// Texture all over a frame remains a noise to it. What tells the two apart stands beside the
// estimate, for noise_verdict.h.
#ifndef VOREL_TOOLS_MEASURE_CHROMA_NOISE_H_
#define VOREL_TOOLS_MEASURE_CHROMA_NOISE_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace tool {

// A frame of 8-bit YUV 4:2:0 with interleaved chroma in either order. Strides in bytes.
struct FrameView {
  const uint8_t* luma;
  size_t luma_stride;
  const uint8_t* chroma;
  size_t chroma_stride;
  int width;
  int height;
};

// Single samples, means of 2 x 2 and of 4 x 4.
inline constexpr int kNoiseScales = 3;
using NoiseByScale = std::array<double, kNoiseScales>;

// All noise is in 8-bit steps: the standard deviation of a scale's means in the quiet quarter of
// the blocks, as far as differences between neighbours show it.
struct ChromaNoise {
  NoiseByScale first;   // of the first sample of each chroma pair
  NoiseByScale second;  // of the other
  double estimate;      // what a noise index is chosen by

  // Of the means of 4 x 4 samples: the quiet quarter's own noise, its share of the middle block's,
  // and the lower quartile of the share that is not common to both planes.
  double quiet;
  double purity;
  double own_share;
  // Logarithms of ratios of quiet noise: means of 8 x 8 samples to those of 4 x 4, chroma to luma
  // over 4 x 4 pixels, and the quietest tenth to the quietest quarter of the blocks, 4 x 4 again.
  double coarseness;
  double to_luma;
  double evenness;
  // Coarseness less the same of means of 2 x 2 to single samples. Noise, filtered or not, falls the
  // faster the coarser the means; what lies under it does not.
  double bend;
};

// Blocks that have to be usable, of 64 x 64 pixels each. Clipped and flat ones are not.
inline constexpr int kLeastNoiseBlocks = 8;

// Nothing when the frame has too few usable blocks.
[[nodiscard]] std::optional<ChromaNoise> measure_chroma_noise(const FrameView& frame);
// The estimate alone, in half the time.
[[nodiscard]] std::optional<double> estimate_chroma_noise(const FrameView& frame);
[[nodiscard]] std::optional<NoiseByScale> measure_luma_noise(const FrameView& frame);

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_CHROMA_NOISE_H_
