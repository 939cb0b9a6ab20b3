#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "tuning/tuning.h"

namespace {

std::pair<int, int> indices(int value, const std::vector<int>& table) {
  const uint64_t packed = get_indices(value, table.data(), static_cast<int>(table.size()));
  return {static_cast<int>(packed & 0xFFFFFFFFu), static_cast<int>(packed >> 32)};
}

std::pair<int, int> at(int lower, int upper) { return {lower, upper}; }

cnr_tuning defaults() {
  cnr_tuning tuning{};
  set_default_tuning(&tuning);
  return tuning;
}

// One integer and one float value between two levels: everything else follows the same way.
struct Selected {
  int32_t integer;
  float real;
};
Selected select(std::vector<int> levels, std::vector<int> integers, std::vector<float> reals,
                int noise_index) {
  cnr_tuning tuning = defaults();
  tuning.NILevelNum = static_cast<int32_t>(levels.size());
  std::copy(levels.begin(), levels.end(), tuning.NILevel);
  std::copy(integers.begin(), integers.end(), tuning.interleaving_tuning.cs_upper_thresh_table);
  std::copy(reals.begin(), reals.end(), tuning.mfd_uv_tuning.denoiseThrChroma2Table);
  select_tuning(&tuning, noise_index);
  return {tuning.interleaving_tuning.cs_upper_thresh, tuning.mfd_uv_tuning.denoiseThrChroma[2]};
}

int32_t select_int(std::vector<int> levels, std::vector<int> integers, int noise_index) {
  return select(std::move(levels), std::move(integers), {}, noise_index).integer;
}

float select_real(std::vector<int> levels, std::vector<float> reals, int noise_index) {
  return select(std::move(levels), {}, std::move(reals), noise_index).real;
}

uint32_t bits(float value) {
  uint32_t result;
  std::memcpy(&result, &value, sizeof(result));
  return result;
}

}  // namespace

TEST(GetIndices, BracketsTheValue) {
  const std::vector<int> levels = {100,  107,  160,  320,   640,   1280,
                                   2560, 5120, 7680, 10240, 20480, 40960};
  EXPECT_EQ(indices(INT_MIN, levels), at(0, 0));
  EXPECT_EQ(indices(50, levels), at(0, 0));
  EXPECT_EQ(indices(40960, levels), at(11, 11));
  EXPECT_EQ(indices(INT_MAX, levels), at(11, 11));
  for (int i = 0; i < 12; ++i) {
    EXPECT_EQ(indices(levels[i], levels), at(i, i));
    if (i > 0) EXPECT_EQ(indices(levels[i] - 1, levels), at(i - 1, i));
    if (i < 11) EXPECT_EQ(indices(levels[i] + 1, levels), at(i, i + 1));
  }
}

TEST(GetIndices, TakesAnyNumberOfLevels) {
  EXPECT_EQ(indices(5, {10}), at(0, 0));
  EXPECT_EQ(indices(15, {10}), at(0, 0));
  EXPECT_EQ(indices(15, {10, 20}), at(0, 1));
  EXPECT_EQ(indices(20, {10, 20}), at(1, 1));
  EXPECT_EQ(indices(15, {10, 20, 30}), at(0, 1));
  EXPECT_EQ(indices(25, {10, 20, 30}), at(1, 2));
  const int table[] = {10, 20};
  for (const int count : {0, -1, INT_MIN}) {
    EXPECT_EQ(get_indices(5, table, count), 0u);
    EXPECT_EQ(get_indices(15, table, count), 0u);
  }
}

// Bisection as it stands: no order, no promise, but always two indices inside the table.
TEST(GetIndices, StaysInsideTablesWithoutOrder) {
  EXPECT_EQ(indices(200, {100, 200, 200, 300}), at(1, 1));
  EXPECT_EQ(indices(250, {100, 300, 200, 400}), at(0, 1));
  std::mt19937 random(7);
  for (int round = 0; round < 20000; ++round) {
    std::vector<int> table(1 + random() % 12);
    for (int& level : table) level = static_cast<int>(random() % 9);
    const auto [lower, upper] = indices(static_cast<int>(random() % 9), table);
    ASSERT_GE(lower, 0);
    ASSERT_LE(lower, upper);
    ASSERT_LT(upper, static_cast<int>(table.size()));
    ASSERT_LE(upper - lower, 1);
  }
}

