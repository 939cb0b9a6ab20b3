// The integer forms of the restore rule against the divisions that they stand for, every value.
#include "convert/restore_rule.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "convert/restore_rows.h"

namespace {

TEST(RestoreRule, MultiplicationEqualsTheDivisionForEverySum) {
  for (int total = 1; total <= kMaxNarrowTotal; ++total) {
    interleaving_tuning tuning{};
    tuning.d_Y_upper_thresh = total;
    const restore_plan plan(tuning);
    ASSERT_TRUE(plan.narrow_luma);
    const mean_divisor& by = plan.luma;
    ASSERT_EQ(std::count(by.multiplier, by.multiplier + kRestoreBlock, by.multiplier[0]),
              static_cast<ptrdiff_t>(kRestoreBlock));
    for (int sum = 0; sum <= 255 * total; ++sum) {
      const int expected =
          static_cast<int>(static_cast<float>(sum) / static_cast<float>(total) + 0.5f);
      const uint16_t scaled = static_cast<uint16_t>((sum + by.half) * by.scale);
      ASSERT_EQ(upper_half(scaled, by.multiplier[0]) >> 6, expected) << sum << " / " << total;
    }
  }
}

// Every distance and every bounded saturation, whichever the least one is.
TEST(RestoreRule, SaturationDivisorsEqualTheIntegerDivision) {
  for (int first = saturation_divisors::kLeast; first <= saturation_divisors::kMost; ++first) {
    interleaving_tuning tuning{};
    tuning.d_UV_thresh = 16;
    tuning.cs_lower_thresh = first;
    tuning.cs_upper_thresh = std::min(first + 15, saturation_divisors::kMost);
    const restore_plan plan(tuning);
    ASSERT_TRUE(plan.narrow_chroma) << first;
    for (int scale = first; scale <= tuning.cs_upper_thresh; ++scale) {
      const int i = scale - plan.divisors.first;
      const uint32_t factor = plan.divisors.low[i] | static_cast<uint32_t>(plan.divisors.high[i])
                                                         << 8;
      for (int distance = 0; distance <= 510; ++distance) {
        const int numerator = 64 * distance + scale / 2;
        const int quotient = static_cast<int>((static_cast<uint32_t>(numerator) * factor) >> 16 >>
                                              plan.divisors.shift);
        ASSERT_EQ(std::min(quotient, kMaxNarrowTotal), std::min(numerator / scale, kMaxNarrowTotal))
            << distance << ' ' << scale << ' ' << first;
      }
    }
  }
}

// Every pair of a sample and a rebuilt one, for every threshold that takes the steps.
TEST(RestoreRule, LumaStepsEqualTheMean) {
  for (int upper = 1; upper <= luma_steps::kSteps; ++upper) {
    for (int lower = 0; lower <= upper; ++lower) {
      interleaving_tuning tuning{};
      tuning.d_Y_upper_thresh = upper;
      tuning.d_Y_lower_thresh = lower;
      const restore_plan plan(tuning);
      ASSERT_TRUE(plan.stepped_luma);
      uint8_t low[256];
      uint8_t high[256];
      for (int i = 0; i < 256; ++i) {
        low[i] = static_cast<uint8_t>(i);
        high[i] = 128;
      }
      for (int sample = 0; sample < 256; ++sample) {
        uint8_t luma[256];
        std::fill_n(luma, 256, static_cast<uint8_t>(sample));
        restore_luma_row(luma, low, high, 256, plan);
        for (int i = 0; i < 256; ++i) {
          ASSERT_EQ(luma[i],
                    restore_luma_wide(static_cast<uint8_t>(sample), low[i], 128, upper, lower))
              << sample << ' ' << i << ' ' << upper << ' ' << lower;
        }
      }
    }
  }
}

TEST(RestoreRule, ChromaWeightEqualsTheIntegerDivision) {
  for (int scale = 0; scale < 140000; scale += scale < 600 ? 1 : scale < 65000 ? 97 : 3) {
    for (int distance = 0; distance <= 510; ++distance) {
      const int expected = scale == 0 ? 0 : (64 * distance + scale / 2) / scale;
      for (const int total : {1, 16, 40000}) {
        ASSERT_EQ(chroma_weight(77, distance, scale, scale, static_cast<float>(total)),
                  std::min(expected, total))
            << distance << ' ' << scale;
      }
    }
  }
}

}  // namespace
