// The restore step on one strip of a frame, as the public record describes it.
#ifndef VOREL_CONVERT_RESTORE_STRIP_H_
#define VOREL_CONVERT_RESTORE_STRIP_H_

#include "vorel/convert.h"

// 4:2:0. Luma stays when `y_out` is null. Chroma goes to `uv_out` or, when that is null, to the
// half-precision planes. The first strip rows' chroma is the first row of each chroma plane.
void restore_planar_strip(const interleave_job& strip);

// Packed 4:2:2, in place. Luma stays when `y_low` is null.
void restore_packed_strip(const interleave_job& strip);

#endif  // VOREL_CONVERT_RESTORE_STRIP_H_
