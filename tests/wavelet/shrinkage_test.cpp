#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/guarded_plane.h"
#include "tests/wavelet/plain_half.h"
#include "tests/wavelet/plain_shrinkage.h"
#include "vorel/wavelet/denoise.h"
#include "wavelet/kernels/shrinkage_rows.h"

namespace {

const _Float16 kSymlet = half_of_bits(0x45D7);
const _Float16 kHaar = half_of_bits(0x49D7);
const _Float16 kHaarLow = half_of_bits(0x4FD7);

_Float16 shrink_one(_Float16 v, _Float16 thr, _Float16 S) {
  const _Float16 multiplier = 1;
  shrink_row(make_shrink_gain(thr, S), &multiplier, &v, 1);
  return v;
}

std::vector<_Float16> all_halves() {
  std::vector<_Float16> numbers;
  for (uint32_t bits = 0; bits < 65536; ++bits) {
    numbers.push_back(half_of_bits(static_cast<uint16_t>(bits)));
  }
  return numbers;
}

TEST(ShrinkageTest, SubbandsEqualThePlainForm) {
  struct Case {
    float thr, A, B;
    int step;
    _Float16 S;
  };
  const Case cases[] = {
      {3640, 0, 3, 8, kSymlet},
      {3640, 3, 5, 8, kHaar},
      {100, 1.5f, 4, 4, kSymlet},
      {-40, 3, 5, 8, kHaarLow},
      {60000, 1.25f, 3.5f, 4, kSymlet},
      {20, 3, 5, 1, static_cast<_Float16>(1.7f)},
      {20, -2, 5, 3, half_of_bits(0x4B00)},
  };
  Denoise denoise;
  for (const Case& c : cases) {
    for (const int cols : {1, 2, 3, 7, 8, 9, 16, 17, 31, 33, 77}) {
      for (const int rows : {1, 2, 3, 20}) {
        SCOPED_TRACE(std::to_string(c.thr) + ", " + std::to_string(c.A) + ": " +
                     std::to_string(cols) + " x " + std::to_string(rows));
        std::mt19937 random(1);
        const size_t count = static_cast<size_t>(rows) * static_cast<size_t>(cols);
        const std::vector<_Float16> data = random_halves(count, -200, 200, random);
        GuardedPlane<_Float16> plane(count);
        std::copy(data.begin(), data.end(), plane.data());
        const _Float16 thr = static_cast<_Float16>(c.thr);
        const _Float16 A = static_cast<_Float16>(c.A);
        const _Float16 B = static_cast<_Float16>(c.B);
        shrinkage_job job = {&denoise, plane.data(), thr, A, B, rows, cols, c.step, 0, c.S};
        shrkFunc(&job);
        ASSERT_EQ(half_bits(std::vector<_Float16>(plane.data(), plane.data() + count)),
                  half_bits(shrink_plainly(data, thr, A, B, rows, cols, c.step, c.S)));
      }
    }
  }
}

// More columns than are worked on at once.
TEST(ShrinkageTest, WideSubbandsEqualThePlainForm) {
  const int cols = 4099;
  std::mt19937 random(2);
  std::vector<_Float16> data = random_halves(3 * cols, -200, 200, random);
  const std::vector<_Float16> want = shrink_plainly(data, 3640, 3, 5, 3, cols, 4, kSymlet);
  Denoise denoise;
  denoise.shrinkage1(data.data(), 3640, 3, 5, 3, cols, 4, 0, kSymlet);
  EXPECT_EQ(half_bits(data), half_bits(want));
}

TEST(ShrinkageTest, EveryCoefficientEqualsThePlainForm) {
  const std::vector<_Float16> numbers = all_halves();
  const std::vector<_Float16> multipliers(numbers.size(), half_of_bits(0x3F00));  // 1.75
  // 0x4B00 (14): the reciprocal in single precision is wrong for some numbers.
  for (const _Float16 S : {kSymlet, kHaar, kHaarLow, half_of_bits(0x4B00), _Float16{1}}) {
    for (const float thr : {0.0f, 36.40625f, 3640.0f}) {
      SCOPED_TRACE(std::to_string(static_cast<float>(S)) + ", " + std::to_string(thr));
      std::vector<_Float16> data = numbers;
      std::vector<_Float16> want;
      for (const _Float16 v : numbers) {
        want.push_back(plain_shrink(v, static_cast<_Float16>(thr), multipliers[0], S));
      }
      shrink_row(make_shrink_gain(static_cast<_Float16>(thr), S), multipliers.data(), data.data(),
                 static_cast<int>(data.size()));
      ASSERT_EQ(half_bits(data), half_bits(want));
    }
  }
}

TEST(ShrinkageTest, ReciprocalsAreExactForTheScalesThatUseThem) {
  for (const _Float16 S : {kSymlet, kHaar, kHaarLow}) {
    EXPECT_TRUE(has_exact_reciprocal(S));
    const float reciprocal = 1.0f / static_cast<float>(S);
    int different = 0;
    for (const _Float16 v : all_halves()) {
      const _Float16 product = static_cast<_Float16>(static_cast<float>(v) * reciprocal);
      different += half_bits(product) != half_bits(PlainHalf(v) / PlainHalf(S));
    }
    EXPECT_EQ(different, 0);
  }
  for (const _Float16 S : {half_of_bits(0x4B00), half_of_bits(0x45D6), half_of_bits(0xC5D7)}) {
    EXPECT_FALSE(has_exact_reciprocal(S));
  }
}

TEST(ShrinkageTest, CoefficientsByHand) {
  // With scale 1 and threshold 16: v^3 / (16 + v^2).
  EXPECT_EQ(half_bits(shrink_one(4, 16, 1)), 0x4000);  // 4 * 16 / 32 = 2, half at the threshold
  EXPECT_EQ(half_bits(shrink_one(-4, 16, 1)), 0xC000);
  EXPECT_EQ(half_bits(shrink_one(1, 16, 1)), 0x2B88);  // 1 / 17 = 0.0588235, in halves 0.05883789
  // 16 + 200^2 rounds to 200^2: what lies far above the threshold passes.
  EXPECT_EQ(half_bits(shrink_one(200, 16, 1)), 0x5A40);
  // Zeros, and numbers whose squares round to zero, become +0.
  EXPECT_EQ(half_bits(shrink_one(0, 16, 1)), 0x0000);
  EXPECT_EQ(half_bits(shrink_one(half_of_bits(0x8000), 16, 1)), 0x0000);
  EXPECT_EQ(half_bits(shrink_one(half_of_bits(0x8800), 16, 1)), 0x0000);  // -2^-13
  // The square of -2^-12 is the smallest half; its share rounds to zero and keeps the sign.
  EXPECT_EQ(half_bits(shrink_one(half_of_bits(0x8C00), 16, 1)), 0x8000);
  EXPECT_EQ(half_bits(shrink_one(0, 0, 1)), 0x0000);
  // Without a threshold a number comes back.
  EXPECT_EQ(half_bits(shrink_one(77, 0, 1)), half_bits(_Float16{77}));
  EXPECT_EQ(half_bits(shrink_one(kNotANumber, 16, kSymlet)), half_bits(kNotANumber));
}

TEST(ShrinkageTest, NoiseGrowsFromTheCentreUpToTheCap) {
  std::vector<_Float16> data(40 * 30, 10);
  Denoise denoise;
  // The coefficient (20, 15) stands one pixel beside the centre.
  denoise.shrinkage1(data.data(), 100, 3, 5, 30, 40, 8, 0, 1);
  const float near_centre = static_cast<float>(data[15 * 40 + 20]);
  EXPECT_EQ(near_centre, 5.0f);  // 10 * 100 / 200
  EXPECT_LT(data[15 * 40 + 30], data[15 * 40 + 20]);
  EXPECT_EQ(half_bits(data[0]), half_bits(shrink_one(10, 600, 1)));  // cap 5 and 1
  // Without the radial model the place does not matter.
  std::fill(data.begin(), data.end(), _Float16{10});
  denoise.shrinkage1(data.data(), 100, 0, 5, 30, 40, 8, 0, 1);
  for (const _Float16 v : data) ASSERT_EQ(v, 5);
}

TEST(ShrinkageTest, RadialMultiplierAtAPosition) {
  Denoise denoise;
  const auto multiplier = [&](int x, int y, float A, float B, int cx, int cy) {
    _Float16 out = 77;
    denoise.radialNoiseEStimateChroma1(x, y, &out, static_cast<_Float16>(A),
                                       static_cast<_Float16>(B), cx, cy);
    return half_bits(out);
  };
  EXPECT_EQ(multiplier(2000, 1500, 3, 5, 2000, 1500), 0x4600);  // min(9, 5) + 1
  EXPECT_EQ(multiplier(0, 0, 3, 5, 2000, 1500), 0x3C00);
  EXPECT_EQ(multiplier(1999, -7, 0, 5, 2000, 1500), 0x3C00);
  EXPECT_EQ(multiplier(-2000, 1500, 1.5f, 40, 2000, 1500), 0x4580);  // 4.5 + 1
  // (50 / 1)^2 / ((100 / 1)^2 + 0) = 0.25; 3 * 1.25 * 0.25 + 1 = 1.9375.
  EXPECT_EQ(multiplier(50, 0, 1.25f, 5, 100, 0), 0x3FC0);
  // The product is not rounded to half precision: 3 * 1.0009765625 * 0.25 + 1 = 1.750732421875 lies
  // halfway between 1.75 and the next half, 1.7509765625, above it by a quarter step.
  EXPECT_EQ(multiplier(50, 0, 1.0009765625f, 5, 100, 0), 0x3F01);
  // No distance at all: 0 / 0 counts as the cap.
  EXPECT_EQ(multiplier(1, 1, 3, 5, 0, 0), 0x4600);
}

}  // namespace
