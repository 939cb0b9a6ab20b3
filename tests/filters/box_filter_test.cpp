// Worked examples of the box filter; the rule is in the kernel test.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "vorel/filters.h"

namespace {

constexpr uint8_t kUntouched = 0xA5;

// A black plane and its filtered forms.
struct FilteredPlane {
  int width;
  int height;
  boxfiltering_tuning tuning{4};
  std::vector<uint8_t> src = std::vector<uint8_t>(static_cast<size_t>(width * height));
  std::vector<uint8_t> low = std::vector<uint8_t>(src.size(), kUntouched);
  std::vector<uint8_t> high = low;

  int low_at(int row) const { return low[static_cast<size_t>(row * width)]; }
  int high_at(int row) const { return high[static_cast<size_t>(row * width)]; }
  void fill_row(int row, uint8_t value) { std::fill_n(src.begin() + row * width, width, value); }
  void run(int first, int end) {
    box_filter_job job{0,          nullptr,    width,       (height + 15) / 16 * 16,
                       width,      height,     first,       end,
                       src.data(), low.data(), high.data(), &tuning};
    EXPECT_EQ(nullptr, box_filter_col(&job));
  }
};

TEST(BoxFilter, FunctionWithoutARecordStopsAtAMultipleOfEight) {
  for (int width = 7; width <= 17; ++width) {
    FilteredPlane job{width, 21};
    for (size_t i = 0; i < job.src.size(); ++i) job.src[i] = static_cast<uint8_t>(i * i % 251);
    FilteredPlane loose = job;
    job.run(4, 20);
    box_filter_col_neon(loose.src.data(), loose.low.data(), loose.high.data(), width, 21, 0, 21, 4,
                        20, &loose.tuning);
    for (size_t i = 0; i < job.src.size(); ++i) {
      const bool covered = static_cast<int>(i) % width < width / 8 * 8;
      ASSERT_EQ(loose.low[i], covered ? job.low[i] : kUntouched) << width << ' ' << i;
      ASSERT_EQ(loose.high[i], covered ? job.high[i] : kUntouched) << width << ' ' << i;
    }
  }
}

TEST(BoxFilter, BrightRowSpreadsOverSevenRowsEachWay) {
  FilteredPlane filter{16, 60};
  filter.fill_row(30, 255);
  filter.run(0, 60);
  for (int row = 0; row < 60; ++row) {
    const int distance = std::abs(row - 30);
    const int low = distance == 0 ? 32 : distance <= 7 ? 16 : 0;
    EXPECT_EQ(low, filter.low_at(row)) << row;
    EXPECT_EQ(distance == 0 ? 255 : 128 - low, filter.high_at(row)) << row;
  }
}

TEST(BoxFilter, FirstRowCountsTwiceLikeEachOfTheSevenBelow) {
  for (const int bright : {0, 1, 7, 8}) {
    FilteredPlane filter{3, 40};
    filter.fill_row(bright, 80);
    filter.run(0, 40);
    EXPECT_EQ(bright <= 7 ? 10 : 0, filter.low_at(0)) << bright;  // (2 * 80 + 8) / 16
  }
}

// Mirrors are the strip's edges: below the plane, row 64 is the image of row 62 of the last strip
// [60, 64) and row 70 that of row 56, outside the strip.
TEST(BoxFilter, LastStripMirrorsAboutItsLastRow) {
  FilteredPlane filter{1, 64};
  filter.fill_row(56, 160);
  filter.run(60, 64);
  EXPECT_EQ(20, filter.low_at(63));  // read as row 56 and as row 70: (320 + 8) / 16
  EXPECT_EQ(10, filter.low_at(62));  // row 69 is the image of row 57
}

// Both mirrors of a strip of one row are in the same place: what is still outside reads that row.
TEST(BoxFilter, OneRowStripOfAVeryLowPlane) {
  FilteredPlane filter{1, 3};
  filter.fill_row(0, 10);
  filter.fill_row(1, 20);
  filter.fill_row(2, 60);
  filter.run(1, 2);
  // Row -1's image, 3, and all that are further out lie outside: 14 times 20, and 10 and 60.
  EXPECT_EQ((14 * 20 + 10 + 60 + 8) / 16, filter.low_at(1));
}

TEST(BoxFilter, TwoSamplesOfTabBitZeroAreNotHalved) {
  FilteredPlane filter{2, 2, {0}};
  filter.fill_row(0, 100);
  filter.fill_row(1, 130);
  filter.run(0, 2);
  EXPECT_EQ(201, filter.low_at(0));
  EXPECT_EQ(27, filter.high_at(0));
  EXPECT_EQ(255, filter.low_at(1));
  EXPECT_EQ(3, filter.high_at(1));
}

TEST(BoxFilter, RowsThatAreNotInThePlaneAreLeftAlone) {
  FilteredPlane filter{8, 20};
  filter.run(5, 5);
  filter.run(20, 28);
  const std::vector<uint8_t> untouched(8 * 20, kUntouched);
  EXPECT_EQ(untouched, filter.low);
  EXPECT_EQ(untouched, filter.high);
}

}  // namespace
