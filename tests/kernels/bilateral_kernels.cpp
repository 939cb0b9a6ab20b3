#include <algorithm>
#include <cstdlib>

#include "tests/kernels/kernel_list.h"
#include "vorel/filters.h"

namespace {

enum : size_t { kSource, kFiltered };

struct Parameters {
  int span_row;
  int span_col;
  bilateralfiltering_tuning tuning;
};

bilateralfiltering_tuning default_tuning() {
  return {3,  3,
          3,  3,
          7,  {65489, 1375, -5503, 835, -37},
          10, {63, 60, 51, 38, 26, 15, 7, 2, 2, 2, 2, 2, 2, 2, 2, 2}};
}

bilateralfiltering_tuning constant_weight(int32_t weight) {
  bilateralfiltering_tuning tuning{};
  tuning.val_weight_coef[0] = weight;
  return tuning;
}

// Variant 0 is what a frame uses, 1 has weights of all four bytes. Up to 35: spans whose window is
// one part (up to 15), shares its weights in several runs or is cut, with usual, largest and
// wrapping weights. The others: any polynomial.
Parameters polynomial_parameters(int variant) {
  constexpr int kSpans[][2] = {{3, 3},   {0, 0},  {0, 3},  {1, 0},   {2, 5},
                               {15, 15}, {16, 1}, {2, 16}, {33, 20}, {3, 70}};
  bilateralfiltering_tuning tuning = default_tuning();
  if (variant == 0) return {3, 3, tuning};
  if (variant == 1) {
    tuning.val_weight_coef[0] = -tuning.val_weight_coef[0];
    tuning.val_weight_denom_shift = 0;
    return {3, 3, tuning};
  }
  if (variant < 36) {
    const auto& span = kSpans[variant % 10];
    if (variant >= 12) tuning = constant_weight(variant < 24 ? 255 : -1);
    return {span[0], span[1], tuning};
  }
  std::mt19937 random(static_cast<unsigned>(variant));
  tuning.val_delta_th = static_cast<int>(random() % 20) - 4;
  for (int32_t& coefficient : tuning.val_weight_coef) {
    coefficient = static_cast<int32_t>(random()) >> (variant % 3 * 10);
  }
  tuning.val_weight_denom_shift = variant % 4 == 0 ? static_cast<int>(random()) : variant % 24;
  return {1 + variant % 3, 2, tuning};
}

// Stored weights are read as bytes, at thresholds around the table's ends.
Parameters stored_parameters(int variant) {
  constexpr int kThresholds[] = {-300, -1, 0, 1, 7, 14, 15, 16, 17, 31, 255, 256, 300};
  bilateralfiltering_tuning tuning = default_tuning();
  if (variant == 0) return {3, 3, tuning};
  std::mt19937 random(static_cast<unsigned>(variant));
  tuning.val_delta_th = kThresholds[variant - 1];
  for (int32_t& weight : tuning.val_weight) weight = static_cast<int32_t>(random());
  return {2, 3, tuning};
}

// The interior functions take any threshold: 31 needs two tables of weights, 255 none.
Parameters interior_parameters(int variant) {
  constexpr int kThresholds[] = {31, 255, -5, 7, 15, 16, 40, 47, 48, 1000};
  bilateralfiltering_tuning tuning = default_tuning();
  if (variant < 10) {
    tuning = constant_weight(255);
    tuning.val_weight_coef[1] = -1;
  }
  tuning.val_delta_th = kThresholds[variant % 10];
  return {2, 4, tuning};
}

// Powers instead of nested products, 64 bits instead of 32.
int32_t polynomial_weight(const bilateralfiltering_tuning& t, int difference) {
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

int32_t stored_weight(const bilateralfiltering_tuning& t, int difference) {
  const int index = std::min(difference, t.val_delta_th);
  return index < 0 || index > 15 ? 0 : t.val_weight[index] & 0xFF;
}

using RangeWeight = int32_t (*)(const bilateralfiltering_tuning&, int);

int mirrored(int index, int size) {
  if (size == 1) return 0;
  while (index < 0 || index >= size) index = index < 0 ? -index : 2 * size - 2 - index;
  return index;
}

// The interior's width is a multiple of 8; there one half is added in single precision.
bool is_interior(KernelSize size, const Parameters& p, int y, int x) {
  const int width = std::max(0, (size.width - 2 * p.span_col) & ~7);
  const int left = (size.width - width) / 2;
  return y >= p.span_row && y < size.height - p.span_row && x >= left && x < left + width;
}

uint8_t plain_mean(uint32_t value_sum, uint32_t weight_sum, bool interior) {
  const float quotient = static_cast<float>(static_cast<int32_t>(value_sum)) /
                         static_cast<float>(static_cast<int32_t>(weight_sum));
  const double mean = interior ? quotient + 0.5f : double{quotient} + 0.5;
  if (!(mean > 0)) return 0;  // not a number too
  return mean > 255 ? 255 : static_cast<uint8_t>(mean);
}

uint8_t plain_sample(KernelData& data, const Parameters& p, const uint32_t* range, int y, int x) {
  constexpr uint32_t kSpatial[] = {64, 64, 63, 61, 59, 56, 53, 50, 46, 43, 39, 35, 31, 27, 24, 21};
  const uint8_t* src = data.bytes(kSource);
  const int centre = src[y * data.size.width + x];
  uint32_t weight_sum = 1;
  uint32_t value_sum = 0;
  for (int dy = -p.span_row; dy <= p.span_row; ++dy) {
    const uint8_t* row = src + mirrored(y + dy, data.size.height) * data.size.width;
    for (int dx = -p.span_col; dx <= p.span_col; ++dx) {
      const uint32_t sample = row[mirrored(x + dx, data.size.width)];
      const uint32_t weight = range[std::abs(centre - static_cast<int>(sample))] *
                              kSpatial[std::min(std::abs(dy) + std::abs(dx), 15)];
      weight_sum += weight;
      value_sum += weight * sample;
    }
  }
  return plain_mean(value_sum, weight_sum, is_interior(data.size, p, y, x));
}

void filter_plainly(KernelData& data, const Parameters& p, RangeWeight weight, bool interior_only) {
  uint32_t range[256];
  for (int d = 0; d < 256; ++d) range[d] = static_cast<uint32_t>(weight(p.tuning, d));
  for (int y = 0; y < data.size.height; ++y) {
    for (int x = 0; x < data.size.width; ++x) {
      if (interior_only && !is_interior(data.size, p, y, x)) continue;
      data.bytes(kFiltered)[y * data.size.width + x] = plain_sample(data, p, range, y, x);
    }
  }
}

}  // namespace

// Noise of a few levels reaches every entry of the range weights.
void make_bilateral(KernelData& data) {
  data.add_input(data.size.height, data.size.width);
  data.add_output(data.size.height, data.size.width);
  if (data.size.height % 2 != 0) return;
  for (size_t i = 0; i < data.planes[kSource].count(); ++i) {
    uint8_t& sample = data.bytes(kSource)[i];
    sample = static_cast<uint8_t>(sample / 8 + data.random() % 24);
  }
}

void run_bilateral(KernelData& data, KernelStrip) {
  Parameters p = polynomial_parameters(data.variant);
  bilateral_filter(data.bytes(kSource), data.bytes(kFiltered), data.size.height, data.size.width,
                   p.span_row, p.span_col, &p.tuning);
}

void plain_bilateral(KernelData& data, KernelStrip) {
  const Parameters p = polynomial_parameters(data.variant);
  const bool stored = p.tuning.val_delta_th >= 16;
  filter_plainly(data, p, stored ? stored_weight : polynomial_weight, false);
}

void make_bilateral_stored(KernelData& data) { make_bilateral(data); }

void run_bilateral_stored(KernelData& data, KernelStrip) {
  Parameters p = stored_parameters(data.variant);
  bilateral_filter_opt(data.bytes(kSource), data.bytes(kFiltered), data.size.height,
                       data.size.width, p.span_row, p.span_col, &p.tuning);
}

void plain_bilateral_stored(KernelData& data, KernelStrip) {
  filter_plainly(data, stored_parameters(data.variant), stored_weight, false);
}

void make_bilateral_interior(KernelData& data) { make_bilateral(data); }

// By turns with polynomial and stored weights.
void run_bilateral_interior(KernelData& data, KernelStrip) {
  Parameters p = interior_parameters(data.variant);
  const int width = std::max(0, (data.size.width - 2 * p.span_col) & ~7);
  const int left = (data.size.width - width) / 2;
  const auto filter =
      data.size.width % 2 == 0 ? bilateral_filter_center_neon : bilateral_filter_opt_center_neon;
  filter(data.bytes(kSource), data.bytes(kFiltered), data.size.height, data.size.width, p.span_row,
         p.span_row, left, data.size.width - width - left, p.span_row, p.span_col, &p.tuning);
}

void plain_bilateral_interior(KernelData& data, KernelStrip) {
  filter_plainly(data, interior_parameters(data.variant),
                 data.size.width % 2 == 0 ? polynomial_weight : stored_weight, true);
}
