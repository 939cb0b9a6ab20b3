// Borders around half-precision planes. The border repeats the nearest inner sample.
#ifndef VOREL_WAVELET_BORDER_H_
#define VOREL_WAVELET_BORDER_H_

#include <cstdint>

#include "vorel/thread_pool.h"
#include "vorel/wavelet/buffer.h"

// Fills the border of the rows [row_begin, row_end) of a plane whose inner area is there already.
// With an empty inner area nothing is written; the same below.
void pad_plane(const buffer& plane, uint32_t row_begin, uint32_t row_end);

// Converts interleaved 8-bit pairs to the rows [row_begin, row_end) of two bordered planes.
void pad_pairs_rows(const buffer& pairs, const buffer& first, const buffer& second,
                    uint32_t row_begin, uint32_t row_end);

// The same rows of planes[0..1], as jobs on the pool; on the calling thread without one.
void pad_pairs(const buffer& pairs, const buffer* planes, uint32_t row_begin, uint32_t row_end,
               ThreadPool* pool);

// Part of a plane with rows of `stride` samples.
struct inner_area {
  int stride;
  int col_first;
  int row_first;
  int cols;
  int rows;
};

// Copies the area to a dense plane.
void copy_inner(const _Float16* padded, const inner_area& area, _Float16* out);

// Mean of the 3 x 3 neighbourhood of every sample, the edge repeated outside the plane.
void mean_3x3_plane(const buffer& in, const buffer& out);

#endif  // VOREL_WAVELET_BORDER_H_
