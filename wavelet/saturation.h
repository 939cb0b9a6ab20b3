// The saturation step: two half-precision planes back to interleaved bytes.
#ifndef VOREL_WAVELET_SATURATION_H_
#define VOREL_WAVELET_SATURATION_H_

#include <cstdint>

#include "vorel/thread_pool.h"
#include "vorel/wavelet/buffer.h"
#include "wavelet/kernels/saturation_rows.h"

struct saturation {
  const buffer* first;  // both of one geometry
  const buffer* second;
  const buffer* out;
  saturation_curve curve;
};

// Fills the output rows [row_begin, row_end) from the planes' inner areas, as far as there are such
// rows.
void saturate_rows(const saturation& planes, uint32_t row_begin, uint32_t row_end);

// Fills all rows, as jobs on the pool; on the calling thread without one.
void saturate_plane(const saturation& planes, ThreadPool* pool);

// Adds 0.5 to the samples of the rows [row_begin, row_end), as far as there are such rows.
void add_half_rows(const buffer& plane, uint32_t row_begin, uint32_t row_end);

// The lines of a frame's saturation: its sizes at every debug level.
void log_saturation(const saturation& planes);

#endif  // VOREL_WAVELET_SATURATION_H_
