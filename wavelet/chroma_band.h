// The wavelet path of a band of rows, from bordered half-precision planes to chroma bytes.
//
// Both planes go through forward transform, Haar and shrinkage, inverse transform and saturation in
// one walk; nothing but a few rows of each step is kept. Bands are independent of each other: each
// computes the rows around its own that its results depend on.
#ifndef VOREL_WAVELET_CHROMA_BAND_H_
#define VOREL_WAVELET_CHROMA_BAND_H_

#include <cstddef>

#include "vorel/wavelet/buffer.h"
#include "wavelet/kernels/saturation_rows.h"
#include "wavelet/pass_times.h"
#include "wavelet/row_store.h"
#include "wavelet/shrinkage.h"

// What all bands of a frame share.
struct chroma_frame {
  const buffer* planes;           // two of one size, with their borders filled
  const buffer* out;              // interleaved bytes
  const _Float16* thresholds[2];  // of each plane's subbands; not negative
  radial_model model;
  saturation_curve curve;
};

// Samples of memory that a band needs, however many rows it has.
[[nodiscard]] size_t chroma_band_samples(const chroma_frame& frame);

// Denoises the rows `rows` of the inner area. Adds what the passes of each plane take to `times`;
// the saturation of both planes counts for the first.
void denoise_chroma_band(const chroma_frame& frame, span rows, void* memory, PassTimes* times);

#endif  // VOREL_WAVELET_CHROMA_BAND_H_
