// Undecimated Haar transform of one half-precision plane.
#ifndef VOREL_WAVELET_HAAR_TRANSFORM_H_
#define VOREL_WAVELET_HAAR_TRANSFORM_H_

#include <cstdint>

#include "vorel/export.h"
#include "vorel/wavelet/buffer.h"

/// Callers, every member: splits a plane into seven subbands of its own size and rebuilds it. `lo`,
/// `hi`, `src` and `out` are dense planes of `width` columns x `height` rows; inputs and outputs
/// must not overlap. A tap outside the plane adds nothing. Samples that a kernel does not write
/// keep what they held. One object serves one thread at a time.
class VOREL_EXPORT HaarTransform {
 public:
  static constexpr int kTapCount = 80;

  /// Fills the tap table.
  HaarTransform();

  /// Allocates four zero-filled working planes. Returns false when memory is short.
  bool setup(int width, int height, int debug, char* path);
  void deallocate();

  // Analysis. Level 1: two taps; L2: two taps two samples apart; Dir: four taps.
  void fwtFirstStep(unsigned char* src, _Float16* lo, _Float16* hi, int width, int height);
  void fwt(_Float16* src, _Float16* lo, _Float16* hi, int width, int height);
  void fwtVert(_Float16* src, _Float16* lo, _Float16* hi, int width, int height);
  void fwtL2(_Float16* src, _Float16* lo, _Float16* hi, int width, int height);
  void fwtVertL2(_Float16* src, _Float16* lo, _Float16* hi, int width, int height);
  void fwtL2DirPixel(unsigned char* src, _Float16* lo, _Float16* hi, int width, int height);
  void fwtL2Dir(_Float16* src, _Float16* lo, _Float16* hi, int width, int height);
  void fwtVertL2Dir(_Float16* src, _Float16* lo, _Float16* hi, int width, int height);

  /// The whole decomposition into subbands[0..6]. With `pixelInput` the source holds bytes. The
  /// first flag is accepted and ignored.
  void forwardUnHaarRun(buffer* src, buffer* subbands, unsigned int width, unsigned int height,
                        bool unused, bool pixelInput);

  // Synthesis. Kept: the first column or row of level 1 comes back at half its value.
  void iwt(_Float16* lo, _Float16* hi, _Float16* out, int width, int height);
  /// Inputs have rows of width - p samples; row 0 of `out` is not written.
  void iwtPitch(_Float16* lo, _Float16* hi, _Float16* out, int width, int height, int p);
  void iwtVert(_Float16* lo, _Float16* hi, _Float16* out, int width, int height);
  /// Inputs have rows of width + p samples; the last row of `out` is not written.
  void iwtVertPitch(_Float16* lo, _Float16* hi, _Float16* out, int width, int height, int p);
  void iwtL2(_Float16* lo, _Float16* hi, _Float16* out, int width, int height);
  void iwtVertL2(_Float16* lo, _Float16* hi, _Float16* out, int width, int height);
  /// Kept: the result of row r goes to row r + 1.
  void iwtL2Dir(_Float16* lo, _Float16* hi, _Float16* out, int width, int height);
  void iwtVertL2Dir(_Float16* lo, _Float16* hi, _Float16* out, int width, int height);
  void iwtDir(_Float16* lo, _Float16* hi, _Float16* out, int width, int height);
  void iwtVertDir(_Float16* lo, _Float16* hi, _Float16* out, int width, int height);
  void iwtVertDirSingle(_Float16* hi, _Float16* out, int width, int height);
  /// out = a + b from row 1 on; row 0 is not written.
  void SubbandsSum2SubBands(_Float16* a, _Float16* b, _Float16* out, int width, int height);

  /// Rebuilds a plane from subbands[0..6]. Row 0 of `out` is not written.
  void inverseUnHaarRunAllSubbands(buffer* subbands, buffer* out, unsigned int width,
                                   unsigned int height);

  /// 0..17 analysis, 70..79 synthesis; the entries between are not used. The level-1 and
  /// directional analysis has the values of entries 0..3 and 10..17 built in and reads them only at
  /// the edges.
  _Float16 taps[kTapCount];

 private:
  buffer lowScratch_;
  buffer highScratch_;
  buffer directional_;
  buffer column_;
  int32_t debug_;
};

#endif  // VOREL_WAVELET_HAAR_TRANSFORM_H_
