// The restore step on one strip of a frame, as the public record describes it.
#ifndef VOREL_CONVERT_RESTORE_STRIP_H_
#define VOREL_CONVERT_RESTORE_STRIP_H_

#include <cstdint>

#include "vorel/convert.h"

// Filtered planes that are still at 1/16 size: `rows` x `cols` samples each.
struct filtered_blocks {
  const uint8_t* y;
  const uint8_t* u;
  const uint8_t* v;
  int32_t cols;
  int32_t rows;
  int32_t row;  // with which the strip begins
};

// A strip that brings its filtered planes up to size itself, piece by piece in the cache; y_low,
// upsampled_u and upsampled_v are read where `blocks` has no planes.
struct restore_strip : interleave_job {
  filtered_blocks blocks;
};

// 4:2:0. Luma stays when `y_out` is null. Chroma goes to `uv_out` or, when that is null, to the
// half-precision planes. The first strip rows' chroma is the first row of each chroma plane.
void restore_planar_strip(const interleave_job& strip);

// The same for a strip that may come with blocks. Its width is a multiple of 16.
void restore_planar_strip(const restore_strip& strip);

// Packed 4:2:2, in place. Luma stays when `y_low` is null.
void restore_packed_strip(const interleave_job& strip);

#endif  // VOREL_CONVERT_RESTORE_STRIP_H_
