// How the wavelet stage borders its planes and cuts them into jobs.
#ifndef VOREL_WAVELET_STAGE_LAYOUT_H_
#define VOREL_WAVELET_STAGE_LAYOUT_H_

#include <algorithm>
#include <cstdint>

// Border of the half-precision chroma planes on each side, in samples.
inline constexpr uint32_t kPlaneBorder = 32;

// Columns or rows of a chroma plane with its border; even, as the first level halves it.
constexpr uint32_t padded_size(uint32_t inner) { return (inner + 2 * kPlaneBorder + 1) & ~1u; }

// Bands of the passes that copy chroma into the bordered planes and that write it back.
inline constexpr uint32_t kCopyAndPadJobs = 4;
inline constexpr uint32_t kSaturationJobs = 4;

// Bands of rows that a frame's planes are denoised in, all steps at once: one for each that runs at
// once, but not so many that most of the work is done twice. The rows around a band that it
// computes too cost as much as about 20 rows of its own.
inline constexpr int kMostChromaBands = 16;
inline constexpr int kLeastBandRows = 20;

constexpr int chroma_bands(int workers, int rows) {
  const int most = std::min({workers, rows / kLeastBandRows, kMostChromaBands});
  return std::max(most, 1);
}

#endif  // VOREL_WAVELET_STAGE_LAYOUT_H_
