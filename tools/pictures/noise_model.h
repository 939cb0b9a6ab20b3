// Makes a clean picture noisy the way a camera does.
//
// The picture is taken back to light, to the colours of a sensor and to one sample per photosite;
// noise is added there; then it is developed again. The demosaicing and the colour matrix spread
// the noise over neighbours and channels, which gives it the coarse, coloured grain of real
// pictures. The result has the same bytes on every machine: only integer arithmetic and IEEE basic
// operations are used, and the random numbers are a function of seed, frame and place.
#ifndef VOREL_TOOLS_PICTURES_NOISE_MODEL_H_
#define VOREL_TOOLS_PICTURES_NOISE_MODEL_H_

#include <cstdint>

#include "tools/pictures/picture.h"

namespace tool {

inline constexpr int kMaxGain = 1024;
// A noise index is an ISO sensitivity, and gain 1 is ISO 100.
inline constexpr int kNoiseIndexPerGain = 100;

struct NoiseSettings {
  int gain = 1;  // 1..kMaxGain
  uint64_t seed = 0;
  uint64_t frame = 0;  // frames of a video differ in their noise
};

[[nodiscard]] RgbImage add_camera_noise(const RgbImage& image, const NoiseSettings& settings);

// Deterministic random number for a photosite: mean 0, variance 1, close to the normal
// distribution, never beyond 6.
[[nodiscard]] double photosite_noise(uint64_t seed, uint64_t frame, uint64_t site);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_NOISE_MODEL_H_
