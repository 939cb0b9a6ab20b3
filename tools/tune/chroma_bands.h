// A frame's chroma as the wavelet path sees it before it shrinks anything.
#ifndef VOREL_TOOLS_TUNE_CHROMA_BANDS_H_
#define VOREL_TOOLS_TUNE_CHROMA_BANDS_H_

#include <array>
#include <cstddef>
#include <vector>

#include "tools/tune/capture.h"

namespace tool {

// One subband, and the part of it that lies inside the picture.
struct ChromaBand {
  int rows = 0;
  int cols = 0;
  int margin = 0;      // coefficients of the border on the upper and left side
  int inner_rows = 0;  // coefficients inside the picture
  int inner_cols = 0;
  std::vector<_Float16> samples;

  [[nodiscard]] size_t inner_offset(int row) const {
    return static_cast<size_t>(margin + row) * static_cast<size_t>(cols) +
           static_cast<size_t>(margin);
  }
};

// Subband 0 is the low band, 1 to 3 are the details of the coarse level, 4 to 6 of the fine level.
inline constexpr int kChromaBands = 7;
using PlaneBands = std::array<ChromaBand, kChromaBands>;

// Both chroma planes, in the order in which the frame stores them. The transform keeps squares: the
// squared error of a plane is the sum of those of its bands.
struct FrameBands {
  std::array<PlaneBands, 2> planes;
};

[[nodiscard]] FrameBands decompose_chroma(const ChromaImage& chroma);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_CHROMA_BANDS_H_
