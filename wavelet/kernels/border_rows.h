// Rows of bordered planes.
#ifndef VOREL_WAVELET_KERNELS_BORDER_ROWS_H_
#define VOREL_WAVELET_KERNELS_BORDER_ROWS_H_

#include <cstdint>

// How a bordered row of `width` samples is cut: `pad` samples, then `inner` (at least one), then
// the rest. pad + inner <= width.
struct border_cut {
  uint32_t pad;
  uint32_t inner;
  uint32_t width;
};

// Writes whole bordered rows from `cut.inner` byte pairs: byte 0 goes to `first`, byte 1 to
// `second`, each as the number it is; the border repeats the first and the last pair.
void pad_pairs_row(const uint8_t* pairs, _Float16* first, _Float16* second, const border_cut& cut);

// Writes a whole bordered row from `cut.inner` samples. `inner` may be where the row has its inner
// samples, else it must not overlap the row.
void pad_row(const _Float16* inner, _Float16* row, const border_cut& cut);

// One row of the 3 x 3 mean of boxFilter3x3: above[0], above[1], ... are the row above, the row and
// the row below. Outside the row its first and last samples repeat. `width` is at least one.
void mean_3x3_row(const _Float16* above, const _Float16* at, const _Float16* below, _Float16* out,
                  uint32_t width);

#endif  // VOREL_WAVELET_KERNELS_BORDER_ROWS_H_
