#include "vorel/wavelet/sym4_transform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/log_capture.h"
#include "tests/wavelet/sym4_plain.h"

namespace {

PlainPlane random_plane(int width, int height, uint32_t seed) {
  std::mt19937 random(seed);
  PlainPlane plane(width, height);
  plane.samples = random_halves(plane.samples.size(), 0, 255, random);
  return plane;
}

// The same with the records that a transform takes.
struct Subbands : PlainSubbands {
  Subbands(int width, int height, _Float16 fill) : PlainSubbands(width, height, fill) {
    for (int i = 0; i < kPlainSubbands; ++i) records[i] = record_of(planes[i]);
  }
  std::array<buffer, kPlainSubbands> records{};
};

// A transform whose working planes start as `fill`.
class FilledTransform {
 public:
  FilledTransform(int width, int height, _Float16 fill, int debug = 0)
      : samples_{PlainPlane(width / 2, 3 * height, fill), PlainPlane(width / 2, 3 * height, fill)} {
    // The records count bytes; rounding needs a few bytes more than the planes have.
    buffer scratch[2] = {record_of(samples_[0]), record_of(samples_[1])};
    for (buffer& record : scratch) record.width *= sizeof(_Float16);
    EXPECT_TRUE(
        transform.setup(width, height, width / 2, height / 2, debug, nullptr, nullptr, scratch));
  }
  ~FilledTransform() { transform.deallocate(); }
  FilledTransform(const FilledTransform&) = delete;
  FilledTransform& operator=(const FilledTransform&) = delete;

  Sym4Transform transform;

 private:
  PlainPlane samples_[2];
};

// Wherever `expected` is a number, the actual sample is the same. Returns how many are.
int expect_numbers(const PlainPlane& actual, const PlainPlane& expected, const char* name) {
  int numbers = 0;
  for (int y = 0; y < expected.height; ++y) {
    for (int x = 0; x < expected.width; ++x) {
      if (expected.at(x, y) != expected.at(x, y)) continue;
      ++numbers;
      if (half_bits(actual.at(x, y)) != half_bits(expected.at(x, y))) {
        ADD_FAILURE() << name << " differs at column " << x << ", row " << y << ": "
                      << static_cast<float>(actual.at(x, y)) << " instead of "
                      << static_cast<float>(expected.at(x, y));
        return numbers;
      }
    }
  }
  return numbers;
}

struct RunSize {
  int width;
  int height;
};

// Planes too small for an output, for the second level and for a reconstruction; odd halves; 72 x
// 66 and the like: borders of 32 samples around real chroma; a row of more than one piece.
const RunSize kRunSizes[] = {{8, 7},   {8, 8},   {16, 15}, {16, 16},  {40, 17},  {40, 18},
                             {40, 19}, {48, 20}, {48, 22}, {64, 23},  {32, 32},  {6, 40},
                             {70, 66}, {71, 67}, {72, 66}, {72, 132}, {72, 134}, {600, 29}};

class Sym4Run : public testing::TestWithParam<bool> {};

TEST_P(Sym4Run, ForwardEqualsThePassesWhateverUnwrittenSamplesHold) {
  const bool two = GetParam();
  for (const RunSize size : kRunSizes) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    PlainPlane src = random_plane(size.width, size.height, 1);
    buffer src_record = record_of(src);
    Subbands expected(size.width, size.height, kNotANumber);
    if (size.width / 2 % 2 == 0 || !two) plain_forward(src, two, &expected);
    for (const _Float16 fill : {kNotANumber, _Float16{-1000}}) {
      for (const unsigned level : {1u, 2u}) {
        FilledTransform filled(size.width, size.height, fill);
        if (!two) filled.transform.setWtCfg(4, 2, 2);
        Subbands bands(size.width, size.height, fill);
        filled.transform.forwardWtRun(&src_record, bands.records.data(), src.width, src.height,
                                      level, nullptr);
        const std::vector<uint16_t> untouched(bands.planes[7].samples.size(), half_bits(fill));
        if (two) EXPECT_EQ(half_bits(bands.planes[7].samples), untouched);
        for (int i = 0; i < kPlainSubbands; ++i) {
          const std::string name = "subband " + std::to_string(i);
          expect_numbers(bands.planes[i], expected.planes[i], name.c_str());
          if (!two && i < 4) {
            EXPECT_EQ(std::count_if(bands.planes[i].samples.begin(), bands.planes[i].samples.end(),
                                    [&](_Float16 s) { return half_bits(s) != half_bits(fill); }),
                      0);
          }
        }
        if (HasFailure()) return;
      }
    }
  }
}

