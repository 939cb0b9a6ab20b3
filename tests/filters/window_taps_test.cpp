#include "filters/window_taps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>

#include "tests/support/guarded_plane.h"

namespace {

// The weights per city-block distance, the last for all beyond.
constexpr uint32_t kWeights[] = {64, 64, 63, 61, 59, 56, 53, 50, 46, 43, 39, 35, 31, 27, 24, 21};

// The list lies where memory ends, and holds every tap of the part once, in runs of one weight.
TEST(WindowTaps, EveryTapOnceWithTheWeightOfItsDistance) {
  const window_part parts[] = {{-15, 16, -15, 16}, {0, 1, 0, 1},       {-1, 2, -7, 8},
                               {-20, 11, 11, 21},  {16, 47, -47, -16}, {-3, 3, 0, 31}};
  const ptrdiff_t pitch = 64;
  for (const window_part& part : parts) {
    SCOPED_TRACE(testing::Message() << part.row_first << ' ' << part.col_first);
    GuardedPlane<window_taps> memory(1);
    window_taps* taps = memory.data();
    list_taps(part, pitch, taps);
    EXPECT_EQ(taps->part, part);
    std::map<uint32_t, std::set<ptrdiff_t>> expected, listed;
    for (int row = part.row_first; row < part.row_end; ++row) {
      for (int col = part.col_first; col < part.col_end; ++col) {
        const int distance = std::min(std::abs(row) + std::abs(col), 15);
        expected[kWeights[distance]].insert((row - part.row_first) * pitch + col - part.col_first);
      }
    }
    int next = 0;
    for (int i = 0; i < taps->run_count; ++i) {
      const tap_run& run = taps->runs[i];
      EXPECT_EQ(run.first, next);
      EXPECT_GT(run.end, run.first);
      EXPECT_LE(run.end - run.first, kMaxRunTaps);
      for (next = run.first; next < run.end; ++next) {
        EXPECT_TRUE(listed[run.spatial_weight].insert(taps->offsets[next]).second);
      }
    }
    EXPECT_EQ(next, part.rows() * part.cols());
    EXPECT_EQ(listed, expected);
  }
}

}  // namespace
