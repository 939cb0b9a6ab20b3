// The bilateral filter's rule, sample by sample.
#ifndef VOREL_TESTS_KERNELS_PLAIN_BILATERAL_H_
#define VOREL_TESTS_KERNELS_PLAIN_BILATERAL_H_

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "vorel/tuning.h"

// Powers instead of nested products, 64 bits instead of 32.
inline int32_t plain_polynomial_weight(const bilateralfiltering_tuning& t, int difference) {
  const int64_t x = std::min(difference, t.val_delta_th);
  uint64_t sum = 0;
  uint64_t power = 1;
  for (const int32_t coefficient : t.val_weight_coef) {
    sum += static_cast<uint64_t>(int64_t{coefficient}) * power;
    power *= static_cast<uint64_t>(x);
  }
  const int64_t value = static_cast<int32_t>(static_cast<uint32_t>(sum));
  const int64_t divisor = int64_t{1} << (t.val_weight_denom_shift & 31);
  return static_cast<int32_t>((value - ((value % divisor) + divisor) % divisor) / divisor);
}

inline int32_t plain_stored_weight(const bilateralfiltering_tuning& t, int difference) {
  const int index = std::min(difference, t.val_delta_th);
  return index < 0 || index > 15 ? 0 : t.val_weight[index] & 0xFF;
}

struct PlainBilateral {
  const uint8_t* src;
  uint8_t* dst;
  int height;
  int width;
  int span_row;
  int span_col;

  // Weights that are given for each difference; with `interior_only` the border is left alone.
  template <typename Weight>
  void filter(const bilateralfiltering_tuning& tuning, Weight weight, bool interior_only) const {
    uint32_t range[256];
    for (int d = 0; d < 256; ++d) range[d] = static_cast<uint32_t>(weight(tuning, d));
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        if (interior_only && !is_interior(y, x)) continue;
        dst[y * width + x] = sample(range, y, x);
      }
    }
  }

  // As a frame's planes are filtered.
  void filter(const bilateralfiltering_tuning& tuning) const {
    filter(tuning, tuning.val_delta_th >= 16 ? plain_stored_weight : plain_polynomial_weight,
           false);
  }

 private:
  static int mirrored(int index, int size) {
    if (size == 1) return 0;
    while (index < 0 || index >= size) index = index < 0 ? -index : 2 * size - 2 - index;
    return index;
  }

  // The interior's width is a multiple of 8; there one half is added in single precision.
  bool is_interior(int y, int x) const {
    const int inner = std::max(0, (width - 2 * span_col) & ~7);
    const int left = (width - inner) / 2;
    return y >= span_row && y < height - span_row && x >= left && x < left + inner;
  }

  static uint8_t mean_of(uint32_t value_sum, uint32_t weight_sum, bool interior) {
    const float quotient = static_cast<float>(static_cast<int32_t>(value_sum)) /
                           static_cast<float>(static_cast<int32_t>(weight_sum));
    const double mean = interior ? quotient + 0.5f : double{quotient} + 0.5;
    if (!(mean > 0)) return 0;  // not a number too
    return mean > 255 ? 255 : static_cast<uint8_t>(mean);
  }

  uint8_t sample(const uint32_t* range, int y, int x) const {
    constexpr uint32_t kSpatial[] = {64, 64, 63, 61, 59, 56, 53, 50,
                                     46, 43, 39, 35, 31, 27, 24, 21};
    const int centre = src[y * width + x];
    uint32_t weight_sum = 1;
    uint32_t value_sum = 0;
    for (int dy = -span_row; dy <= span_row; ++dy) {
      const uint8_t* row = src + mirrored(y + dy, height) * width;
      for (int dx = -span_col; dx <= span_col; ++dx) {
        const uint32_t value = row[mirrored(x + dx, width)];
        const uint32_t weight = range[std::abs(centre - static_cast<int>(value))] *
                                kSpatial[std::min(std::abs(dy) + std::abs(dx), 15)];
        weight_sum += weight;
        value_sum += weight * value;
      }
    }
    return mean_of(value_sum, weight_sum, is_interior(y, x));
  }
};

#endif  // VOREL_TESTS_KERNELS_PLAIN_BILATERAL_H_
