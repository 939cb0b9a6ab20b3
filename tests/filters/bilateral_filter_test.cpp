// Worked examples of the bilateral filter; the rule is in the kernel test.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "vorel/filters.h"

namespace {

constexpr uint8_t kUntouched = 0x5A;

bilateralfiltering_tuning default_tuning() {
  return {3,  3,
          3,  3,
          7,  {65489, 1375, -5503, 835, -37},
          10, {63, 60, 51, 38, 26, 15, 7, 2, 2, 2, 2, 2, 2, 2, 2, 2}};
}

std::vector<uint8_t> filtered(std::vector<uint8_t> src, int width, int span_row, int span_col,
                              bilateralfiltering_tuning tuning) {
  std::vector<uint8_t> dst(src.size(), kUntouched);
  bilateral_filter(src.data(), dst.data(), static_cast<int>(src.size()) / width, width, span_row,
                   span_col, &tuning);
  return dst;
}

TEST(BilateralFilter, FlatPlaneIsUnchanged) {
  for (const int value : {0, 1, 100, 255}) {
    const std::vector<uint8_t> flat(20 * 13, static_cast<uint8_t>(value));
    EXPECT_EQ(flat, filtered(flat, 20, 3, 3, default_tuning()));
  }
}

TEST(BilateralFilter, SingleBrightSample) {
  std::vector<uint8_t> plane(20 * 20, 100);
  plane[10 * 20 + 10] = 200;
  std::vector<uint8_t> expected(20 * 20, 100);
  // 48 neighbours of weight 2 and 2860 spatial weights, the centre 63 * 64:
  // (806400 + 572000) / (1 + 4032 + 5720) = 141.33
  expected[10 * 20 + 10] = 141;
  EXPECT_EQ(expected, filtered(plane, 20, 3, 3, default_tuning()));
}

// From 16 on the stored weights serve, whatever they hold; a fresh record holds zeros.
TEST(BilateralFilter, ThresholdOfSixteenUsesStoredWeights) {
  const std::vector<uint8_t> flat(9 * 9, 77);
  bilateralfiltering_tuning tuning = default_tuning();
  tuning.val_delta_th = 16;
  EXPECT_EQ(flat, filtered(flat, 9, 3, 3, tuning));
  std::fill(std::begin(tuning.val_weight), std::end(tuning.val_weight), 0);
  EXPECT_EQ(std::vector<uint8_t>(9 * 9, 0), filtered(flat, 9, 3, 3, tuning));
}

TEST(BilateralFilter, EmptyWindowGivesZeros) {
  const std::vector<uint8_t> flat(6 * 40, 99);
  const std::vector<uint8_t> zeros(6 * 40, 0);
  for (const auto& [span_row, span_col] :
       {std::pair{-1, 3}, {3, -1}, {INT32_MIN, 0}, {1 << 30, 0}}) {
    EXPECT_EQ(zeros, filtered(flat, 40, span_row, span_col, default_tuning()));
  }
}

// The middle sample of five, with window and weights such that the sum of weights wraps.
TEST(BilateralFilter, WrappedSums) {
  const auto middle = [](int32_t threshold, uint32_t c1, uint32_t c2,
                         const std::vector<uint8_t>& samples) {
    bilateralfiltering_tuning tuning{};
    tuning.val_delta_th = threshold;
    tuning.val_weight_coef[1] = static_cast<int32_t>(c1);
    tuning.val_weight_coef[2] = static_cast<int32_t>(c2);
    return int{filtered(samples, 5, 0, 2, tuning)[2]};
  };
  constexpr uint32_t k = 1090785345;  // 63 * k = 2^36 - 1, that is -1
  static_assert(63 * k == UINT32_MAX);
  EXPECT_EQ(0, middle(1, k, 0, {0, 1, 1, 1, 1}));  // 0 / 0
  EXPECT_EQ(0, middle(1, k, 0, {2, 1, 1, 1, 1}));  // -2 / 0
  // Weights -k for a difference of 1 and 2k for one of 2: (3 * 1 - 0 * 2) / (1 + 1 - 2)
  EXPECT_EQ(255, middle(2, 0 - 3 * k, 2 * k, {3, 2, 2, 2, 0}));
}

// Weights of 100000 and 50000: (64 * 100000 and twice 64 * 50000) give 6400000 / 12800001, in
// single precision the largest quotient below one half. Adding one half in single precision rounds
// to 1, in double precision it stays below: columns of 0 and 1 in turn become 1 inside, 0 at the
// border.
TEST(BilateralFilter, BorderAddsTheHalfInDoublePrecision) {
  bilateralfiltering_tuning tuning = default_tuning();
  tuning.val_delta_th = 1;
  tuning.val_weight_denom_shift = 0;
  std::fill(std::begin(tuning.val_weight_coef), std::end(tuning.val_weight_coef), 0);
  tuning.val_weight_coef[0] = 100000;
  tuning.val_weight_coef[1] = -50000;
  std::vector<uint8_t> columns(3 * 20);
  for (size_t i = 0; i < columns.size(); ++i) columns[i] = i % 2;
  // 18 columns have their window in the plane, 16 of them are interior: columns 2 to 17.
  std::vector<uint8_t> expected(columns.size());
  for (size_t i = 0; i < columns.size(); ++i) expected[i] = i % 20 >= 2 && i % 20 < 18;
  EXPECT_EQ(expected, filtered(columns, 20, 0, 1, tuning));
}

}  // namespace
