// The rows that a band of both chroma planes keeps of each step.
#ifndef VOREL_WAVELET_CHROMA_ROWS_H_
#define VOREL_WAVELET_CHROMA_ROWS_H_

#include "vorel/wavelet/buffer.h"
#include "wavelet/haar_walk.h"
#include "wavelet/row_arena.h"
#include "wavelet/row_store.h"
#include "wavelet/sym4_forward.h"
#include "wavelet/sym4_inverse.h"

inline constexpr int kChromaPlanes = 2;

// Columns and rows of the bands that two decompositions of a plane give.
struct subband_sizes {
  int half_columns;
  int half_rows;
  int quarter_columns;  // rounded up
  int quarter_rows;
};
[[nodiscard]] subband_sizes subband_sizes_of(const buffer& plane);

// Both walks' rows of one plane.
struct plane_rows {
  sym4_forward forward;
  haar_rows haar;
  sym4_inverse inverse;
  row_store low_row;  // of the denoised low band
};

struct band_rows {
  plane_rows planes[kChromaPlanes];
  row_store noise1;  // multipliers of the first level
  row_store noise2;
};

// Cuts the rows off the arena; `planes` are two of one size.
[[nodiscard]] band_rows take_band_rows(RowArena* arena, const buffer* planes);

#endif  // VOREL_WAVELET_CHROMA_ROWS_H_
