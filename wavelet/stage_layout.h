// How the wavelet stage borders its planes and cuts them into jobs.
#ifndef VOREL_WAVELET_STAGE_LAYOUT_H_
#define VOREL_WAVELET_STAGE_LAYOUT_H_

#include <cstdint>

// Border of the half-precision chroma planes on each side, in samples.
inline constexpr uint32_t kPlaneBorder = 32;

// Columns or rows of a chroma plane with its border; even, as the first level halves it.
constexpr uint32_t padded_size(uint32_t inner) { return (inner + 2 * kPlaneBorder + 1) & ~1u; }

// Bands of the passes that copy chroma into the bordered planes and that write it back.
inline constexpr uint32_t kCopyAndPadJobs = 4;
inline constexpr uint32_t kSaturationJobs = 4;

// Bands of rows that a frame's planes are denoised in, all steps at once. A band computes about 60
// rows around its own, at half the price of a row: there are as many bands as run at once, but not
// so many that most of the work is done twice, and twice as many where that costs little, so that
// slow processors do not hold up fast ones.
inline constexpr int kMostChromaBands = 32;
inline constexpr int kLeastBandRows = 24;
inline constexpr int kAmpleBandRows = 320;

constexpr int chroma_bands(int workers, int rows) {
  const int most = rows / kLeastBandRows < workers ? rows / kLeastBandRows : workers;
  const int bands = most < 1 ? 1 : most > kMostChromaBands / 2 ? kMostChromaBands / 2 : most;
  return bands > 1 && rows / bands / 2 >= kAmpleBandRows ? 2 * bands : bands;
}

#endif  // VOREL_WAVELET_STAGE_LAYOUT_H_
