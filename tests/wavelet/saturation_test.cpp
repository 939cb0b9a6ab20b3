#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/guarded_plane.h"
#include "tests/support/log_capture.h"
#include "tests/wavelet/plain_half.h"
#include "tests/wavelet/plain_saturation.h"
#include "vorel/wavelet/denoise.h"
#include "wavelet/kernels/saturation_rows.h"

namespace {

std::vector<uint8_t> saturate(const Curve& curve, const std::vector<_Float16>& first,
                              const std::vector<_Float16>& second) {
  GuardedPlane<_Float16> one(first.size()), other(second.size());
  std::copy(first.begin(), first.end(), one.data());
  std::copy(second.begin(), second.end(), other.data());
  GuardedPlane<uint8_t> pairs(2 * first.size());
  saturate_row(curve.halves(), one.data(), other.data(), pairs.data(),
               static_cast<int>(first.size()));
  return std::vector<uint8_t>(pairs.data(), pairs.data() + pairs.size());
}

TEST(SaturationTest, EveryPairOfBytesEqualsThePlainForm) {
  std::vector<_Float16> first, second;
  for (int i = 0; i < 65536; ++i) {
    first.push_back(static_cast<_Float16>(i / 256));
    second.push_back(static_cast<_Float16>(i % 256));
  }
  for (const Curve& curve : kCurves) {
    ASSERT_EQ(saturate(curve, first, second), saturate_plainly(curve, first, second))
        << curve.text();
  }
}

// Not-a-number gives 0 and does not count for its partner.
TEST(SaturationTest, EveryHalfEqualsThePlainForm) {
  std::vector<_Float16> numbers;
  for (uint32_t bits = 0; bits < 65536; ++bits) {
    numbers.push_back(half_of_bits(static_cast<uint16_t>(bits)));
  }
  for (const Curve& curve : kCurves) {
    const std::vector<_Float16> others(numbers.size(), static_cast<_Float16>(150.3f));
    ASSERT_EQ(saturate(curve, numbers, others), saturate_plainly(curve, numbers, others))
        << curve.text();
    ASSERT_EQ(saturate(curve, others, numbers), saturate_plainly(curve, others, numbers))
        << curve.text();
  }
}

// Blocks of 128 pairs that lie near neutral leave the curve out: one sample beyond a threshold,
// wherever it stands, brings it back.
TEST(SaturationTest, OneSampleBeyondAThresholdBringsTheCurve) {
  for (const Curve& curve :
       {Curve{40, 10, 65, 40}, Curve{25, -100, 40, 65}, Curve{0, 60, 50, 50}}) {
    for (const float distance : {curve.thr1, curve.thr2, curve.thr1 + 0.0625f, curve.thr2 + 0.0625f,
                                 (curve.thr1 + curve.thr2) / 2, 120.0f}) {
      for (const int place : {0, 1, 126, 127, 128, 255, 256}) {
        for (const float side : {-1.0f, 1.0f}) {
          std::vector<_Float16> samples(257, 131), lone = samples;
          lone[static_cast<size_t>(place)] = static_cast<_Float16>(128 + side * distance);
          SCOPED_TRACE(curve.text() + ": " + std::to_string(side * distance) + " at " +
                       std::to_string(place));
          ASSERT_EQ(saturate(curve, lone, samples), saturate_plainly(curve, lone, samples));
          ASSERT_EQ(saturate(curve, samples, lone), saturate_plainly(curve, samples, lone));
        }
      }
    }
  }
}

// Percentages of every size and sign: the hundredth is taken with a reciprocal.
TEST(SaturationTest, EveryPercentageEqualsThePlainForm) {
  const std::vector<_Float16> first = {128, 129, 131, 60, 218, half_of_bits(0x5801)};
  const std::vector<_Float16> second(first.size(), 128);
  for (uint32_t bits = 0; bits < 65536; ++bits) {
    const _Float16 percentage = half_of_bits(static_cast<uint16_t>(bits));
    const Curve curve = {7, static_cast<float>(percentage), 500, 400};
    uint8_t pairs[12];
    saturate_row(curve.halves(), first.data(), second.data(), pairs, 6);
    ASSERT_EQ(std::vector<uint8_t>(pairs, pairs + 12), saturate_plainly(curve, first, second))
        << bits;
    // Bytes hide the last bits of a gain; the quotient itself must be right.
    const _Float16 hundredth = static_cast<_Float16>(static_cast<float>(percentage) * 0.01f);
    ASSERT_EQ(half_bits(hundredth), half_bits(PlainHalf(percentage) / PlainHalf(100.0))) << bits;
  }
}

TEST(SaturationTest, BytesByHand) {
  const auto byte = [](const Curve& curve, float first, float second) {
    return saturate(curve, {static_cast<_Float16>(first)}, {static_cast<_Float16>(second)})[0];
  };
  const Curve neutral = {0, 0, 65, 40};
  EXPECT_EQ(byte(neutral, 100.4375f, 128), 100);
  EXPECT_EQ(byte(neutral, 100.5f, 128), 101);
  EXPECT_EQ(byte(neutral, 255.4f, 128), 255);
  EXPECT_EQ(byte(neutral, 300, 128), 255);
  EXPECT_EQ(byte(neutral, -0.6f, 128), 0);

  const Curve ramp = {50, 100, 64, 32};
  EXPECT_EQ(byte(ramp, 160, 128), 192);  // 32 away: up to thr2, gain 2
  EXPECT_EQ(byte(ramp, 176, 128), 212);  // 48 away: half way, gain 1.75, 128 + 84
  EXPECT_EQ(byte(ramp, 192, 128), 224);  // 64 away: end of the ramp, gain 1.5
  EXPECT_EQ(byte(ramp, 193, 128), 226);  // beyond: gain 1.5, 128 + 97.5 + 0.5
  EXPECT_EQ(byte(ramp, 138, 28), 143);   // the partner's 100 decide: 128 + 15
  EXPECT_EQ(byte(ramp, 128, 128), 128);
  // Swapped thresholds: the first test comes first.
  EXPECT_EQ(byte({50, 100, 32, 64}, 168, 128), 188);  // 40 away: beyond thr1, gain 1.5
}

// Two bordered planes and a byte plane. Borders hold no numbers.
class SaturationPlanesTest : public testing::Test {
 protected:
  static constexpr uint32_t kPairs = 21;
  static constexpr uint32_t kRows = 11;
  static constexpr uint32_t kPad = 5;
  static constexpr uint32_t kWidth = kPairs + 2 * kPad + 1;
  static constexpr uint32_t kHeight = kRows + 2 * kPad + 1;

