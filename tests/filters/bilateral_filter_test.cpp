#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "tests/filters/plane_compare.h"
#include "tests/support/guarded_plane.h"
#include "vorel/filters.h"

namespace {

constexpr uint32_t kSeed = 41;
constexpr uint8_t kUntouched = 0x5A;

bilateralfiltering_tuning default_tuning() {
  return {3,  3,
          3,  3,
          7,  {65489, 1375, -5503, 835, -37},
          10, {63, 60, 51, 38, 26, 15, 7, 2, 2, 2, 2, 2, 2, 2, 2, 2}};
}

// The rule, sample by sample. Powers instead of nested products, 64 bits instead of 32.
int32_t plain_polynomial(const bilateralfiltering_tuning& t, int difference) {
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

int32_t plain_stored(const bilateralfiltering_tuning& t, int difference) {
  const int index = std::min(difference, t.val_delta_th);
  return index < 0 || index > 15 ? 0 : t.val_weight[index] & 0xFF;
}

using RangeWeight = int32_t (*)(const bilateralfiltering_tuning&, int);

int mirrored(int index, int size) {
  if (size == 1) return 0;
  while (index < 0 || index >= size) index = index < 0 ? -index : 2 * size - 2 - index;
  return index;
}

struct FilterCase {
  int height;
  int width;
  int span_row;
  int span_col;
  bilateralfiltering_tuning tuning;
};

// Whether a sample is rounded in single precision: the interior, whose width is a multiple of 8.
bool is_interior(const FilterCase& c, int y, int x) {
  const int width = std::max(0, (c.width - 2 * c.span_col) & ~7);
  const int left = (c.width - width) / 2;
  return y >= c.span_row && y < c.height - c.span_row && x >= left && x < left + width;
}

uint8_t plain_mean(uint32_t value_sum, uint32_t weight_sum, bool interior) {
  const float quotient = static_cast<float>(static_cast<int32_t>(value_sum)) /
                         static_cast<float>(static_cast<int32_t>(weight_sum));
  const double mean = interior ? quotient + 0.5f : double{quotient} + 0.5;
  if (!(mean > 0)) return 0;  // not a number too
  return mean > 255 ? 255 : static_cast<uint8_t>(mean);
}

std::vector<uint8_t> filter_plainly(const FilterCase& c, const uint8_t* src, RangeWeight weight) {
  constexpr uint32_t kSpatial[] = {64, 64, 63, 61, 59, 56, 53, 50, 46, 43, 39, 35, 31, 27, 24, 21};
  uint32_t range[256];
  for (int d = 0; d < 256; ++d) range[d] = static_cast<uint32_t>(weight(c.tuning, d));
  std::vector<uint8_t> out;
  for (int y = 0; y < c.height; ++y) {
    for (int x = 0; x < c.width; ++x) {
      const int centre = src[y * c.width + x];
      uint32_t weight_sum = 1;
      uint32_t value_sum = 0;
      for (int dy = -c.span_row; dy <= c.span_row; ++dy) {
        const uint8_t* row = src + mirrored(y + dy, c.height) * c.width;
        for (int dx = -c.span_col; dx <= c.span_col; ++dx) {
          const uint32_t sample = row[mirrored(x + dx, c.width)];
          const uint32_t w = range[std::abs(centre - static_cast<int>(sample))] *
                             kSpatial[std::min(std::abs(dy) + std::abs(dx), 15)];
          weight_sum += w;
          value_sum += w * sample;
        }
      }
      out.push_back(plain_mean(value_sum, weight_sum, is_interior(c, y, x)));
    }
  }
  return out;
}

std::string describe_case(const FilterCase& c, Pattern pattern) {
  return describe("height", c.height, "width", c.width, "span_row", c.span_row, "span_col",
                  c.span_col, "val_delta_th", c.tuning.val_delta_th, "c0",
                  c.tuning.val_weight_coef[0], "pattern", static_cast<int>(pattern), "seed", kSeed);
}

using WholeFilter = decltype(&bilateral_filter);
using CentreFilter = decltype(&bilateral_filter_center_neon);

// Noise of a few levels reaches every entry of the range weights, patterns reach the clamps.
void fill_plane(uint8_t* data, size_t count, Pattern pattern, bool noisy) {
  std::mt19937 random(kSeed);
  fill_pattern(data, count, pattern, random);
  if (!noisy) return;
  for (size_t i = 0; i < count; ++i) data[i] = static_cast<uint8_t>(data[i] / 8 + random() % 24);
}

void expect_plain_result(FilterCase c, WholeFilter filter, RangeWeight weight,
                         Pattern pattern = Pattern::kRandom) {
  const size_t bytes = static_cast<size_t>(c.height * c.width);
  const auto guard = c.width % 2 == 0 ? GuardedBytes::Guard::kEnd : GuardedBytes::Guard::kStart;
  GuardedBytes src(bytes, guard);
  GuardedBytes dst(bytes, guard);
  fill_plane(src.data(), bytes, pattern, c.height % 2 == 0);
  filter(src.data(), dst.data(), c.height, c.width, c.span_row, c.span_col, &c.tuning);
  ASSERT_TRUE(planes_equal(filter_plainly(c, src.data(), weight), dst.data(), c.width,
                           describe_case(c, pattern)));
}

TEST(BilateralFilter, EverySizeFollowsTheRule) {
  const int heights[] = {1, 2, 3, 4, 6, 17, 33};
  for (int width = 1; width <= 65; ++width) {
    for (const Pattern pattern : kAllPatterns) {
      const int height = heights[(width + static_cast<int>(pattern)) % 7];
      ASSERT_NO_FATAL_FAILURE(expect_plain_result({height, width, 3, 3, default_tuning()},
                                                  bilateral_filter, plain_polynomial, pattern));
    }
  }
  for (const auto& [height, width] : {std::pair{67, 120}, {68, 45}, {97, 250}, {5, 92}, {4, 93}}) {
    ASSERT_NO_FATAL_FAILURE(expect_plain_result({height, width, 3, 3, default_tuning()},
                                                bilateral_filter, plain_polynomial));
  }
}

// Spans up to 15 are one part of the window, 31 x 31 taps share their weights in runs of 257;
// beyond that the window is cut, and the plane's images repeat.
TEST(BilateralFilter, EverySpanFollowsTheRule) {
  bilateralfiltering_tuning largest_byte{};
  largest_byte.val_weight_coef[0] = 255;
  bilateralfiltering_tuning all_ones{};
  all_ones.val_weight_coef[0] = -1;
  for (const auto& [span_row, span_col] :
       {std::pair{0, 0}, {0, 3}, {1, 0}, {2, 5}, {15, 15}, {16, 1}, {2, 16}, {33, 20}, {3, 70}}) {
    for (const auto& [height, width] : {std::pair{1, 1}, {2, 5}, {5, 2}, {9, 37}, {40, 13}}) {
      for (const auto& tuning : {default_tuning(), largest_byte, all_ones}) {
        ASSERT_NO_FATAL_FAILURE(expect_plain_result({height, width, span_row, span_col, tuning},
                                                    bilateral_filter, plain_polynomial));
      }
    }
  }
}

TEST(BilateralFilter, AnyPolynomialFollowsTheRule) {
  std::mt19937 random(kSeed);
  for (int i = 0; i < 60; ++i) {
    bilateralfiltering_tuning tuning = default_tuning();
    tuning.val_delta_th = static_cast<int>(random() % 20) - 4;
    for (int32_t& coefficient : tuning.val_weight_coef) {
      coefficient = static_cast<int32_t>(random()) >> (i % 3 * 10);
    }
    tuning.val_weight_denom_shift = i % 4 == 0 ? static_cast<int>(random()) : i % 24;
    const bool stored = tuning.val_delta_th >= 16;
    ASSERT_NO_FATAL_FAILURE(expect_plain_result({9 + i % 2, 37, 1 + i % 3, 2, tuning},
                                                bilateral_filter,
                                                stored ? plain_stored : plain_polynomial));
  }
}

TEST(BilateralFilter, AnyStoredWeightsFollowTheRule) {
  std::mt19937 random(kSeed);
  for (const int threshold : {-300, -1, 0, 1, 7, 14, 15, 16, 17, 31, 255, 256, 300}) {
    bilateralfiltering_tuning tuning = default_tuning();
    tuning.val_delta_th = threshold;
    for (int32_t& weight : tuning.val_weight) weight = static_cast<int32_t>(random());
    for (const int height : {7, 8}) {
      ASSERT_NO_FATAL_FAILURE(
          expect_plain_result({height, 45, 2, 3, tuning}, bilateral_filter_opt, plain_stored));
    }
  }
}

bilateralfiltering_tuning falling_weights() {
  bilateralfiltering_tuning tuning{};
  tuning.val_weight_coef[0] = 255;
  tuning.val_weight_coef[1] = -1;
  return tuning;
}

// The interior functions write their area only, read inside the plane only, and take any threshold.
TEST(BilateralFilter, InteriorFollowsTheRule) {
  for (const auto& [filter, weight] :
       {std::pair<CentreFilter, RangeWeight>{bilateral_filter_center_neon, plain_polynomial},
        {bilateral_filter_opt_center_neon, plain_stored}}) {
    for (const int threshold : {-5, 7, 15, 16, 40, 47, 48, 200, 255, 1000}) {
      FilterCase c{21, 60, 2, 4, threshold % 8 == 0 ? default_tuning() : falling_weights()};
      c.tuning.val_delta_th = threshold;
      const size_t bytes = static_cast<size_t>(c.height * c.width);
      GuardedBytes src(bytes);
      std::vector<uint8_t> dst(bytes, kUntouched);
      fill_plane(src.data(), bytes, Pattern::kRandom, false);
      std::vector<uint8_t> expected = filter_plainly(c, src.data(), weight);
      const int top = 2, bottom = 3, left = 4, right = 8;
      for (int y = 0; y < c.height; ++y) {
        for (int x = 0; x < c.width; ++x) {
          if (y < top || y >= c.height - bottom || x < left || x >= c.width - right) {
            expected[static_cast<size_t>(y * c.width + x)] = kUntouched;
          }
        }
      }
      filter(src.data(), dst.data(), c.height, c.width, top, bottom, left, right, c.span_row,
             c.span_col, &c.tuning);
      ASSERT_TRUE(planes_equal(expected, dst.data(), c.width, describe_case(c, Pattern::kRandom)));
    }
  }
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
