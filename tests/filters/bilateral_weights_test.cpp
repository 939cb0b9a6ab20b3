#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/log_capture.h"
#include "vorel/filters.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

// With a shift of 0 and c1 and c0 only, weight d is c0 + c1 * min(d, threshold).
bilateralfiltering_tuning linear_tuning(int32_t c0, int32_t c1, int32_t threshold) {
  bilateralfiltering_tuning tuning{};
  tuning.val_delta_th = threshold;
  tuning.val_weight_coef[0] = c0;
  tuning.val_weight_coef[1] = c1;
  return tuning;
}

TEST(BilateralWeights, DefaultCoefficients) {
  const LogCapture log;
  bilateralfiltering_tuning tuning{3, 3, 3, 3, 7, {65489, 1375, -5503, 835, -37}, 10, {}};
  update_bilateral_filter_tuning(&tuning);
  EXPECT_THAT(tuning.val_weight, ElementsAre(63, 60, 51, 38, 26, 15, 7, 2, 2, 2, 2, 2, 2, 2, 2, 2));
  EXPECT_THAT(log.lines(), ::testing::IsEmpty());
}

TEST(BilateralWeights, WeightsOutOfRangeAreLoggedAndClamped) {
  const LogCapture log;
  bilateralfiltering_tuning tuning = linear_tuning(300, -45, 7);
  update_bilateral_filter_tuning(&tuning);
  EXPECT_THAT(tuning.val_weight,
              ElementsAre(255, 255, 210, 165, 120, 75, 30, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  std::vector<std::string> expected = {
      "update_bilateral_filter_tuning: val_weight[0] is unsupported value 300"};
  for (int d = 7; d < 16; ++d) {
    expected.push_back("update_bilateral_filter_tuning: val_weight[" + std::to_string(d) +
                       "] is unsupported value -15");
  }
  EXPECT_THAT(log.texts(), ElementsAreArray(expected));
  EXPECT_EQ(10, log.errors());
}

TEST(BilateralWeights, TheLimitsThemselvesAreInRange) {
  const LogCapture log;
  bilateralfiltering_tuning tuning = linear_tuning(255, -17, 15);
  update_bilateral_filter_tuning(&tuning);
  EXPECT_EQ(255, tuning.val_weight[0]);
  EXPECT_EQ(0, tuning.val_weight[15]);
  tuning = linear_tuning(256, 0, 0);
  update_bilateral_filter_tuning(&tuning);
  EXPECT_EQ(16, log.count_containing("is unsupported value 256"));
  EXPECT_EQ(16, log.errors());
}

// The shift counts modulo 32 and rounds down; products wrap.
TEST(BilateralWeights, ShiftAndWrapping) {
  LogCapture log;
  bilateralfiltering_tuning tuning = linear_tuning(0, 1 << 30, 15);
  tuning.val_weight_coef[0] = 1023;
  tuning.val_weight_denom_shift = 42;
  update_bilateral_filter_tuning(&tuning);
  EXPECT_THAT(tuning.val_weight,
              ElementsAre(0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0));
  EXPECT_EQ(1, log.count_containing("val_weight[2] is unsupported value -2097152"));
  log.clear();
  tuning = linear_tuning(-1, 0, 0);
  tuning.val_weight_denom_shift = 31;
  update_bilateral_filter_tuning(&tuning);
  EXPECT_EQ(16, log.count_containing("is unsupported value -1"));
}

TEST(BilateralWeights, NegativeThresholdIsTheOnlyDifference) {
  bilateralfiltering_tuning tuning = linear_tuning(10, -20, -3);
  update_bilateral_filter_tuning(&tuning);
  EXPECT_THAT(tuning.val_weight, Each(70));
}

TEST(BilateralWeights, ThresholdOfSixteenLeavesTheTableAlone) {
  const LogCapture log;
  bilateralfiltering_tuning tuning = linear_tuning(300, 0, 16);
  for (int32_t& weight : tuning.val_weight) weight = 1234;
  update_bilateral_filter_tuning(&tuning);
  EXPECT_THAT(tuning.val_weight, Each(1234));
  ASSERT_EQ(1u, log.lines().size());
  EXPECT_EQ("update_bilateral_filter_tuning: optimized version isn't supported. 16",
            log.texts()[0]);
  EXPECT_EQ(ANDROID_LOG_INFO, log.lines()[0].priority);
  EXPECT_EQ("VOREL", log.lines()[0].tag);
}

}  // namespace
