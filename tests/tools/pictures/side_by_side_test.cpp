#include "tools/pictures/side_by_side.h"

#include <gmock/gmock.h>

#include "tests/tools/test_pictures.h"
#include "tools/files/failure.h"

namespace {

using tool::Crop;
using tool::RgbImage;

TEST(SideBySide, PicturesStandInOrderWithAGapAndEnlarged) {
  const RgbImage a = gradient_picture(6, 4);
  RgbImage b = a;
  for (uint8_t& value : b.pixels) value = static_cast<uint8_t>(255 - value);
  const RgbImage joined = tool::side_by_side({&a, &b}, Crop{2, 1, 3, 2}, 2);
  ASSERT_EQ(joined.width, 2 * 3 * 2 + 8);
  ASSERT_EQ(joined.height, 4);
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 6; ++x) {
      for (int c = 0; c < 3; ++c) {
        const int value = a.row(1 + y / 2)[(2 + x / 2) * 3 + c];
        EXPECT_EQ(joined.row(y)[x * 3 + c], value);
        EXPECT_EQ(joined.row(y)[(x + 14) * 3 + c], 255 - value);
      }
    }
    EXPECT_EQ(joined.row(y)[6 * 3], 128);
    EXPECT_EQ(joined.row(y)[13 * 3], 128);
  }
}

TEST(SideBySide, PartsOutsideAndHugeResultsAreRefused) {
  const RgbImage a = gradient_picture(6, 4);
  for (const Crop crop :
       {Crop{4, 0, 3, 1}, Crop{0, 2, 1, 3}, Crop{0, 0, 7, 1}, Crop{999999, 0, 1, 1}}) {
    EXPECT_THROW(static_cast<void>(tool::side_by_side({&a}, crop, 1)), tool::Failure);
  }
  const RgbImage wide(40000, 1);
  EXPECT_THROW(static_cast<void>(tool::side_by_side({&wide, &wide}, {}, 1)), tool::Failure);
}

}  // namespace