TEST(SelectTuning, InterpolatesBetweenLevels) {
  // 200 lies a quarter of the way from 160 to 320.
  const Selected quarter = select({160, 320}, {48, 40}, {70.0f, 60.0f}, 200);
  EXPECT_EQ(quarter.integer, 46);
  EXPECT_EQ(quarter.real, 67.5f);
  // 103 lies 3/7 of the way from 100 to 107: 4 + 6 * 3/7 = 6.57.
  EXPECT_EQ(select_int({100, 107}, {4, 10}, 103), 6);
  // Truncation is toward zero, not down: -2.5, 2.5, -0.5.
  EXPECT_EQ(select_int({0, 2}, {-3, -2}, 1), -2);
  EXPECT_EQ(select_int({0, 2}, {2, 3}, 1), 2);
  EXPECT_EQ(select_int({0, 2}, {-1, 0}, 1), 0);
}

TEST(SelectTuning, TakesTheLevelsOwnValuesOnThem) {
  cnr_tuning tuning = defaults();
  for (int i = 0; i < 12; ++i) {
    tuning.interleaving_tuning.d_UV_thresh_table[i] = 10 + i;
    tuning.mfd_uv_tuning.CSatThr1Table[i] = 0.1f * static_cast<float>(i);
  }
  const auto expect_level = [&](int noise_index, int level) {
    select_tuning(&tuning, noise_index);
    EXPECT_EQ(tuning.interleaving_tuning.d_UV_thresh, 10 + level) << noise_index;
    EXPECT_EQ(tuning.mfd_uv_tuning.CSatThr1, 0.1f * static_cast<float>(level)) << noise_index;
  };
  expect_level(INT_MIN, 0);
  expect_level(50, 0);
  expect_level(100, 0);
  expect_level(107, 1);
  expect_level(40960, 11);
  expect_level(100000, 11);
  expect_level(INT_MAX, 11);
}

TEST(SelectTuning, SetsEveryCurrentValueFromItsTable) {
  cnr_tuning tuning = defaults();
  interleaving_tuning& i = tuning.interleaving_tuning;
  mfd_uv_tuning& m = tuning.mfd_uv_tuning;
  int next = 1;
  for (int32_t* table : {i.d_Y_upper_thresh_table, i.d_Y_lower_thresh_table, i.d_UV_thresh_table,
                         i.cs_upper_thresh_table, i.cs_lower_thresh_table}) {
    table[2] = 100 * next;
    table[3] = 100 * next++ + 4;
  }
  for (float* table : {m.radialModeTable, m.denoiseThrChroma0Table, m.denoiseThrChroma1Table,
                       m.denoiseThrChroma2Table, m.denoiseThrChroma3Table, m.denoiseThrChroma4Table,
                       m.CSatParam1Table, m.CSatParam2Table, m.CSatThr1Table, m.CSatThr2Table}) {
    table[2] = 100.0f * static_cast<float>(next);
    table[3] = 100.0f * static_cast<float>(next++) + 4.0f;
  }
  const cnr_tuning before = tuning;
  select_tuning(&tuning, 200);
  EXPECT_EQ(i.d_Y_upper_thresh, 101);
  EXPECT_EQ(i.d_Y_lower_thresh, 201);
  EXPECT_EQ(i.d_UV_thresh, 301);
  EXPECT_EQ(i.cs_upper_thresh, 401);
  EXPECT_EQ(i.cs_lower_thresh, 501);
  EXPECT_EQ(m.radialMode, 601);
  for (int k = 0; k < 5; ++k) EXPECT_EQ(m.denoiseThrChroma[k], 701 + 100 * k);
  EXPECT_EQ(m.CSatParam1, 1201);
  EXPECT_EQ(m.CSatParam2, 1301);
  EXPECT_EQ(m.CSatThr1, 1401);
  EXPECT_EQ(m.CSatThr2, 1501);

  // Nothing else moves.
  cnr_tuning rest = tuning;
  std::memcpy(&rest.interleaving_tuning, &before.interleaving_tuning, 5 * sizeof(int32_t));
  std::memcpy(&rest.mfd_uv_tuning.radialMode, &before.mfd_uv_tuning.radialMode, 10 * sizeof(float));
  EXPECT_EQ(std::memcmp(&rest, &before, sizeof(rest)), 0);
}

