// The Symlet-4 transform of whole planes.
#ifndef VOREL_WAVELET_SYM4_PLANES_H_
#define VOREL_WAVELET_SYM4_PLANES_H_

#include <cstddef>
#include <cstdint>

#include "vorel/wavelet/buffer.h"
#include "vorel/wavelet/sym4_transform.h"
#include "wavelet/pass_times.h"
#include "wavelet/row_store.h"

// Rows of `width` samples, `pitch` apart.
template <typename Sample>
struct sym4_source {
  const Sample* samples;
  int width;
  ptrdiff_t pitch;
};

struct sym4_band_pair {
  _Float16* low;
  _Float16* high;
};

// The rows `rows` of a pass along the rows: width / 2 low and high samples each.
template <typename Sample>
void sym4_analyse_plane_rows(const sym4_source<Sample>& src, const sym4_band_pair& out, span rows);

// The output rows `rows`, as far as they are written at all, of a pass along the columns of a plane
// of `height` rows.
void sym4_analyse_plane_columns(const sym4_source<_Float16>& src, int height,
                                const sym4_band_pair& out, span rows);

// Both bands have `height` rows of low.width samples, which the two may keep at different pitches.
void sym4_synthesise_plane_rows(const sym4_source<_Float16>& low, const _Float16* high,
                                _Float16* out, int height);
void sym4_synthesise_plane_columns(const sym4_source<_Float16>& low, const _Float16* high,
                                   _Float16* out, int height);

// Working planes of one level and the samples that they hold.
struct sym4_work {
  _Float16* low;
  _Float16* high;
  _Float16* intermediate;
  int64_t outer_samples;  // of `low`, and of `high`
  int64_t intermediate_samples;
};

[[nodiscard]] sym4_work work_of(const sym4_level& level);

// The size that working planes are for.
struct sym4_plane_sizes {
  uint32_t rows;
  uint32_t half_columns;
  uint32_t half_rows;
};

// Takes the planes of levels[0..1] from scratch[0..1], each from its own, or from the heap;
// `scratch` may be null. Returns false (logged) when memory is short. Logs its timing line.
[[nodiscard]] bool take_sym4_levels(sym4_level* levels, const sym4_plane_sizes& sizes,
                                    const buffer* scratch, int32_t debug_level);
void release_sym4_levels(sym4_level* levels, int32_t debug_level);

// A run over a plane of `width` x `height` samples. Subbands 0..6 with two decompositions, else
// 4..7.
struct sym4_run {
  const buffer* subbands;
  sym4_work work;
  int width;
  int height;
  bool two_decompositions;
};

// Decomposes `src`. Returns false without a change when the working planes are too small: planes of
// height x width / 2 and height / 2 x width / 2 samples always suffice.
[[nodiscard]] bool sym4_forward_plane(const sym4_run& run, const _Float16* src, PassTimes* times);

// Rebuilds a plane from `band0` and the detail bands into `out`, rows of 2 * (width / 2) samples.
// Rows 0 to 2 and those from 2 * (height / 2) - 5 on are not written. Returns false without a
// change when the working planes are too small, or when the second level's low band is narrower
// than the first level's rows.
[[nodiscard]] bool sym4_inverse_plane(const sym4_run& run, const buffer& band0, _Float16* out,
                                      PassTimes* times);

// By how many samples a row of the joined second level is longer than one of the first.
[[nodiscard]] inline int sym4_pitch_difference(const sym4_run& run, const buffer& band0) {
  return run.two_decompositions ? 2 * static_cast<int>(band0.width) - run.width / 2 : 0;
}

#endif  // VOREL_WAVELET_SYM4_PLANES_H_
