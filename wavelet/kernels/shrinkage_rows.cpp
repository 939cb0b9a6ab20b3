#include "wavelet/kernels/shrinkage_rows.h"

#include <cstddef>

#include "wavelet/kernels/half.h"

namespace {

// Columns that are worked on at once: squares and multipliers of a row stay on the stack. One block
// holds every subband of frames up to 8000 columns.
constexpr int kBlockColumns = 2048;

constexpr _Float16 kFrameScales[] = {kSymletScale, kHaarScale, kHaarLowScale};

_Float16 square_of_ratio(int distance, _Float16 unit) {
  const _Float16 ratio = static_cast<_Float16>(distance) / unit;
  return ratio * ratio;
}

// A hundredth of the half width.
_Float16 radial_unit(int center_x) {
  return static_cast<_Float16>(center_x) / static_cast<_Float16>(100);
}

half_lane radial_multiplier(half_lane slope, half_lane square_x, half_lane square_y,
                            half_lane cap) {
  const half_lane distance = round_half(square_x + square_y);
  // Rounding keeps the order and the cap is a half: the minimum may be taken before rounding.
  const half_lane growth = slope * distance;
  return round_half(round_half(growth < cap ? growth : cap) + 1);
}

// v / scale for a scale with an exact reciprocal, and for any.
template <bool kExactReciprocal>
half_lane divide_by_scale(_Float16 value, half_lane scale, float reciprocal) {
  if constexpr (kExactReciprocal) {
    return static_cast<half_lane>(static_cast<_Float16>(static_cast<float>(value) * reciprocal));
  } else {
    return round_half(static_cast<half_lane>(value) / scale);
  }
}

half_lane shrink_scaled(half_lane u, half_lane threshold, half_lane multiplier, half_lane scale) {
  const half_lane power = round_half(u * u);
  const half_lane noise = round_half(threshold * multiplier);
  const half_lane wiener = round_half(power / round_half(noise + power));
  const half_lane shrunk = round_half(round_half(scale * u) * wiener);
  return power < kSmallestHalf ? 0 : shrunk;
}

template <bool kExactReciprocal>
void shrink_row_with(const shrink_gain& gain, const _Float16* multipliers,
                     _Float16* __restrict coefficients, int count) {
  const half_lane threshold = static_cast<half_lane>(gain.threshold);
  const half_lane scale = static_cast<half_lane>(gain.scale);
  const float reciprocal = 1.0f / static_cast<float>(gain.scale);
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < count; ++x) {
    const half_lane u = divide_by_scale<kExactReciprocal>(coefficients[x], scale, reciprocal);
    const half_lane multiplier = static_cast<half_lane>(multipliers[x]);
    coefficients[x] = static_cast<_Float16>(shrink_scaled(u, threshold, multiplier, scale));
  }
}

void fill_flat(_Float16* multipliers, int count) {
  for (int x = 0; x < count; ++x) multipliers[x] = 1;
}

void shrink_column_block(const shrink_band* bands, int band_count, const radial_noise& noise,
                         int rows, int cols, int col_first, int count) {
  _Float16 squares[kBlockColumns];
  _Float16 multipliers[kBlockColumns];
  if (noise.flat) {
    fill_flat(multipliers, count);
  } else {
    radial_column_squares(noise, col_first, count, squares);
  }
  for (int row = 0; row < rows; ++row) {
    if (!noise.flat) radial_multiplier_row(noise, row, squares, count, multipliers);
    const ptrdiff_t offset = ptrdiff_t{row} * cols + col_first;
    for (int band = 0; band < band_count; ++band) {
      shrink_row(bands[band].gain, multipliers, bands[band].coefficients + offset, count);
    }
  }
}

}  // namespace

radial_noise make_radial_noise(_Float16 A, _Float16 B, int rows, int cols, int step) {
  radial_noise noise{};
  noise.flat = A == 0;
  noise.cap = B;
  noise.step = step;
  noise.center_x = (step * cols) >> 1;
  noise.center_y = (step * rows) >> 1;
  noise.unit = radial_unit(noise.center_x);
  const _Float16 corner =
      square_of_ratio(noise.center_x, noise.unit) + square_of_ratio(noise.center_y, noise.unit);
  noise.slope = static_cast<_Float16>(3) * A / corner;
  return noise;
}

_Float16 radial_multiplier_at(int x, int y, _Float16 A, _Float16 B, int cx, int cy) {
  if (A == 0) return 1;
  const _Float16 unit = radial_unit(cx);
  const _Float16 distance = square_of_ratio(x, unit) + square_of_ratio(y, unit);
  const _Float16 corner = square_of_ratio(cx, unit) + square_of_ratio(cy, unit);
  const _Float16 ratio = distance / corner;
  const float growth = 3.0f * static_cast<float>(A) * static_cast<float>(ratio);
  const float cap = static_cast<float>(B);
  return static_cast<_Float16>((growth < cap ? growth : cap) + 1.0f);
}

void radial_column_squares(const radial_noise& noise, int col_first, int count, _Float16* squares) {
  for (int i = 0; i < count; ++i) {
    squares[i] = square_of_ratio((col_first + i) * noise.step + 1 - noise.center_x, noise.unit);
  }
}

void radial_multiplier_row(const radial_noise& noise, int row, const _Float16* squares, int count,
                           _Float16* __restrict multipliers) {
  const half_lane square_y =
      static_cast<half_lane>(square_of_ratio(row * noise.step + 1 - noise.center_y, noise.unit));
  const half_lane slope = static_cast<half_lane>(noise.slope);
  const half_lane cap = static_cast<half_lane>(noise.cap);
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < count; ++x) {
    multipliers[x] = static_cast<_Float16>(
        radial_multiplier(slope, static_cast<half_lane>(squares[x]), square_y, cap));
  }
}

shrink_gain make_shrink_gain(_Float16 thr, _Float16 scale) {
  return {static_cast<_Float16>(thr / (scale * scale)), scale};
}

bool has_exact_reciprocal(_Float16 scale) {
  for (const _Float16 known : kFrameScales) {
    if (scale == known) return true;
  }
  return false;
}

void shrink_row(const shrink_gain& gain, const _Float16* multipliers, _Float16* coefficients,
                int count) {
  if (has_exact_reciprocal(gain.scale)) {
    shrink_row_with<true>(gain, multipliers, coefficients, count);
  } else {
    shrink_row_with<false>(gain, multipliers, coefficients, count);
  }
}

void shrink_bands(const shrink_band* bands, int band_count, const radial_noise& noise, int rows,
                  int cols) {
  for (int col = 0; col < cols; col += kBlockColumns) {
    const int count = cols - col < kBlockColumns ? cols - col : kBlockColumns;
    shrink_column_block(bands, band_count, noise, rows, cols, col, count);
  }
}
