// Rows of the undecimated Haar transform.
#ifndef VOREL_WAVELET_KERNELS_HAAR_ROWS_H_
#define VOREL_WAVELET_KERNELS_HAAR_ROWS_H_

// Magnitudes of the level-1 and of the directional taps.
inline constexpr _Float16 kHaarLevel1Tap = static_cast<_Float16>(0.70703125f);  // 0x39A8
inline constexpr _Float16 kHaarDirectionalTap = static_cast<_Float16>(0.5f);

// A row of samples and the tap that weighs it. A row shifted by some columns serves a filter along
// the row, the rows of several heights serve one along the columns.
struct tapped_row {
  const _Float16* samples;
  _Float16 tap;
};

inline constexpr int kMaxTappedRows = 8;

// out[x] = ((start + tap0 * row0[x]) + tap1 * row1[x] + ...) * scale, every operation rounded.
// `rows` has 1, 2, 4, 6 or kMaxTappedRows entries: beside the ends of a line terms are left out in
// pairs, of a low and a high band. A start of -0 changes no sum, not even one that is -0;
// a start of +0 turns -0 into +0. `out` overlaps no row.
void sum_tapped_rows(const tapped_row* rows, int row_count, _Float16 start, _Float16 scale,
                     _Float16* out, int width);

// A row of samples, bytes or half-precision, and its taps of the low and of the high filter.
template <typename Sample>
struct split_tap {
  const Sample* samples;
  _Float16 low;
  _Float16 high;
};

inline constexpr int kMaxSplitTaps = 3;

// The sums from +0 with the low and with the high taps, for filters without a kernel below and for
// the ends of a line, where some samples are missing. `rows` has 1 to kMaxSplitTaps entries.
// Outputs overlap no input and not each other; the same below.
template <typename Sample>
void split_tapped_rows(const split_tap<Sample>* rows, int row_count, _Float16* lo, _Float16* hi,
                       int width);

// Level-1 pair of the samples `near` and `far`: the sums from +0 with the taps (t, t) and (-t, t),
// t = 0.70703125.
template <typename Sample>
void split_level1_row(const Sample* near, const Sample* far, _Float16* lo, _Float16* hi, int width);

// Directional pair of four neighbours in order: the sums from +0 with the taps (h, h, h, h) and
// (-h, -h, h, h), h = 0.5.
template <typename Sample>
void split_directional_row(const Sample* before, const Sample* at, const Sample* after,
                           const Sample* second_after, _Float16* lo, _Float16* hi, int width);

// out[x] = a[x] + b[x].
void add_rows(const _Float16* a, const _Float16* b, _Float16* out, int width);

#endif  // VOREL_WAVELET_KERNELS_HAAR_ROWS_H_
