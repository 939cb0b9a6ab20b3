#include "vorel/wavelet/haar_transform.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/log_capture.h"
#include "tests/wavelet/plain_haar.h"

namespace {

const int kWidths[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 18, 19, 20, 31, 32, 33, 50};
const int kHeights[] = {1, 2, 3, 4, 5, 6, 9};

template <typename Body>
void for_each_size(Body body) {
  for (const int width : kWidths) {
    for (const int height : kHeights) {
      SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
      body(width, height);
    }
  }
}

TEST(HaarTransformTest, AnalysisEqualsThePlainForm) {
  HaarTransform haar;
  for (const PlainSplit& split : kSplits) {
    SCOPED_TRACE(split.name);
    for_each_size([&](int width, int height) {
      for (const Samples kind : {Samples::kChroma, Samples::kSignedZeros}) {
        Plane src = random_plane(width, height, 1, kind);
        Plane lo(width, height), hi(width, height);
        Plane plain_lo(width, height), plain_hi(width, height);
        (haar.*split.method)(src.data(), lo.data(), hi.data(), width, height);
        split_plainly(split, src, plain_lo, plain_hi);
        ASSERT_EQ(lo.bits(), plain_lo.bits());
        ASSERT_EQ(hi.bits(), plain_hi.bits());
      }
    });
  }
}

TEST(HaarTransformTest, SynthesisEqualsThePlainForm) {
  HaarTransform haar;
  for (const PlainJoin& join : kJoins) {
    SCOPED_TRACE(join.name);
    for_each_size([&](int width, int height) {
      for (const Samples kind : {Samples::kChroma, Samples::kSignedZeros}) {
        Plane lo = random_plane(width, height, 2, kind), hi = random_plane(width, height, 3, kind);
        Plane out(width, height), plain(width, height);
        (haar.*join.method)(lo.data(), hi.data(), out.data(), width, height);
        join_plainly(join, lo, hi, plain);
        ASSERT_EQ(out.bits(), plain.bits());
      }
    });
  }
}

TEST(HaarTransformTest, BytesGiveWhatTheSameNumbersGive) {
  HaarTransform haar;
  for_each_size([&](int width, int height) {
    std::mt19937 random(4);
    GuardedPlane<uint8_t> pixels(static_cast<size_t>(width) * height);
    fill_pattern(pixels.data(), pixels.size(), Pattern::kRandom, random);
    Plane numbers(width, height);
    std::copy_n(pixels.data(), pixels.size(), numbers.data());
    Plane lo(width, height), hi(width, height), byte_lo(width, height), byte_hi(width, height);
    haar.fwt(numbers.data(), lo.data(), hi.data(), width, height);
    haar.fwtFirstStep(pixels.data(), byte_lo.data(), byte_hi.data(), width, height);
    ASSERT_EQ(byte_lo.bits(), lo.bits());
    ASSERT_EQ(byte_hi.bits(), hi.bits());
    haar.fwtL2Dir(numbers.data(), lo.data(), hi.data(), width, height);
    haar.fwtL2DirPixel(pixels.data(), byte_lo.data(), byte_hi.data(), width, height);
    ASSERT_EQ(byte_lo.bits(), lo.bits());
    ASSERT_EQ(byte_hi.bits(), hi.bits());
  });
}

TEST(HaarTransformTest, ConstantPlaneByHand) {
  HaarTransform haar;
  Plane src(6, 4), lo(6, 4), hi(6, 4);
  src.fill(100);
  // 0.70703125 * 100 = 70.703125 rounds to 70.6875; twice that is 141.375.
  haar.fwt(src.data(), lo.data(), hi.data(), 6, 4);
  EXPECT_EQ(half_bits(lo.at(0, 0)), 0x586B);
  EXPECT_EQ(half_bits(hi.at(0, 0)), 0x0000);
  EXPECT_EQ(half_bits(lo.at(5, 3)), 0x546B);
  EXPECT_EQ(half_bits(hi.at(5, 3)), 0xD46B);

  // Columns 0 to 4 take part: 3, 4, 4, 3, 2 of them reach the outputs. 7 is what was there before.
  lo.fill(7);
  hi.fill(7);
  haar.fwtL2Dir(src.data(), lo.data(), hi.data(), 6, 4);
  const int low[] = {150, 200, 200, 150, 100, 7};
  const int high[] = {50, 0, 0, -50, -100, 7};
  for (int x = 0; x < 6; ++x) {
    EXPECT_EQ(lo.at(x, 2), low[x]) << x;
    EXPECT_EQ(hi.at(x, 2), high[x]) << x;
    EXPECT_EQ(lo.at(x, 3), 7) << x;
  }
  // All rows take part here; the last one gets no output.
  lo.fill(7);
  hi.fill(7);
  haar.fwtVertL2Dir(src.data(), lo.data(), hi.data(), 6, 4);
  const int low_rows[] = {150, 200, 150, 7};
  const int high_rows[] = {50, 0, -50, 7};
  for (int y = 0; y < 4; ++y) {
    EXPECT_EQ(lo.at(5, y), low_rows[y]) << y;
    EXPECT_EQ(hi.at(5, y), high_rows[y]) << y;
  }
}

TEST(HaarTransformTest, SynthesisByHand) {
  HaarTransform haar;
  Plane lo(5, 5), hi(5, 5), out(5, 5);
  hi.fill(0);
  // Two products of 141.375 and 0.70703125, 99.9375 each, halved; column 0 has one.
  lo.fill(static_cast<_Float16>(141.375f));
  haar.iwt(lo.data(), hi.data(), out.data(), 5, 5);
  EXPECT_EQ(half_bits(out.at(0, 4)), 0x523F);
  EXPECT_EQ(half_bits(out.at(4, 4)), 0x563F);

  lo.fill(1);
  out.fill(7);
  haar.iwtL2Dir(lo.data(), hi.data(), out.data(), 5, 5);
  for (int y = 1; y < 5; ++y) {
    EXPECT_EQ(out.at(0, y), 7);
    EXPECT_EQ(half_bits(out.at(1, y)), 0x3200);  // 3 * 0.5 / 8
    EXPECT_EQ(half_bits(out.at(3, y)), 0x3400);  // 4 * 0.5 / 8
    EXPECT_EQ(out.at(4, y), 7);
  }
  EXPECT_EQ(out.at(2, 0), 7);
  out.fill(7);
  haar.iwtVertL2Dir(lo.data(), hi.data(), out.data(), 5, 5);
  EXPECT_EQ(half_bits(out.at(2, 0)), 0x3A00);  // 3 * 0.5 / 2
  EXPECT_EQ(half_bits(out.at(2, 2)), 0x3C00);
  EXPECT_EQ(out.at(2, 3), 7);
  EXPECT_EQ(out.at(2, 4), 7);

  hi.fill(8);  // 8 * 0.70703125 = 5.65625, negative in row 0; the terms of later rows cancel
  haar.iwtVertDirSingle(hi.data(), out.data(), 5, 5);
  EXPECT_EQ(half_bits(out.at(0, 0)), half_bits(static_cast<_Float16>(-2.828125f)));
  EXPECT_EQ(half_bits(out.at(0, 1)), 0x0000);
}

TEST(HaarTransformTest, ZeroKeepsItsSignWhereASumStartsWithItsFirstTerm) {
  HaarTransform haar;
  Plane lo(3, 3), hi(3, 3), out(3, 3);
  lo.fill(half_of_bits(0x8000));
  hi.fill(0);
  haar.iwt(lo.data(), hi.data(), out.data(), 3, 3);
  EXPECT_EQ(half_bits(out.at(0, 0)), 0x0000);
  haar.iwtDir(lo.data(), hi.data(), out.data(), 3, 3);
  EXPECT_EQ(half_bits(out.at(0, 0)), 0x8000);
}

TEST(HaarTransformTest, PitchFormsSkipSamplesBetweenRows) {
  HaarTransform haar;
  const int width = 19;
  const int height = 4;
  for (const int p : {0, 1, 5}) {
    SCOPED_TRACE(p);
    // Rows of width - p samples, of which `width` are read: the plane must reach that far.
    Plane lo = random_plane(width, height, 5), hi = random_plane(width, height, 6);
    Plane dense_lo(width, height), dense_hi(width, height), out(width, height), want(width, height);
    for (int y = 0; y < height; ++y) {
      std::copy_n(lo.data() + y * (width - p), width, &dense_lo.at(0, y));
      std::copy_n(hi.data() + y * (width - p), width, &dense_hi.at(0, y));
    }
    haar.iwt(dense_lo.data(), dense_hi.data(), want.data(), width, height);
    std::fill_n(want.data(), width, _Float16{7});
    haar.iwtPitch(lo.data(), hi.data(), out.data(), width, height, p);
    EXPECT_EQ(out.bits(), want.bits());

    Plane wide_lo = random_plane(width + p, height, 7),
          wide_hi = random_plane(width + p, height, 8);
    for (int y = 0; y < height; ++y) {
      std::copy_n(&wide_lo.at(0, y), width, &dense_lo.at(0, y));
      std::copy_n(&wide_hi.at(0, y), width, &dense_hi.at(0, y));
    }
    haar.iwtVert(dense_lo.data(), dense_hi.data(), want.data(), width, height);
    std::fill_n(&want.at(0, height - 1), width, _Float16{7});
    out.fill(7);
    haar.iwtVertPitch(wide_lo.data(), wide_hi.data(), out.data(), width, height, p);
    EXPECT_EQ(out.bits(), want.bits());
  }
}

TEST(HaarTransformTest, EmptyPlanesAreLeftAlone) {
  HaarTransform haar;
  Plane src(3, 3), lo(3, 3), hi(3, 3);
  const std::vector<uint16_t> before = lo.bits();
  for (const auto& [width, height] : {std::pair{0, 3}, {3, 0}, {-1, 3}, {3, -1}}) {
    for (const PlainSplit& split : kSplits) {
      (haar.*split.method)(src.data(), lo.data(), hi.data(), width, height);
    }
    for (const PlainJoin& join : kJoins) {
      (haar.*join.method)(src.data(), hi.data(), lo.data(), width, height);
    }
    haar.iwtVertDirSingle(src.data(), lo.data(), width, height);
    haar.SubbandsSum2SubBands(src.data(), hi.data(), lo.data(), width, height);
  }
  // One row is not enough for these.
  haar.iwtPitch(src.data(), hi.data(), lo.data(), 3, 1, 0);
  haar.iwtVertPitch(src.data(), hi.data(), lo.data(), 3, 1, 0);
  haar.SubbandsSum2SubBands(src.data(), hi.data(), lo.data(), 3, 1);
  EXPECT_EQ(lo.bits(), before);
  EXPECT_EQ(hi.bits(), before);
}

struct BandSet {
  std::vector<Plane> planes;
  buffer records[7];
  BandSet(int width, int height) {
    for (int i = 0; i < 7; ++i) planes.emplace_back(width, height);
    for (int i = 0; i < 7; ++i) records[i] = planes[static_cast<size_t>(i)].record();
  }
  Plane& operator[](int i) { return planes[static_cast<size_t>(i)]; }
};

// The decomposition put together from plain kernels.
void decompose_plainly(Plane& src, BandSet& bands) {
  const auto split = [](int index, Plane& in, Plane& lo, Plane& hi) {
    split_plainly(kSplits[index], in, lo, hi);
  };
  Plane low(src.width, src.height), high(src.width, src.height);
  split(0, src, low, high);
  split(1, low, bands[3], bands[4]);
  split(1, high, bands[5], bands[6]);
  split(4, src, low, high);
  split(5, low, bands[0], bands[2]);
  split(5, high, bands[1], bands[3]);
}

TEST(HaarTransformTest, ForwardRunFillsSevenBands) {
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 2}, {3, 3}, {21, 8}, {40, 2}}) {
    SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
    Plane src = random_plane(width, height, 10);
    BandSet bands(width, height), want(width, height);
    decompose_plainly(src, want);
    HaarTransform haar;
    ASSERT_TRUE(haar.setup(width, height, 0, nullptr));
    buffer record = src.record();
    const unsigned cols = static_cast<unsigned>(width);
    const unsigned rows = static_cast<unsigned>(height);
    haar.forwardUnHaarRun(&record, bands.records, cols, rows, true, false);
    for (int i = 0; i < 7; ++i) EXPECT_EQ(bands[i].bits(), want[i].bits()) << i;

    GuardedPlane<uint8_t> pixels(src.size());
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i * 37);
    std::copy_n(pixels.data(), pixels.size(), src.data());
    decompose_plainly(src, want);
    record.data = pixels.data();
    haar.forwardUnHaarRun(&record, bands.records, cols, rows, false, true);
    for (int i = 0; i < 7; ++i) EXPECT_EQ(bands[i].bits(), want[i].bits()) << i;
    haar.deallocate();
    haar.deallocate();
  }
}