// Each result changes when the steps are computed another way.
TEST(SelectTuning, RoundsEveryStep) {
  // The difference in single precision, the rest in double: a difference in double, all of it in
  // single precision, or weights of both ends give other last bits.
  EXPECT_EQ(bits(select_real({0, 3}, {10000.0f, 0.6f}, 2)), bits(3333.733154296875f));
  EXPECT_EQ(bits(select_real({0, 10}, {7000.0f, 33.3f}, 9)), bits(729.9698486328125f));
  // 1/3 * -3 is rounded to -1 before 1 is added; fused, 2^-54 would remain.
  EXPECT_EQ(bits(select_real({0, 3}, {1.0f, -2.0f}, 1)), bits(0.0f));
  // 5/7 * -7000000 is rounded to -5000000; fused, a little less than 1 would remain.
  EXPECT_EQ(select_int({0, 7}, {5000001, -1999999}, 5), 1);
  // 1/49 * 49 is the number below 1; in single precision it would be 1.
  EXPECT_EQ(select_int({0, 49}, {0, 49}, 1), 0);
  EXPECT_EQ(select_int({0, 49}, {5, 54}, 1), 6);  // the sum with 5 rounds it up
}

TEST(SelectTuning, CannotDivideByZero) {
  EXPECT_EQ(select_int({100, 200, 200, 300}, {1, 2, 3, 4}, 200), 2);  // equal neighbours
  const Selected one = select({10}, {7}, {1.5f}, INT_MAX);
  EXPECT_EQ(one.integer, 7);
  EXPECT_EQ(one.real, 1.5f);
  EXPECT_EQ(select_int({INT_MIN, INT_MAX}, {0, 1000}, 0), 500);  // the longest distance
}

TEST(SelectTuning, WrapsAndSaturates) {
  // 0 - INT_MIN wraps to INT_MIN: half of it below INT_MIN.
  EXPECT_EQ(select_int({0, 2}, {INT_MIN, 0}, 1), INT_MIN);
  // -2 - INT_MAX wraps to INT_MAX: half of it above INT_MAX.
  EXPECT_EQ(select_int({0, 2}, {INT_MAX, -2}, 1), INT_MAX);
  // INT_MAX - (INT_MIN + 8) wraps to -9: four below.
  EXPECT_EQ(select_int({0, 2}, {INT_MIN + 8, INT_MAX}, 1), INT_MIN + 4);
}

TEST(SelectTuning, CarriesInfinity) {
  const float infinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(select_real({0, 2}, {infinity, 1.0f}, 0), infinity);
  EXPECT_EQ(select_real({0, 2}, {1.0f, infinity}, 1), infinity);
  EXPECT_TRUE(std::isnan(select_real({0, 2}, {infinity, infinity}, 1)));
}

TEST(SelectTuning, TakesAnyNumberOfLevels) {
  for (const int levels : {0, -1, INT_MIN}) {
    cnr_tuning tuning = defaults();
    tuning.NILevelNum = levels;
    tuning.interleaving_tuning.d_UV_thresh_table[0] = 99;
    select_tuning(&tuning, 40960);
    EXPECT_EQ(tuning.interleaving_tuning.d_UV_thresh, 99);
  }
  for (const int levels : {12, 13, INT_MAX}) {
    cnr_tuning tuning = defaults();
    tuning.NILevelNum = levels;
    tuning.interleaving_tuning.d_UV_thresh_table[11] = 98;
    select_tuning(&tuning, INT_MAX);
    EXPECT_EQ(tuning.interleaving_tuning.d_UV_thresh, 98);
  }
}
