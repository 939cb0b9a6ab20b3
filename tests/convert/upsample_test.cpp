// Worked examples, and what the functions without a record cover; the rule is in the kernel test.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "vorel/convert.h"

namespace {

using Bytes = std::vector<uint8_t>;
constexpr uint8_t kUntouched = 0xA5;

TEST(Upsample, RampBetweenBlackAndWhite) {
  uint8_t src[] = {0, 255};
  const Bytes ramp = {0, 15, 31, 47, 63, 79, 95, 111, 127, 143, 159, 175, 191, 207, 223, 239};
  Bytes luma(2 * 256);
  upsample_y_neon(luma.data(), src, 2, 1);
  EXPECT_EQ(Bytes(luma.begin() + 15 * 32, luma.begin() + 15 * 32 + 16), ramp);
  EXPECT_EQ(Bytes(luma.end() - 16, luma.end()), Bytes(16, 255));
  Bytes chroma(2 * 64);
  upsample_uv420_neon(chroma.data(), src, 1, 2, 1);
  for (size_t row = 0; row < 8; ++row) EXPECT_EQ(chroma[row * 8 + 5], ramp[2 * row]);
}

// Kept: planes in one order, sizes in another.
TEST(Upsample, FunctionsWithOrdersOfTheirOwn) {
  uint8_t src[] = {0, 255};
  Bytes expected(2 * 256), luma(2 * 256);
  EXPECT_EQ(upsample_y_neon(expected.data(), src, 2, 1), 0);
  EXPECT_EQ(y_upsample(luma.data(), src, 1, 2), 0);
  EXPECT_EQ(luma, expected);
  Bytes chroma(2 * 128);
  expected.resize(2 * 128);
  EXPECT_EQ(upsample_uv_neon(expected.data(), src, 2, 1, 2), 0);
  EXPECT_EQ(uv_upsample(src, chroma.data(), 1, 2), 0);
  EXPECT_EQ(chroma, expected);
  EXPECT_EQ(chroma[5], 159);
}

TEST(Upsample, ChromaKernelsCoverTheFirstColumnsOnly) {
  Bytes src(3 * 2, 77);
  for (const bool packed : {false, true}) {
    const size_t rows = packed ? 32 : 16;
    Bytes dst(24 * rows, kUntouched);
    const auto upsample = packed ? upsample_uv_neon : upsample_uv420_neon;
    EXPECT_EQ(upsample(dst.data(), src.data(), 3, 2, 2), 0);
    for (size_t i = 0; i < dst.size(); ++i) ASSERT_EQ(dst[i], i % 24 < 16 ? 77 : kUntouched) << i;
  }
}

TEST(Upsample, EmptyPlanesWriteNothing) {
  uint8_t sample = kUntouched;
  constexpr int kSizes[][3] = {{0, 1, 2}, {1, 0, 2}, {-1, 1, 2}, {1, -1, 2}, {1, 1, -1}};
  for (const auto& [cols, rows, covered] : kSizes) {
    upsample_uv420_neon(&sample, &sample, cols, rows, covered);
    upsample_uv_neon(&sample, &sample, cols, rows, covered);
    if (covered < 0) continue;
    upsample_y_neon(&sample, &sample, cols, rows);
    y_upsample(&sample, &sample, rows, cols);
    uv_upsample(&sample, &sample, rows, cols);
  }
  EXPECT_EQ(sample, kUntouched);
}

}  // namespace
