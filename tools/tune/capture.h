// Noisy frames whose truth is known: what a tuning is judged by.
#ifndef VOREL_TOOLS_TUNE_CAPTURE_H_
#define VOREL_TOOLS_TUNE_CAPTURE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "tools/pictures/picture.h"
#include "tools/pictures/picture_io.h"

namespace tool {

// Chroma pairs in the order of a frame, with fractions: the mean of many frames has them.
struct ChromaImage {
  ChromaImage() = default;
  explicit ChromaImage(const Nv21Frame& frame);

  int cols = 0;  // pairs
  int rows = 0;
  std::vector<float> pairs;
};

// Where captures come from. Without noisy pictures the clean one is made noisy; without a clean
// one the noisy pictures are a burst, whose mean is the truth.
struct CaptureSource {
  std::string scene;
  int noise_index = 0;
  std::vector<std::string> noisy;
  std::string clean;
};

// Sides are multiples of 16: what is beyond is cut off.
struct Capture {
  std::string scene;
  int noise_index;
  Nv21Frame noisy;
  Nv21Frame truth;           // rounded, for luma and for colours
  ChromaImage truth_chroma;  // exact
  // How much of the squared difference between the two is noise that the truth still has.
  double truth_noise_share = 0.0;
};

struct CaptureSettings {
  ReadOptions read;
  uint64_t seed = 1;  // of the noise that clean pictures get
};

// Throws an input error that names the file when one cannot be read, sizes differ, a burst moved or
// clipped, or a picture is smaller than 64 x 64. `number` tells this source's noise from others'.
[[nodiscard]] std::vector<Capture> load_captures(const CaptureSource& source,
                                                 const CaptureSettings& settings, int number);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_CAPTURE_H_
