// Shrinkage of a chroma plane's subbands: which threshold, scale and spacing each of them has.
#ifndef VOREL_WAVELET_SHRINKAGE_H_
#define VOREL_WAVELET_SHRINKAGE_H_

#include "vorel/wavelet/buffer.h"
#include "wavelet/haar_walk.h"
#include "wavelet/kernels/shrinkage_rows.h"
#include "wavelet/pass_times.h"
#include "wavelet/plane_storage.h"
#include "wavelet/row_arena.h"

inline constexpr int kSubbands = 7;

// Spacing of the coefficients of each Symlet level in frame pixels; the Haar bands have level 2's.
inline constexpr int kLevel1Step = 4;
inline constexpr int kLevel2Step = 8;

// Slope and cap of the radial noise model; slope 0 switches it off.
struct radial_model {
  _Float16 slope;
  _Float16 cap;
};

// The gains of the low band's Haar subbands.
void make_haar_gains(_Float16 thr, shrink_gain (&gains)[kHaarBands]);

// Rows for a Haar walk over planes of `width` columns.
[[nodiscard]] haar_rows take_haar_rows(RowArena* arena, int width);

// Denoises a low band in place. Memory comes from `scratch` (may be null) or the heap; when it is
// short the band is left alone and the result is false (logged).
[[nodiscard]] bool denoise_low_band(const buffer& band, plane_scratch* scratch, _Float16 thr,
                                    radial_model model, PassTimes* times);

// Denoises the subbands 0..6 of a plane in place; thr[0] is replaced by its magnitude. The result
// is the low band's.
[[nodiscard]] bool denoise_subbands(const buffer* subbands, plane_scratch* scratch, _Float16* thr,
                                    radial_model model, PassTimes* times);

#endif  // VOREL_WAVELET_SHRINKAGE_H_