TEST(HaarTransformTest, InverseRunGivesTheInteriorBack) {
  const int width = 37;
  const int height = 20;
  std::mt19937 random(11);
  Plane src(width, height), out(width, height);
  for (size_t i = 0; i < src.size(); ++i) src.data()[i] = static_cast<_Float16>(random() % 1021);
  BandSet bands(width, height);
  HaarTransform haar;
  ASSERT_TRUE(haar.setup(width, height, 0, nullptr));
  buffer in = src.record();
  buffer result = out.record();
  haar.forwardUnHaarRun(&in, bands.records, width, height, false, false);
  haar.inverseUnHaarRunAllSubbands(bands.records, &result, width, height);
  haar.deallocate();
  // Values of up to 2040 in steps of 1 make up sums of up to 4080 in steps of 2.
  for (int y = 3; y < height - 4; ++y) {
    for (int x = 3; x < width - 4; ++x) {
      EXPECT_NEAR(static_cast<float>(out.at(x, y)), static_cast<float>(src.at(x, y)), 4.0f)
          << x << ", " << y;
    }
  }
  for (int x = 0; x < width; ++x) EXPECT_EQ(out.at(x, 0), 7) << x;
}

TEST(HaarTransformTest, TimingLinesAppearAtDebugLevelOne) {
  Plane src = random_plane(16, 8, 12);
  BandSet bands(16, 8);
  buffer record = src.record();
  LogCapture log;
  for (const int debug : {0, 1, 2}) {
    HaarTransform haar;
    ASSERT_TRUE(haar.setup(16, 8, debug, nullptr));
    haar.forwardUnHaarRun(&record, bands.records, 16, 8, false, false);
    haar.inverseUnHaarRunAllSubbands(bands.records, &record, 16, 8);
    haar.deallocate();
  }
  const std::pair<const char*, int> lines[] = {
      {"fwt", 1},
      {"fwtVert", 2},
      {"fwtL2Dir", 1},
      {"fwtL2VertDir", 2},
      {"forwardUnHaarRun", 1},
      {"iwtL2VertDir", 2},
      {"iwtL2Dir", 1},
      {"iwtVertDirSingle", 1},
      {"iwtVertDir", 1},
      {"iwtDir", 1},
      {"SubbandsSum2SubBands", 1},
      {"inverseUnHaarRunAllSubbands", 1},
  };
  for (const auto& [name, count] : lines) {
    EXPECT_EQ(log.count_prefix("HaarTransform::" + std::string(name) + ": elapsed time "), count)
        << name;
  }
}

}  // namespace
