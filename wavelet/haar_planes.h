// The passes of the Haar transform over whole planes.
#ifndef VOREL_WAVELET_HAAR_PLANES_H_
#define VOREL_WAVELET_HAAR_PLANES_H_

#include "wavelet/haar_filters.h"

struct plane_size {
  int width;
  int height;
};

// Planes that a pass reads, rows `pitch` samples apart; `lo` may be null where the filter has no
// low term.
struct haar_bands {
  const _Float16* lo;
  const _Float16* hi;
  int pitch;
};

// `out` are dense planes, here and below.
template <typename Sample>
void split_plane_rows(const analysis_filter& filter, const _Float16* taps, const Sample* src,
                      const haar_split& out, plane_size size);

// Kept: the last column takes no part, neither as a sample nor as an output, and the last row is
// left alone.
template <typename Sample>
void split_plane_directionally(const _Float16* taps, const Sample* src, const haar_split& out,
                               plane_size size);

// Output rows [0, row_end).
void split_plane_columns(const analysis_filter& filter, const _Float16* taps, const _Float16* src,
                         const haar_split& out, plane_size size, int row_end);

void join_plane_rows(const synthesis_filter& filter, const _Float16* taps, const haar_bands& bands,
                     _Float16* out, int width, span rows);

// Kept: the results go one row down and one column to the right; columns 0 and width - 1 are left
// alone.
void join_plane_directionally(const _Float16* taps, const haar_bands& bands, _Float16* out,
                              plane_size size);

// Output rows [0, row_end).
void join_plane_columns(const synthesis_filter& filter, const _Float16* taps,
                        const haar_bands& bands, _Float16* out, plane_size size, int row_end);

// From row 1 on.
void add_planes(const _Float16* a, const _Float16* b, _Float16* out, plane_size size);

#endif  // VOREL_WAVELET_HAAR_PLANES_H_
