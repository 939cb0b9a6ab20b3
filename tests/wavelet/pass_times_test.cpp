#include "wavelet/pass_times.h"

#include <gtest/gtest.h>

#include <iterator>
#include <vector>

#include "tests/support/system_watch.h"
#include "tests/wavelet/plain_half.h"
#include "wavelet/shrinkage.h"
#include "wavelet/sym4_planes.h"

namespace {

// With a clock that goes on by one between two looks, a pass takes as many microseconds as it has
// pieces: the lines tell which pass each piece was counted for.
TEST(PassTimes, EveryPieceCountsForItsOwnPass) {
  constexpr int kWidth = 72, kHeight = 132, kHalf = kWidth / 2, kRows = kHeight / 2;
  std::vector<_Float16> samples(kWidth * kHeight, 100);
  std::vector<_Float16> bands[kSubbands], work[3];
  buffer records[kSubbands]{};
  for (int i = 0; i < kSubbands; ++i) {
    const int cols = i < 4 ? kHalf / 2 : kHalf;
    const int rows = i < 4 ? kRows / 2 : kRows;
    bands[i].resize(static_cast<size_t>(cols) * rows);
    records[i].data = bands[i].data();
    records[i].width = static_cast<uint32_t>(cols);
    records[i].height = static_cast<uint32_t>(rows);
  }
  for (auto& plane : work) plane.resize(kHalf * kHeight);
  const sym4_work planes = {work[0].data(), work[1].data(), work[2].data(), kHalf * kHeight,
                            kHalf * kHeight};
  const sym4_run run = {records, planes, kWidth, kHeight, true};
  _Float16 thresholds[16] = {3640, 3276, 2548, 2548, 2184, 1000, 500};

  const TickingClock clock;
  PassTimes times(kDebugTiming);
  ASSERT_TRUE(sym4_forward_plane(run, samples.data(), &times));
  ASSERT_TRUE(denoise_subbands(records, nullptr, thresholds, {3, 5}, &times));
  ASSERT_TRUE(sym4_inverse_plane(run, records[0], samples.data(), &times));

  // Of 66 rows the first level makes 2 .. 64, of 33 the second 2 .. 31; the Haar walk takes all 33,
  // its directional joins 1 .. 31; back, the second level joins 33 rows to the pairs 2 .. 30, the
  // first the pairs 2 .. 63.
  const int64_t expected[] = {63, 63, 30, 30, 30, 63,         // apart
                              33, 33, 33, 33, 32, 32, 66,     // Haar, shrinkage
                              31, 31, 32, 32, 32, 32, 32, 1,  // joined
                              33, 33, 29, 62, 62, 62, 0};
  std::vector<int64_t> pieces;
  for (int pass = 0; pass < kPasses; ++pass) {
    pieces.push_back(times.usec(static_cast<Pass>(pass), static_cast<Pass>(pass)));
  }
  EXPECT_EQ(pieces, std::vector<int64_t>(std::begin(expected), std::end(expected)));
  PassTimes twice = times;
  twice.add(times);
  EXPECT_EQ(twice.usec(kForwardRows, kInverseRows), 2 * times.usec(kForwardRows, kInverseRows));
}

}  // namespace
