// What the passes of a chroma plane take, and the timing lines that follow from it.
//
// The walks run the passes in pieces of a row, and several bands of rows run at once. The pieces of
// a pass are added up, so that the lines tell of passes over whole planes, in the order that these
// would have.
#ifndef VOREL_WAVELET_PASS_TIMES_H_
#define VOREL_WAVELET_PASS_TIMES_H_

#include <cstdint>

#include "platform/debug_levels.h"
#include "vorel/debug.h"

// In the order in which passes over whole planes would run.
enum Pass {
  kForwardRows,
  kForwardLow,
  kForwardLowLow,
  kForwardRowsLow,
  kForwardRowsHigh,
  kForwardHigh,
  kHaarRows,
  kHaarLow,
  kHaarHigh,
  kHaarDirectionalRows,
  kHaarDirectionalLow,
  kHaarDirectionalHigh,
  kShrinkHaar,
  kJoinDirectionalLow,
  kJoinDirectionalHigh,
  kJoinDirectionalRows,
  kJoinHighOnly,
  kJoinDetails,
  kJoinRows,
  kJoinSum,
  kShrinkDetails,
  kInverseRowsLow,
  kInverseRowsHigh,
  kInverseMiddle,
  kInverseLow,
  kInverseHigh,
  kInverseRows,
  kSaturation,
  kPasses
};

class PassTimes {
 public:
  explicit PassTimes(int32_t debug_level = 0) : enabled_(debug_level == kDebugTiming) {}

  template <typename Piece>
  void run(Pass pass, Piece piece) {
    if (!enabled_) return piece();
    timeval start{};
    set_current_time(&start);
    piece();
    usec_[pass] += get_elapsed_time_usec(&start);
  }

  void add(const PassTimes& other) {
    for (int pass = 0; pass < kPasses; ++pass) usec_[pass] += other.usec_[pass];
  }

  [[nodiscard]] bool enabled() const { return enabled_; }

  // Of the passes first..last.
  [[nodiscard]] int64_t usec(Pass first, Pass last) const;

 private:
  bool enabled_;
  int64_t usec_[kPasses] = {};
};

// The lines of a forward and of an inverse run; with one decomposition there are fewer passes. A
// low band whose pitch differs from the other bands' has a notice at every level, and no timing
// line.
void log_forward_times(const PassTimes& times, bool second_level);
void log_inverse_times(const PassTimes& times, bool second_level, int pitch_difference);

// The lines of the low band's Haar transform, and of the denoising around it.
void log_haar_times(const PassTimes& times);
void log_denoise_times(const PassTimes& times);

// The lines of one plane from forward to inverse run.
void log_plane_times(const PassTimes& times, int pitch_difference);

// The line of the saturation.
void log_saturation_times(const PassTimes& times);

#endif  // VOREL_WAVELET_PASS_TIMES_H_