  SaturationPlanesTest()
      : samples_{std::vector<_Float16>(kWidth * kHeight, kNotANumber),
                 std::vector<_Float16>(kWidth * kHeight, kNotANumber)},
        bytes_(2 * kPairs * kRows) {
    std::mt19937 random(2);
    for (int i = 0; i < 2; ++i) {
      inner_[i] = random_halves(kPairs * kRows, 0, 255, random);
      for (uint32_t y = 0; y < kRows; ++y) {
        std::copy_n(&inner_[i][y * kPairs], kPairs, &samples_[i][(y + kPad) * kWidth + kPad]);
      }
      planes_[i] = {samples_[i].data(),
                    kHeight,
                    kWidth,
                    static_cast<uint32_t>(i + 1),
                    kPad,
                    kPad,
                    kPairs,
                    kRows,
                    true};
    }
    out_ = {bytes_.data(), kRows, 2 * kPairs, VOREL_PLANE_PAIRS, 0, 0, 0, 0, true};
    clear();
  }

  void clear() { std::fill_n(bytes_.data(), bytes_.size(), uint8_t{99}); }
  std::vector<uint8_t> bytes() const {
    return std::vector<uint8_t>(bytes_.data(), bytes_.data() + bytes_.size());
  }
  int run(Denoise& denoise) {
    const saturation_curve c = curve_.halves();
    return denoise.applySaturation(&planes_[0], &planes_[1], &out_, nullptr, c.param1, c.param2,
                                   c.thr1, c.thr2);
  }
  int run_rows(Denoise& denoise, unsigned begin, unsigned end) {
    const saturation_curve c = curve_.halves();
    return denoise.applySaturation(&planes_[0], &planes_[1], &out_, nullptr, c.param1, c.param2,
                                   c.thr1, c.thr2, begin, end);
  }

