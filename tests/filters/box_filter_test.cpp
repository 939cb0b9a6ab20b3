#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "tests/filters/plane_compare.h"
#include "tests/support/guarded_plane.h"
#include "vorel/filters.h"

namespace {

constexpr uint32_t kSeed = 20;
constexpr uint8_t kUntouched = 0xA5;

struct StripCase {
  int width;
  int height;
  int first;
  int end;
  int tab_bit;
};

// The rule, sample by sample: which row is read, and what is written.
int mirrored(const StripCase& c, int row) {
  for (int images = 0; row < 0 || row >= c.height; ++images) {
    if (c.first == c.end - 1 && images == 1) return c.first;
    row = row < 0 ? 2 * c.first - row : 2 * (c.end - 1) - row;
  }
  return row;
}

struct Planes {
  std::vector<uint8_t> low;
  std::vector<uint8_t> high;
};

void filter_plainly(const StripCase& c, const uint8_t* src, int columns, Planes* out) {
  const size_t bytes = static_cast<size_t>(c.width * c.height);
  out->low.resize(bytes, kUntouched);
  out->high.resize(bytes, kUntouched);
  const int radius = ((1 << c.tab_bit) - 1) / 2;
  for (int y = c.first; y < c.end; ++y) {
    for (int x = 0; x < columns; ++x) {
      const int sample = src[y * c.width + x];
      int sum = sample;
      for (int i = y - radius; i <= y + radius; ++i) sum += src[mirrored(c, i) * c.width + x];
      const int low = std::min((sum + radius + 1) >> c.tab_bit, 255);
      const size_t at = static_cast<size_t>(y * c.width + x);
      out->low[at] = static_cast<uint8_t>(low);
      out->high[at] = static_cast<uint8_t>(std::clamp(sample - low + 128, 0, 255));
    }
  }
}

// Three planes that end, or for odd widths start, at unreadable memory.
class GuardedFilter {
 public:
  GuardedFilter(const StripCase& c, Pattern pattern)
      : case_(c),
        pattern_(pattern),
        src_(bytes(), guard()),
        low_(bytes(), guard()),
        high_(bytes(), guard()) {
    std::mt19937 random(kSeed);
    fill_pattern(src(), bytes(), pattern, random);
    std::fill_n(low_.data(), bytes(), kUntouched);
    std::fill_n(high_.data(), bytes(), kUntouched);
  }

  uint8_t* src() { return src_.data(); }
  int low_at(int row) { return low_.data()[row * case_.width]; }
  int high_at(int row) { return high_.data()[row * case_.width]; }
  void fill_row(int row, uint8_t value) {
    std::fill_n(src() + row * case_.width, case_.width, value);
  }

  void run(int first, int end) {
    const boxfiltering_tuning tuning{case_.tab_bit};
    box_filter_job job{0,           nullptr,      case_.width,  (case_.height + 15) / 16 * 16,
                       case_.width, case_.height, first,        end,
                       src(),       low_.data(),  high_.data(), &tuning};
    EXPECT_EQ(nullptr, box_filter_col(&job));
  }
  void run() { run(case_.first, case_.end); }
  void run_neon() {
    boxfiltering_tuning tuning{case_.tab_bit};
    box_filter_col_neon(src(), low_.data(), high_.data(), case_.width, case_.height, 0,
                        case_.height, case_.first, case_.end, &tuning);
  }

  void expect(const Planes& expected) {
    const std::string parameters = describe("width", case_.width, "height", case_.height, "first",
                                            case_.first, "end", case_.end, "tab_bit", case_.tab_bit,
                                            "pattern", static_cast<int>(pattern_), "seed", kSeed);
    ASSERT_TRUE(planes_equal(expected.low, low_.data(), case_.width, "low: " + parameters));
    ASSERT_TRUE(planes_equal(expected.high, high_.data(), case_.width, "high: " + parameters));
  }

 private:
  GuardedBytes::Guard guard() const {
    return case_.width % 2 == 0 ? GuardedBytes::Guard::kEnd : GuardedBytes::Guard::kStart;
  }
  size_t bytes() const { return static_cast<size_t>(case_.width * case_.height); }

