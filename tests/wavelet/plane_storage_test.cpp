#include "wavelet/plane_storage.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/faults.h"

namespace {

class PlaneStorage : public testing::Test {
 protected:
  plane_scratch lend(uint32_t rows, uint32_t bytes_per_row) {
    const buffer record{memory_, rows, bytes_per_row, 0, 0, 0, 0, 0, false};
    return scratch_of(&record);
  }
  alignas(8) uint8_t memory_[256] = {};
  buffer plane_{};
};

TEST_F(PlaneStorage, BorrowedPlanesFollowEachOtherInStepsOfEightBytes) {
  plane_scratch scratch = lend(4, 12);  // 48 bytes, whatever the record held before
  plane_ = {&scratch, 9, 9, 9, 9, 9, 9, 9, false};
  ASSERT_TRUE(take_plane(&plane_, &scratch, 3, 3));  // 18 bytes take 24
  EXPECT_EQ(plane_.data, memory_);
  EXPECT_TRUE(plane_.borrowed);
  EXPECT_EQ(plane_.height, 3u);
  EXPECT_EQ(plane_.width, 3u);
  EXPECT_EQ(plane_.kind + plane_.padX + plane_.padY + plane_.innerWidth + plane_.innerHeight, 0u);
  EXPECT_EQ(scratch.remaining_bytes, 24u);
  ASSERT_TRUE(take_plane(&plane_, &scratch, 2, 6));  // 24 bytes: exactly what is left
  EXPECT_EQ(plane_.data, memory_ + 24);
  EXPECT_TRUE(plane_.borrowed);
  EXPECT_EQ(scratch.remaining_bytes, 0u);
}

TEST_F(PlaneStorage, OneByteTooFewSendsThePlaneToTheHeap) {
  plane_scratch scratch = lend(1, 23);
  ASSERT_TRUE(take_plane(&plane_, &scratch, 3, 3));
  EXPECT_FALSE(plane_.borrowed);
  EXPECT_EQ(scratch.cursor, memory_);
  EXPECT_EQ(scratch.remaining_bytes, 23u);
  // The heap lends exactly the 18 bytes; an address sanitizer sees one more.
  for (int i = 0; i < 9; ++i) static_cast<_Float16*>(plane_.data)[i] = 1;
  release_plane(&plane_);
  // A smaller plane still fits.
  ASSERT_TRUE(take_plane(&plane_, &scratch, 1, 8));
  EXPECT_EQ(plane_.data, memory_);
}

TEST_F(PlaneStorage, NothingLentMeansTheHeap) {
  const buffer without_data{nullptr, 100, 100, 0, 0, 0, 0, 0, false};
  plane_scratch scratches[] = {scratch_of(nullptr), scratch_of(&without_data)};
  for (plane_scratch& scratch : scratches) {
    EXPECT_EQ(scratch.remaining_bytes, 0u);
    ASSERT_TRUE(take_plane(&plane_, &scratch, 2, 2));
    EXPECT_FALSE(plane_.borrowed);
    release_plane(&plane_);
  }
  ASSERT_TRUE(take_plane(&plane_, nullptr, 0, 5));  // an empty plane is a plane
  EXPECT_NE(plane_.data, nullptr);
  release_plane(&plane_);
}

TEST_F(PlaneStorage, ReleaseFreesOnceAndLeavesBorrowedMemoryAlone) {
  plane_scratch scratch = lend(1, 16);
  ASSERT_TRUE(take_plane(&plane_, &scratch, 1, 8));
  static_cast<_Float16*>(plane_.data)[0] = 1;
  release_plane(&plane_);
  EXPECT_EQ(plane_.data, nullptr);
  EXPECT_EQ(memory_[1], 0x3C);
  ASSERT_TRUE(take_plane(&plane_, nullptr, 4, 4));
  release_plane(&plane_);
  release_plane(&plane_);
  EXPECT_EQ(plane_.data, nullptr);
}

TEST_F(PlaneStorage, FailedAllocationLeavesNoPlane) {
  FaultScope heap(FaultScope::Kind::kAllocation, 1);
  EXPECT_FALSE(take_plane(&plane_, nullptr, 4, 4));
  EXPECT_EQ(plane_.data, nullptr);
  release_plane(&plane_);
}

TEST_F(PlaneStorage, TheRestCanBeLentOn) {
  plane_scratch scratch = lend(8, 8);
  ASSERT_TRUE(take_plane(&plane_, &scratch, 1, 4));
  const buffer rest = rest_of(scratch);
  const plane_scratch again = scratch_of(&rest);
  EXPECT_EQ(again.cursor, memory_ + 8);
  EXPECT_EQ(again.remaining_bytes, 56u);
}

}  // namespace
