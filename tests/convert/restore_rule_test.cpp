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
    tuning.d_UV_thresh = total;
    const RestorePlan plan(tuning);
    ASSERT_TRUE(plan.narrow_chroma);
    const MeanDivisor& by = plan.chroma;
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