  StripCase case_;
  Pattern pattern_;
  GuardedBytes src_;
  GuardedBytes low_;
  GuardedBytes high_;
};

void expect_plain_result(const StripCase& c, Pattern pattern) {
  GuardedFilter filter(c, pattern);
  Planes expected;
  filter_plainly(c, filter.src(), c.width, &expected);
  filter.run();
  filter.expect(expected);
}

TEST(BoxFilter, EveryWidthAndTapCountFollowsTheRule) {
  for (int width = 1; width <= 65; ++width) {
    for (const Pattern pattern : kAllPatterns) {
      const int tab_bit = (width + static_cast<int>(pattern)) % 8;
      ASSERT_NO_FATAL_FAILURE(expect_plain_result({width, 50, 0, 50, tab_bit}, pattern));
      ASSERT_NO_FATAL_FAILURE(expect_plain_result({width, 50, 19, 36, tab_bit}, pattern));
    }
  }
  for (int tab_bit = 0; tab_bit <= 7; ++tab_bit) {
    for (const Pattern pattern : kAllPatterns) {
      ASSERT_NO_FATAL_FAILURE(expect_plain_result({40, 150, 70, 90, tab_bit}, pattern));
      ASSERT_NO_FATAL_FAILURE(expect_plain_result({33, 9, 2, 7, tab_bit}, pattern));
    }
  }
}

// 4096 columns make one block, one more makes two.
TEST(BoxFilter, RealAndVeryLargeWidthsFollowTheRule) {
  for (const int width : {1001, 4000, 4096, 4097, 8200}) {
    ASSERT_NO_FATAL_FAILURE(expect_plain_result({width, 18, 3, 12, 4}, Pattern::kRandom));
  }
}

TEST(BoxFilter, EveryStripOfLowPlanesFollowsTheRule) {
  for (int height = 1; height <= 9; ++height) {
    for (int first = 0; first < height; ++first) {
      for (int end = first + 1; end <= height; ++end) {
        for (const int tab_bit : {2, 3, 4, 7}) {
          ASSERT_NO_FATAL_FAILURE(
              expect_plain_result({3, height, first, end, tab_bit}, Pattern::kRandom));
        }
      }
    }
  }
}

// A frame's rows in 64 strips, the last first: what a strip writes does not depend on the others.
TEST(BoxFilter, StripsOfAFrameInAnyOrderFollowTheRule) {
  for (const int height : {17, 64, 65, 100, 127, 128, 200, 360, 447}) {
    GuardedFilter filter({20, height, 0, height, 4}, Pattern::kRandom);
    Planes expected;
    for (int i = 63; i >= 0; --i) {
      const int step = height / 64;
      const StripCase strip{20, height, i * step, i == 63 ? height : (i + 1) * step, 4};
      filter.run(strip.first, strip.end);
      filter_plainly(strip, filter.src(), 20, &expected);
    }
    ASSERT_NO_FATAL_FAILURE(filter.expect(expected));
  }
}

TEST(BoxFilter, VectorFormStopsAtAMultipleOfEight) {
  for (int width = 1; width <= 41; ++width) {
    const StripCase c{width, 21, 4, 20, 4};
    GuardedFilter filter(c, Pattern::kRandom);
    Planes expected;
    filter_plainly(c, filter.src(), width / 8 * 8, &expected);
    filter.run_neon();
    ASSERT_NO_FATAL_FAILURE(filter.expect(expected));
  }
}

TEST(BoxFilter, BrightRowSpreadsOverSevenRowsEachWay) {
  GuardedFilter filter({16, 60, 0, 60, 4}, Pattern::kLow);
  filter.fill_row(30, 255);
  filter.run();
  for (int row = 0; row < 60; ++row) {
    const int distance = std::abs(row - 30);
    const int low = distance == 0 ? 32 : distance <= 7 ? 16 : 0;
    EXPECT_EQ(low, filter.low_at(row)) << row;
    EXPECT_EQ(distance == 0 ? 255 : 128 - low, filter.high_at(row)) << row;
  }
}

TEST(BoxFilter, FirstRowCountsTwiceLikeEachOfTheSevenBelow) {
  for (const int bright : {0, 1, 7, 8}) {
    GuardedFilter filter({3, 40, 0, 40, 4}, Pattern::kLow);
    filter.fill_row(bright, 80);
    filter.run();
    EXPECT_EQ(bright <= 7 ? 10 : 0, filter.low_at(0)) << bright;  // (2 * 80 + 8) / 16
  }
}

// Mirrors are the strip's edges: below the plane, row 64 is the image of row 62 of the last strip
// [60, 64) and row 70 that of row 56, outside the strip.
TEST(BoxFilter, LastStripMirrorsAboutItsLastRow) {
  GuardedFilter filter({1, 64, 60, 64, 4}, Pattern::kLow);
  filter.fill_row(56, 160);
  filter.run();
  EXPECT_EQ(20, filter.low_at(63));  // read as row 56 and as row 70: (320 + 8) / 16
  EXPECT_EQ(10, filter.low_at(62));  // row 69 is the image of row 57
}

// Both mirrors of a strip of one row are in the same place: what is still outside reads that row.
TEST(BoxFilter, OneRowStripOfAVeryLowPlane) {
  GuardedFilter filter({1, 3, 1, 2, 4}, Pattern::kLow);
  filter.fill_row(0, 10);
  filter.fill_row(1, 20);
  filter.fill_row(2, 60);
  filter.run();
  // Row -1's image, 3, and all that are further out lie outside: 14 times 20, and 10 and 60.
  EXPECT_EQ((14 * 20 + 10 + 60 + 8) / 16, filter.low_at(1));
}

TEST(BoxFilter, TwoSamplesOfTabBitZeroAreNotHalved) {
  GuardedFilter filter({2, 2, 0, 2, 0}, Pattern::kLow);
  filter.fill_row(0, 100);
  filter.fill_row(1, 130);
  filter.run();
  EXPECT_EQ(201, filter.low_at(0));
  EXPECT_EQ(27, filter.high_at(0));
  EXPECT_EQ(255, filter.low_at(1));
  EXPECT_EQ(3, filter.high_at(1));
}

TEST(BoxFilter, RowsThatAreNotInThePlaneAreLeftAlone) {
  GuardedFilter filter({8, 20, 0, 20, 4}, Pattern::kRandom);
  filter.run(5, 5);
  filter.run(20, 28);
  const std::vector<uint8_t> untouched(8 * 20, kUntouched);
  ASSERT_NO_FATAL_FAILURE(filter.expect({untouched, untouched}));
}

}  // namespace