TEST_P(Sym4Run, InverseEqualsThePassesWhateverUnwrittenSamplesHold) {
  const LogCapture quiet;
  const bool two = GetParam();
  for (const RunSize size : kRunSizes) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    Subbands bands(size.width, size.height, 0);
    for (int i = 0; i < kPlainSubbands; ++i) {
      bands.planes[i].samples =
          random_plane(bands.planes[i].width, bands.planes[i].height, 10 + i).samples;
    }
    PlainPlane band0 = bands.planes[two ? 0 : 7];
    bands.planes[0] = PlainPlane(bands.planes[0].width, bands.planes[0].height, kNotANumber);
    bands.planes[7] = PlainPlane(bands.planes[7].width, bands.planes[7].height, kNotANumber);
    for (int i = 0; i < kPlainSubbands; ++i) bands.records[i] = record_of(bands.planes[i]);
    buffer band0_record = record_of(band0);
    PlainPlane expected(size.width / 2 * 2, size.height, kNotANumber);
    plain_inverse(band0, bands, two, &expected);
    for (const _Float16 fill : {kNotANumber, _Float16{-1000}}) {
      for (const unsigned level : {1u, 2u}) {
        FilledTransform filled(size.width, size.height, fill);
        if (!two) filled.transform.setWtCfg(4, 2, 2);
        PlainPlane out(size.width / 2 * 2, size.height, fill);
        buffer out_record = record_of(out);
        filled.transform.inverseWtDifferentSband0Run(&band0_record, bands.records.data(),
                                                     &out_record, size.width, size.height, level);
        expect_numbers(out, expected, "the plane");
        if (HasFailure()) return;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Decompositions, Sym4Run, testing::Bool());

// The plain form has numbers nearly everywhere, so the comparisons above compare.
TEST(Sym4RunByHand, PlainFormLeavesOnlyTheEdgesOut) {
  PlainPlane src = random_plane(72, 132, 1);
  Subbands bands(72, 132, kNotANumber);
  plain_forward(src, true, &bands);
  // Of 36 columns and 66 rows the outputs 2 .. 34 and 2 .. 64; of the second level's 18 columns and
  // 33 rows those that reach no further: 3 .. 15 and 3 .. 30.
  EXPECT_EQ(expect_numbers(bands.planes[4], bands.planes[4], ""), 33 * 63);
  EXPECT_EQ(expect_numbers(bands.planes[0], bands.planes[0], ""), 13 * 28);
}

TEST(Sym4RunByHand, ForwardThenInverseGivesThePlaneBack) {
  for (const RunSize size : {RunSize{144, 134}, RunSize{96, 606}}) {
    SCOPED_TRACE(size.height);
    PlainPlane src = random_plane(size.width, size.height, 4);
    PlainPlane out(size.width, size.height, kNotANumber);
    buffer src_record = record_of(src);
    buffer out_record = record_of(out);
    FilledTransform filled(size.width, size.height, kNotANumber);
    Subbands bands(size.width, size.height, kNotANumber);
    filled.transform.forwardWtRun(&src_record, bands.records.data(), src.width, src.height, 2,
                                  nullptr);
    filled.transform.inverseWtDifferentSband0Run(&bands.records[0], bands.records.data(),
                                                 &out_record, src.width, src.height, 2);
    // Inside a border of 32 samples no undefined one is left. Numbers up to 512 are 0.25 or 0.5
    // apart in the low band.
    for (int y = 32; y < size.height - 32; ++y) {
      for (int x = 32; x < size.width - 32; ++x) {
        const double difference = static_cast<double>(out.at(x, y)) - double(src.at(x, y));
        ASSERT_LE(std::fabs(difference), 1.5) << x << ' ' << y;
      }
    }
  }
}

// With zeros in all that no pass writes, whole planes are equal: the walks read the edges where
// passes over whole planes do.
TEST(Sym4RunByHand, ZeroedPlanesAreEqualToTheEdges) {
  for (const RunSize size : {RunSize{72, 66}, RunSize{72, 70}, RunSize{80, 133}}) {
    SCOPED_TRACE(size.height);
    PlainPlane src = random_plane(size.width, size.height, 11);
    buffer src_record = record_of(src);
    Subbands bands(size.width, size.height, 0), expected(size.width, size.height, 0);
    FilledTransform forward(size.width, size.height, 0);
    forward.transform.forwardWtRun(&src_record, bands.records.data(), size.width, size.height, 1,
                                   nullptr);
    plain_forward(src, true, &expected, 0);
    for (int i = 0; i < kPlainSubbands; ++i) {
      EXPECT_EQ(half_bits(bands.planes[i].samples), half_bits(expected.planes[i].samples)) << i;
    }

    PlainPlane out(size.width, size.height), expected_out = out;
    buffer out_record = record_of(out);
    FilledTransform inverse(size.width, size.height, 0);
    inverse.transform.inverseWtDifferentSband0Run(&bands.records[0], bands.records.data(),
                                                  &out_record, size.width, size.height, 1);
    plain_inverse(bands.planes[0], bands, true, &expected_out, 0);
    EXPECT_EQ(half_bits(out.samples), half_bits(expected_out.samples));
  }
}

TEST(Sym4RunByHand, BothLevelsRunAtTheSameTime) {
  const RunSize size{136, 202};
  FilledTransform filled(size.width, size.height, 0);
  PlainPlane src[2] = {random_plane(size.width, size.height, 5),
                       random_plane(size.width, size.height, 6)};
  std::vector<Subbands> bands(2, Subbands(size.width, size.height, 0));
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < 2; ++i) {
    for (int b = 0; b < kPlainSubbands; ++b) bands[i].records[b] = record_of(bands[i].planes[b]);
    threads.emplace_back([&, i] {
      buffer record = record_of(src[i]);
      filled.transform.forwardWtRun(&record, bands[i].records.data(), size.width, size.height,
                                    i + 1, nullptr);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int i = 0; i < 2; ++i) {
    Subbands expected(size.width, size.height, kNotANumber);
    plain_forward(src[i], true, &expected);
    for (int b = 0; b < 7; ++b) {
      EXPECT_GT(expect_numbers(bands[i].planes[b], expected.planes[b], "a subband"), 0);
    }
  }
}

TEST(Sym4Passes, WholePlanesAndBandsEqualThePlainForm) {
  for (const RunSize size : {RunSize{42, 23}, RunSize{37, 30}, RunSize{7, 9}}) {
    SCOPED_TRACE(size.width);
    PlainPlane src = random_plane(size.width, size.height, 7);
    Sym4Transform transform;
    for (const bool vertical : {false, true}) {
      const int out_width = vertical ? size.width : size.width / 2;
      const int out_height = vertical ? size.height / 2 : size.height;
      const auto blank = [&] { return PlainPlane(out_width, out_height, 7); };
      PlainPlane low = blank(), high = blank(), whole_low = blank(), whole_high = blank();
      plain_analyse(src, vertical, &low, &high);
      if (vertical) {
        transform.fwtVert(src.samples.data(), whole_low.samples.data(), whole_high.samples.data(),
                          size.width, size.height);
      } else {
        transform.fwt(src.samples.data(), whole_low.samples.data(), whole_high.samples.data(),
                      size.width, size.height);
      }
      EXPECT_EQ(half_bits(whole_low.samples), half_bits(low.samples));
      EXPECT_EQ(half_bits(whole_high.samples), half_bits(high.samples));

      PlainPlane band_low = blank(), band_high = blank();
      const int cuts[] = {0, 1, out_height / 3, out_height - 1, out_height};
      for (int i = 3; i >= 0; --i) {
        sym4_band_job job = {&transform,
                             src.samples.data(),
                             band_low.samples.data(),
                             band_high.samples.data(),
                             size.width,
                             cuts[i],
                             cuts[i + 1],
                             size.height};
        EXPECT_EQ(vertical ? fwtVertFunc(&job) : fwtFunc(&job), nullptr);
        // A band writes its own rows only: what earlier bands wrote stays, the rest is blank.
        const size_t first = static_cast<size_t>(cuts[i]) * static_cast<size_t>(out_width);
        EXPECT_EQ(std::count(band_low.samples.begin(), band_low.samples.begin() + first, 7), first);
        EXPECT_EQ(std::count(band_high.samples.begin(), band_high.samples.begin() + first, 7),
                  first);
      }
      EXPECT_EQ(half_bits(band_low.samples), half_bits(low.samples));
      EXPECT_EQ(half_bits(band_high.samples), half_bits(high.samples));
    }
    std::vector<uint8_t> bytes(src.samples.size());
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 37);
    PlainPlane halves(size.width, size.height);
    std::copy(bytes.begin(), bytes.end(), halves.samples.begin());
    PlainPlane low(size.width / 2, size.height, 7), high = low, byte_low = low, byte_high = low;
    plain_analyse(halves, false, &low, &high);
    transform.fwtFirstStep(bytes.data(), byte_low.samples.data(), byte_high.samples.data(),
                           size.width, size.height);
    EXPECT_EQ(half_bits(byte_low.samples), half_bits(low.samples));
    EXPECT_EQ(half_bits(byte_high.samples), half_bits(high.samples));
  }
}

TEST(Sym4Passes, SynthesisReadsItsLowRowsAtTheirPitch) {
  const int width = 19;
  const int height = 9;
  for (const int difference : {0, 1, 3}) {
    PlainPlane wide = random_plane(width + difference, height, 8);
    PlainPlane high = random_plane(width, height, 9);
    PlainPlane expected(width, 2 * height, 7), out = expected;
    plain_synthesise(wide, high, width, height, true, &expected);
    Sym4Transform transform;
    transform.iwtVertPitch(wide.samples.data(), high.samples.data(), out.samples.data(), width,
                           height, difference);
    EXPECT_EQ(half_bits(out.samples), half_bits(expected.samples));
    if (difference != 0) continue;
    out = PlainPlane(width, 2 * height, 7);
    transform.iwtVert(wide.samples.data(), high.samples.data(), out.samples.data(), width, height);
    EXPECT_EQ(half_bits(out.samples), half_bits(expected.samples));
    expected = out = PlainPlane(2 * width, height, 7);
    plain_synthesise(wide, high, height, width, false, &expected);
    transform.iwt(wide.samples.data(), high.samples.data(), out.samples.data(), width, height);
    EXPECT_EQ(half_bits(out.samples), half_bits(expected.samples));
  }
}

}  // namespace