  const Curve curve_ = {40, 10, 65, 40};
  std::vector<_Float16> inner_[2];
  std::vector<_Float16> samples_[2];
  GuardedPlane<uint8_t> bytes_;
  buffer planes_[2];
  buffer out_;
};

TEST_F(SaturationPlanesTest, WholePlaneOnThePoolAndOnTheCallingThread) {
  const std::vector<uint8_t> want = saturate_plainly(curve_, inner_[0], inner_[1]);
  ThreadPool pool;
  LogCapture log;
  // A pool without workers refuses jobs.
  for (const int workers : {-1, 0, 3}) {
    Denoise denoise;
    if (workers > 0) ASSERT_EQ(pool.init(workers, 0xFF, 0), 0);
    denoise.setup(kPairs, kRows, kWidth, kHeight, 1, nullptr, workers < 0 ? nullptr : &pool);
    clear();
    log.clear();
    EXPECT_EQ(run(denoise), 0);
    EXPECT_EQ(bytes(), want) << workers;
    EXPECT_EQ(log.count("outRoiX 5, outRoiY 5, outRoiW 21, outRoiH 11, outW 42, outH 11"), 1);
    EXPECT_EQ(log.count_prefix("Denoise::applySaturation: elapsed time "), 1);
    if (workers > 0) pool.deinit();
    denoise.deallocate();
  }
}

TEST_F(SaturationPlanesTest, RowRangesMakeUpTheWhole) {
  const std::vector<uint8_t> want = saturate_plainly(curve_, inner_[0], inner_[1]);
  Denoise denoise;
  denoise.setup(kPairs, kRows, kWidth, kHeight);
  EXPECT_EQ(run_rows(denoise, 4, 4), 0);
  run_rows(denoise, 9, 400);  // rows past the end are no rows
  EXPECT_EQ(bytes()[9 * 2 * kPairs - 1], 99);
  saturation_job job = {&denoise,
                        &planes_[0],
                        &planes_[1],
                        &out_,
                        nullptr,
                        curve_.halves().param1,
                        curve_.halves().param2,
                        curve_.halves().thr1,
                        curve_.halves().thr2,
                        0,
                        4};
  EXPECT_EQ(applySaturationRegionFunc(&job), nullptr);
  EXPECT_EQ(bytes()[4 * 2 * kPairs], 99);
  run_rows(denoise, 4, 9);
  EXPECT_EQ(bytes(), want);
}

TEST_F(SaturationPlanesTest, AddPoint5AddsToWholeRows) {
  Denoise denoise;
  samples_[0][2 * kWidth] = 1;
  samples_[1][3 * kWidth - 1] = 2047;  // 2047.5 rounds to even
  samples_[0][3 * kWidth] = 1;
  samples_[1][2 * kWidth - 1] = 1;
  denoise.AddPoint5(&planes_[0], &planes_[1], 2, 3);
  EXPECT_EQ(samples_[0][2 * kWidth], 1.5f);
  EXPECT_EQ(samples_[1][3 * kWidth - 1], 2048);
  EXPECT_EQ(samples_[0][3 * kWidth], 1);
  EXPECT_EQ(samples_[1][2 * kWidth - 1], 1);
}

}  // namespace
