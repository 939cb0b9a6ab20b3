#include <algorithm>

#include "tests/kernels/kernel_list.h"
#include "tests/kernels/plain_bilateral.h"
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

PlainBilateral plain_form(KernelData& data, const Parameters& p) {
  return {data.bytes(kSource), data.bytes(kFiltered), data.size.height, data.size.width, p.span_row,
          p.span_col};
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
  plain_form(data, p).filter(p.tuning);
}

void make_bilateral_stored(KernelData& data) { make_bilateral(data); }

void run_bilateral_stored(KernelData& data, KernelStrip) {
  Parameters p = stored_parameters(data.variant);
  bilateral_filter_opt(data.bytes(kSource), data.bytes(kFiltered), data.size.height,
                       data.size.width, p.span_row, p.span_col, &p.tuning);
}

void plain_bilateral_stored(KernelData& data, KernelStrip) {
  const Parameters p = stored_parameters(data.variant);
  plain_form(data, p).filter(p.tuning, plain_stored_weight, false);
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
  const Parameters p = interior_parameters(data.variant);
  plain_form(data, p).filter(
      p.tuning, data.size.width % 2 == 0 ? plain_polynomial_weight : plain_stored_weight, true);
}
