#include "vorel/tiles.h"

#include <gtest/gtest.h>

#include <climits>
#include <utility>
#include <vector>

namespace {

using Ranges = std::vector<std::pair<int, int>>;

// Tiles of both kinds, which must agree; the records around them must stay untouched.
Ranges cut(int count, int start, int end) {
  std::vector<TilePosHorz> columns(static_cast<size_t>(count) + 2, {-7, -7});
  std::vector<TilePosVert> rows(columns.size(), {-7, -7});
  EXPECT_EQ(calcTilePosHorz(columns.data() + 1, count, start, end), columns.data() + 1);
  EXPECT_EQ(calcTilePosVert(rows.data() + 1, count, start, end), rows.data() + 1);
  Ranges ranges;
  for (size_t i = 0; i < columns.size(); ++i) {
    EXPECT_EQ(columns[i].begin, rows[i].begin);
    EXPECT_EQ(columns[i].end, rows[i].end);
    ranges.emplace_back(columns[i].begin, columns[i].end);
  }
  EXPECT_EQ(ranges.front(), std::make_pair(-7, -7));
  EXPECT_EQ(ranges.back(), std::make_pair(-7, -7));
  return Ranges(ranges.begin() + 1, ranges.end() - 1);
}

}  // namespace

TEST(Tiles, CutsEvenlyAndLeavesTheRestToTheLast) {
  EXPECT_EQ(cut(4, 0, 1080), (Ranges{{0, 270}, {270, 540}, {540, 810}, {810, 1080}}));
  EXPECT_EQ(cut(3, 10, 21), (Ranges{{10, 13}, {13, 16}, {16, 21}}));
  EXPECT_EQ(cut(1, 5, 9), (Ranges{{5, 9}}));
  EXPECT_EQ(cut(4, 0, 3), (Ranges{{0, 0}, {0, 0}, {0, 0}, {0, 3}}));

  const Ranges many = cut(64, 0, 1000);
  for (int i = 0; i < 63; ++i) EXPECT_EQ(many[i], std::make_pair(15 * i, 15 * i + 15));
  EXPECT_EQ(many[63], std::make_pair(945, 1000));
}

TEST(Tiles, TruncatesTowardZeroBelowZero) {
  EXPECT_EQ(cut(2, 0, -7), (Ranges{{0, -3}, {-3, -7}}));
  EXPECT_EQ(cut(2, -9, -4), (Ranges{{-9, -7}, {-7, -4}}));
}

TEST(Tiles, WrapsIn32Bits) {
  // INT_MAX - INT_MIN wraps to -1, of which 2 tiles get 0 each.
  EXPECT_EQ(cut(2, INT_MIN, INT_MAX), (Ranges{{INT_MIN, INT_MIN}, {INT_MIN, INT_MAX}}));
  // 2^31 wraps to -2^31; halves of -2^30 leave the range at INT_MIN and come back from above.
  EXPECT_EQ(cut(2, -1, INT_MAX), (Ranges{{-1, -1 - (1 << 30)}, {-1 - (1 << 30), INT_MAX}}));
  EXPECT_EQ(cut(2, INT_MIN, 0), (Ranges{{INT_MIN, 1 << 30}, {1 << 30, 0}}));
}

TEST(Tiles, WritesNothingWithoutTiles) {
  EXPECT_EQ(cut(0, 3, 90), Ranges{});
  TilePosHorz tile[2] = {{1, 2}, {3, 4}};
  EXPECT_EQ(calcTilePosHorz(tile + 1, -1, INT_MIN, INT_MAX), tile + 1);
  EXPECT_EQ(tile[0].begin, 1);
  EXPECT_EQ(tile[1].end, 4);
}
