// Rows of noise multipliers of a subband, for all subbands of its size and place at once.
#ifndef VOREL_WAVELET_NOISE_ROWS_H_
#define VOREL_WAVELET_NOISE_ROWS_H_

#include <algorithm>

#include "wavelet/kernels/shrinkage_rows.h"
#include "wavelet/row_store.h"

// Rows that stay available after a later one has been asked for.
inline constexpr int kNoiseRowsKept = 4;

// Rows of memory that the multipliers need.
inline constexpr int kNoiseRows = kNoiseRowsKept + 1;

class NoiseRows {
 public:
  // For `cols` columns; `memory` has kNoiseRows rows of them.
  NoiseRows(const radial_noise& noise, int cols, const row_store& memory)
      : noise_(noise),
        cols_(cols),
        rows_{memory.samples, memory.pitch, kNoiseRowsKept},
        squares_(memory.row(kNoiseRowsKept)) {
    for (int i = 0; noise_.flat && i < kNoiseRowsKept; ++i) {
      std::fill_n(rows_.row(i), cols_, _Float16{1});
    }
    if (!noise_.flat) radial_column_squares(noise_, 0, cols_, squares_);
  }

  // Begins with `row` instead of 0. To be called before the first `row`.
  void start(int row) { next_ = row; }

  [[nodiscard]] const _Float16* row(int index) {
    for (; next_ <= index && !noise_.flat; ++next_) {
      radial_multiplier_row(noise_, next_, squares_, cols_, rows_.row(next_));
    }
    return rows_.row(index);
  }

 private:
  radial_noise noise_;
  int cols_;
  row_store rows_;
  _Float16* squares_;
  int next_ = 0;
};

#endif  // VOREL_WAVELET_NOISE_ROWS_H_
