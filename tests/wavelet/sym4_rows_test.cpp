#include "wavelet/kernels/sym4_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "tests/support/guarded_plane.h"
#include "tests/wavelet/sym4_plain.h"
#include "wavelet/kernels/half_terms.h"
#include "wavelet/kernels/sym4_rule.h"

namespace {

const _Float16 kUntouched = half_of_bits(0x5A5A);

// A row that ends at an unreadable page.
struct Row {
  explicit Row(const std::vector<_Float16>& values)
      : samples(std::make_unique<GuardedPlane<_Float16>>(values.size())) {
    std::copy(values.begin(), values.end(), samples->data());
  }
  explicit Row(size_t count) : Row(std::vector<_Float16>(count, kUntouched)) {}
  _Float16* data() const { return samples->data(); }
  std::vector<_Float16> values() const { return {data(), data() + samples->size()}; }

  std::unique_ptr<GuardedPlane<_Float16>> samples;
};

// Through no output, whole vectors and every tail, and across the pieces of a long row.
std::vector<int> row_widths() {
  std::vector<int> widths;
  for (int width = 0; width <= 84; ++width) widths.push_back(width);
  for (const int width : {516, 519, 520, 521, 522, 555, 1032, 1036}) widths.push_back(width);
  return widths;
}

TEST(Sym4RowsOfBytes, EqualTheSameNumbersInHalfPrecision) {
  std::mt19937 random(3);
  for (const int width : row_widths()) {
    SCOPED_TRACE(width);
    GuardedPlane<uint8_t> src(width);
    fill_pattern(src.data(), src.size(), Pattern::kRandom, random);
    const Row halves(std::vector<_Float16>(src.data(), src.data() + width));
    const Row low(width / 2), high(width / 2), expected_low(width / 2), expected_high(width / 2);
    sym4_analyse_row(src.data(), low.data(), high.data(), width);
    sym4_analyse_row(halves.data(), expected_low.data(), expected_high.data(), width);
    ASSERT_EQ(half_bits(low.values()), half_bits(expected_low.values()));
    ASSERT_EQ(half_bits(high.values()), half_bits(expected_high.values()));
  }
}

// One sample of 1 brings out every tap, with its sign, at its place.
TEST(Sym4RowsByHand, ImpulseShowsTheTaps) {
  for (const int position : {10, 11}) {
    std::vector<_Float16> src(24, 0);
    src[position] = 1;
    std::vector<_Float16> low(12), high(12);
    sym4_analyse_row(src.data(), low.data(), high.data(), 24);
    const std::vector<uint16_t> low_taps =
        position == 10 ? std::vector<uint16_t>{0x2820, 0xAE5A, 0x3A6E, 0xA796}
                       : std::vector<uint16_t>{0xA274, 0x34C4, 0x37F6, 0xACD9};
    const std::vector<uint16_t> high_taps =
        position == 10 ? std::vector<uint16_t>{0xACD9, 0x37F6, 0x34C4, 0xA274}
                       : std::vector<uint16_t>{0x2796, 0xBA6E, 0x2E5A, 0xA820};
    for (int i = 0; i < 4; ++i) {
      // Sample 10 is tap 0 of output 7, sample 11 is tap 1 of it.
      EXPECT_EQ(half_bits(low[7 - i]), low_taps[i]) << position << ' ' << i;
      EXPECT_EQ(half_bits(high[7 - i]), high_taps[i]) << position << ' ' << i;
    }
  }
}

// Sums that come out otherwise when a product or a partial sum is kept wider.
TEST(Sym4RowsByHand, EveryStepRounds) {
  std::vector<_Float16> src(8, 100);
  std::vector<_Float16> low(4), high(4);
  sym4_analyse_row(src.data(), low.data(), high.data(), 8);
  // 2.962890625 - 7.57421875 = -4.609375; + 49.75 = 45.125 (45.140625 lies between 45.125 and
  // 45.15625, to even); - 80.375 = -35.25; + 29.78125 = -5.46875; + 9.921875 = 4.453125;
  // - 1.2607421875 = 3.19140625 (3.1923828125); - 3.22265625 = -0.03125.
  // Rounded once at the end this is 0, with fused products 2^-6 * 5 / 8.
  EXPECT_EQ(half_bits(high[2]), 0xA800);
  EXPECT_EQ(half_bits(low[2]), 0x586B);  // 141.375

  std::fill(src.begin(), src.end(), _Float16{255});
  sym4_analyse_row(src.data(), low.data(), high.data(), 8);
  EXPECT_EQ(half_bits(low[2]), 0x5DA3);   // 360.75; wide 360.5
  EXPECT_EQ(half_bits(high[2]), 0xAC00);  // -0.0625; wide 0

  const std::vector<_Float16> lows(5, 100), highs(5, 10);
  std::vector<_Float16> out(10);
  sym4_synthesise_row(lows.data(), highs.data(), out.data(), 5);
  EXPECT_EQ(half_bits(out[3]), 0x53F6);  // 63.6875; wide 63.625
  EXPECT_EQ(half_bits(out[4]), 0x54DE);  // 77.875; wide 77.75
}

// Sums that overflow and come back, in one column at a time: no step of a pass may overlook it.
TEST(Sym4Rows, OneColumnOfGreatSamples) {
  constexpr int kWidth = 53;
  const PlainPlane usual(kWidth, kSym4AnalysisRows, 100);
  for (int column = 0; column < kWidth; ++column) {
    SCOPED_TRACE(column);
    PlainPlane src = usual, low = usual, high = usual;
    for (int row = 0; row < kSym4AnalysisRows; ++row) {
      src.at(column, row) = 44000;
      low.at(column, row) = 45504;
      high.at(column, row) = -45504;
    }
    const _Float16 *rows[kSym4AnalysisRows], *lows[kSym4SynthesisRows], *highs[kSym4SynthesisRows];
    for (int i = 0; i < kSym4AnalysisRows; ++i) rows[i] = &src.at(0, i);
    for (int i = 0; i < kSym4SynthesisRows; ++i) {
      lows[i] = &low.at(0, i);
      highs[i] = &high.at(0, i);
    }
    PlainPlane out(kWidth, 4);
    sym4_analyse_rows(rows, &out.at(0, 0), &out.at(0, 1), kWidth);
    sym4_synthesise_rows(lows, highs, &out.at(0, 2), &out.at(0, 3), kWidth);
    const auto down = [column](PlainPlane& plane) -> PlainLine {
      return [&plane, column](int row) { return plane.at(column, row); };
    };
    const PlainLine line = down(src), low_line = down(low), high_line = down(high);
    const _Float16 expected[] = {plain_sum(kPlainLow, 4, line, line),
                                 plain_sum(kPlainHigh, 4, line, line),
                                 plain_sum(kPlainOdd, 2, low_line, high_line),
                                 plain_sum(kPlainEven, 2, low_line, high_line)};
    for (int i = 0; i < 4; ++i)
      ASSERT_EQ(half_bits(out.at(column, i)), half_bits(expected[i])) << i;
  }
}

// Every half that float terms take, and sums on, between and beside the halves that they round to.
TEST(FloatTerms, GiveTheNumbersOfHalfTerms) {
  const auto expect_same = [](float number, _Float16 expected, float from) {
    ASSERT_EQ(number, static_cast<float>(expected)) << from;
  };
  for (uint16_t bits = 0; bits <= half_bits(kGreatestSample); ++bits) {
    const _Float16 sample = half_of_bits(bits);
    const float next = static_cast<float>(half_of_bits(bits + 1));
    for (const float sign : {1.0f, -1.0f}) {
      const float at = sign * static_cast<float>(sample);
      for (const _Float16 tap : {kTap0, kTap1, kTap2, kTap3, kTap4, kTap5, kTap6, kTap7}) {
        const _Float16 product = static_cast<_Float16>(at) * tap;
        expect_same(float_terms::any_product(at, tap), product, at);
        if (sample >= kSmallestSample) expect_same(float_terms::product(at, tap), product, at);
      }
      const float between = (at + sign * next) / 2;
      expect_same(float_terms::round(at), static_cast<_Float16>(at), at);
      if (sample < kSmallestSample) continue;
      for (const float sum : {at, between, sign * next}) {
        for (const float beside : {std::nextafter(sum, 0.0f), sum, std::nextafter(sum, 2 * sum)}) {
          expect_same(float_terms::round(beside), static_cast<_Float16>(beside), beside);
        }
      }
    }
  }
}

}  // namespace
