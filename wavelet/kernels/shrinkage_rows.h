// Noise-adaptive shrinkage of wavelet coefficients.
#ifndef VOREL_WAVELET_KERNELS_SHRINKAGE_ROWS_H_
#define VOREL_WAVELET_KERNELS_SHRINKAGE_ROWS_H_

// How much noisier than at its centre a subband is at a position: min(k * d2, B) + 1 with k =
// 3 * A / c2. d2 and c2 are the squared distances of the position and of the corner from the
// centre. All in half precision; a k * d2 that is not a number counts as B.
struct radial_noise {
  bool flat;  // A is 0: 1 everywhere
  _Float16 slope;
  _Float16 cap;
  _Float16 unit;  // length by which distances are divided, a hundredth of the half width
  int step;       // spacing of coefficients in frame pixels
  int center_x;   // in frame pixels
  int center_y;
};

// For a subband of `rows` x `cols` coefficients.
[[nodiscard]] radial_noise make_radial_noise(_Float16 A, _Float16 B, int rows, int cols, int step);

// The multiplier at (x, y), measured from a centre at (cx, cy). Unlike the subbands' it keeps the
// product and the sum in single precision until the end.
[[nodiscard]] _Float16 radial_multiplier_at(int x, int y, _Float16 A, _Float16 B, int cx, int cy);

// Squared x-distances of `count` columns from `col_first` on.
void radial_column_squares(const radial_noise& noise, int col_first, int count, _Float16* squares);

// Multipliers of one row from the squared x-distances.
void radial_multiplier_row(const radial_noise& noise, int row, const _Float16* squares, int count,
                           _Float16* multipliers);

// One subband's gain: coefficients are divided by `scale` first, which keeps their squares in
// range; `threshold` is divided by its square.
struct shrink_gain {
  _Float16 threshold;
  _Float16 scale;
};

// The scales of the frame path.
inline constexpr _Float16 kSymletScale = static_cast<_Float16>(5.83984375f);  // 0x45D7
inline constexpr _Float16 kHaarScale = static_cast<_Float16>(11.6796875f);    // 0x49D7
inline constexpr _Float16 kHaarLowScale = static_cast<_Float16>(31.359375f);  // 0x4FD7

[[nodiscard]] shrink_gain make_shrink_gain(_Float16 thr, _Float16 scale);

// Whether dividing by `scale` may be replaced by a multiplication with its single-precision
// reciprocal for every half-precision number. True for the scales of the frame path.
[[nodiscard]] bool has_exact_reciprocal(_Float16 scale);

// With u = v / scale: v becomes (scale * u) * (u^2 / (threshold * multiplier + u^2)), and 0 where
// u^2 is 0.
void shrink_row(const shrink_gain& gain, const _Float16* multipliers, _Float16* coefficients,
                int count);

// One of several subbands that have one size.
struct shrink_band {
  _Float16* coefficients;
  shrink_gain gain;
};

// Shrinks dense subbands of `rows` x `cols` coefficients in place.
void shrink_bands(const shrink_band* bands, int band_count, const radial_noise& noise, int rows,
                  int cols);

#endif  // VOREL_WAVELET_KERNELS_SHRINKAGE_ROWS_H_
