#include "vorel/wavelet/denoise.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/faults.h"
#include "tests/support/log_capture.h"
#include "tests/wavelet/plain_half.h"
#include "vorel/wavelet/haar_transform.h"

namespace {

const _Float16 kSymlet = half_of_bits(0x45D7);
const _Float16 kHaar = half_of_bits(0x49D7);
const _Float16 kHaarLow = half_of_bits(0x4FD7);

struct Band {
  int rows;
  int cols;
  std::vector<_Float16> samples;

  size_t count() const { return static_cast<size_t>(rows) * static_cast<size_t>(cols); }
  _Float16& at(int x, int y) { return samples[static_cast<size_t>(y * cols + x)]; }
  buffer record() {
    return {samples.data(),
            static_cast<uint32_t>(rows),
            static_cast<uint32_t>(cols),
            0,
            0,
            0,
            0,
            0,
            true};
  }
};

Band random_band(int cols, int rows, uint32_t seed) {
  std::mt19937 random(seed);
  Band band{rows, cols, {}};
  band.samples = random_halves(band.count(), 300, 700, random);
  return band;
}

// What the low band's denoising is made of, step by step, with all planes zero before.
Band denoise_stepwise(Band band, _Float16 thr, _Float16 A, _Float16 B) {
  Band planes[7];
  buffer records[7];
  for (int i = 0; i < 7; ++i) {
    planes[i] = {band.rows, band.cols, std::vector<_Float16>(band.count(), 0)};
    records[i] = planes[i].record();
  }
  HaarTransform haar;
  EXPECT_TRUE(haar.setup(band.cols, band.rows, 0, nullptr));
  buffer io = band.record();
  const unsigned cols = static_cast<unsigned>(band.cols);
  const unsigned rows = static_cast<unsigned>(band.rows);
  haar.forwardUnHaarRun(&io, records, cols, rows, false, false);
  Denoise denoise;
  for (int i = 0; i < 7; ++i) {
    denoise.shrinkage1(planes[i].samples.data(), thr, A, B, band.rows, band.cols, 8, 0,
                       i == 0 ? kHaarLow : kHaar);
  }
  haar.inverseUnHaarRunAllSubbands(records, &io, cols, rows);
  haar.deallocate();
  return band;
}

// Memory to lend, full of samples that are no numbers.
struct Lent {
  std::vector<_Float16> samples;
  buffer record;
  explicit Lent(size_t bytes) : samples(bytes / 2 + 1, kNotANumber), record{} {
    record.data = samples.data();
    record.height = 1;
    record.width = static_cast<uint32_t>(bytes);
  }
};

TEST(DenoiseTest, LowBandEqualsItsStepsWhereverThePlanesLie) {
  for (const auto& [cols, rows] : {std::pair{1, 1}, {2, 2}, {3, 3}, {40, 1}, {33, 17}, {20, 31}}) {
    SCOPED_TRACE(std::to_string(cols) + " x " + std::to_string(rows));
    const Band source = random_band(cols, rows, 1);
    const Band want = denoise_stepwise(source, 3640, 3, 5);
    const size_t plane = (source.count() * 2 + 7) & ~size_t{7};
    // Nothing lent, room for some planes, for all but one byte, for all.
    for (const size_t bytes : {size_t{0}, 5 * plane, 11 * plane - 1, 11 * plane}) {
      SCOPED_TRACE(bytes);
      Lent lent(bytes);
      Band band = source;
      buffer io = band.record();
      Denoise denoise;
      denoise.haarL2Denoise(&io, bytes > 0 ? &lent.record : nullptr, 3640, 3, 5, nullptr);
      ASSERT_EQ(half_bits(band.samples), half_bits(want.samples));
    }
  }
}

TEST(DenoiseTest, LowBandKeepsItsMeanAndLosesItsNoise) {
  const int cols = 48;
  const int rows = 40;
  std::mt19937 random(2);
  Band band{rows, cols, {}};
  for (size_t i = 0; i < band.count(); ++i) {
    band.samples.push_back(static_cast<_Float16>(500 + static_cast<int>(random() % 21) - 10));
  }
  const Band noisy = band;
  Denoise denoise;
  buffer io = band.record();
  denoise.haarL2Denoise(&io, nullptr, 3640, 0, 3, nullptr);
  const auto spread = [&](Band plane) {
    double sum = 0;
    for (int y = 8; y < rows - 8; ++y) {
      for (int x = 8; x < cols - 8; ++x)
        sum += std::fabs(static_cast<double>(plane.at(x, y)) - 500);
    }
    return sum / ((rows - 16) * (cols - 16));
  };
  EXPECT_GT(spread(noisy), 4.5);
  EXPECT_LT(spread(band), 3.0);
  // Row 0 is not rebuilt.
  for (int x = 0; x < cols; ++x) EXPECT_EQ(band.at(x, 0), noisy.samples[static_cast<size_t>(x)]);
}

// The transform before leaves up to three samples undefined at the low band's edges. They spoil
// only what lies nearest to them, which the border of eight samples covers.
TEST(DenoiseTest, UndefinedEdgesStayWithinTheBorder) {
  const int cols = 41;
  const int rows = 36;
  const auto with_edges = [&](_Float16 edge) {
    Band band = random_band(cols, rows, 3);
    for (int y = 0; y < rows; ++y) {
      for (int x = 0; x < cols; ++x) {
        const bool inside = x >= 3 && x < cols - 2 && y >= 3 && y < rows - 2;
        if (!inside) band.at(x, y) = edge;
      }
    }
    return band;
  };
  Band want = with_edges(0);
  Band bad_edges = with_edges(kNotANumber);
  buffer io = want.record();
  Denoise denoise;
  denoise.haarL2Denoise(&io, nullptr, 3640, 3, 5, nullptr);
  io = bad_edges.record();
  Lent lent(11 * (bad_edges.count() * 2 + 8));
  denoise.haarL2Denoise(&io, &lent.record, 3640, 3, 5, nullptr);
  for (int y = 6; y < rows - 6; ++y) {
    for (int x = 6; x < cols - 6; ++x) {
      ASSERT_EQ(half_bits(bad_edges.at(x, y)), half_bits(want.at(x, y))) << x << ", " << y;
    }
  }
}

TEST(DenoiseTest, ALowBandWithoutMemoryIsLeftAlone) {
  const Band source = random_band(12, 9, 4);
  for (const int nth : {1, 2}) {
    Band band = source;
    buffer io = band.record();
    Denoise denoise;
    LogCapture log;
    const FaultScope fault(FaultScope::Kind::kAllocation, nth);
    denoise.haarL2Denoise(&io, nullptr, 3640, 0, 3, nullptr);
    EXPECT_EQ(fault.fired(), nth == 1);
    EXPECT_EQ(log.count("Denoise::haarL2Denoise, alloc is fail"), nth == 1 ? 1 : 0);
    EXPECT_EQ(half_bits(band.samples) == half_bits(source.samples), nth == 1);
  }
}

TEST(DenoiseTest, AllSubbandsOfAPlane) {
  const _Float16 A = 3;
  const _Float16 B = 5;
  // Level 1 is not always twice level 2, and bands of one level may differ in size.
  const std::pair<int, int> sizes[7] = {{23, 19}, {23, 19}, {23, 19}, {23, 19},
                                        {45, 37}, {46, 37}, {46, 37}};
  Band bands[7], want[7];
  buffer records[7];
  for (int i = 0; i < 7; ++i) {
    bands[i] = random_band(sizes[i].first, sizes[i].second, static_cast<uint32_t>(10 + i));
    want[i] = bands[i];
    records[i] = bands[i].record();
  }
  _Float16 thr[16] = {-3640, 3276, 2548, 2548, 2184, 1000, 500};
  want[0] = denoise_stepwise(want[0], 3640, A, B);
  Denoise plain;
  for (int i = 1; i < 7; ++i) {
    plain.shrinkage1(want[i].samples.data(), thr[i], A, B, want[i].rows, want[i].cols,
                     i < 4 ? 8 : 4, 0, kSymlet);
  }

  LogCapture log;
  Denoise denoise;
  denoise.setup(100, 80, 164, 144, 1, nullptr, nullptr);
  denoise.denoiseChroma1And2HaarRun(records, nullptr, thr, A, B, nullptr);
  denoise.deallocate();
  for (int i = 0; i < 7; ++i)
    EXPECT_EQ(half_bits(bands[i].samples), half_bits(want[i].samples)) << i;
  EXPECT_EQ(thr[0], 3640);
  EXPECT_EQ(log.count_prefix("Denoise::denoiseChroma1And2HaarRun: elapsed time "), 1);
  EXPECT_EQ(log.count_prefix("HaarTransform::forwardUnHaarRun: elapsed time "), 1);
  EXPECT_EQ(log.count_prefix("HaarTransform::inverseUnHaarRunAllSubbands: elapsed time "), 1);
}

}  // namespace
