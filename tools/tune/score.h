// How near a frame is to the truth of its capture.
#ifndef VOREL_TOOLS_TUNE_SCORE_H_
#define VOREL_TOOLS_TUNE_SCORE_H_

#include "tools/tune/capture.h"

namespace tool {

struct Score {
  double psnr_y = 0.0;
  double psnr_u = 0.0;
  double psnr_v = 0.0;
  double ciede2000 = 0.0;

  // What is tuned for unless asked otherwise.
  [[nodiscard]] double chroma() const { return 0.5 * (psnr_u + psnr_v); }

  Score& operator+=(const Score& other);
  Score& operator/=(double count);
};

// Noise that the truth still has is taken out of the squared errors. The colour difference is that
// of every fourth row.
[[nodiscard]] Score score_of(const Capture& capture, const Nv21Frame& frame);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_SCORE_H_
