#include "tools/pictures/picture.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAreArray;
using tool::Nv21Frame;
using tool::Size;

TEST(Picture, GrowingRepeatsTheLastColumnAndRow) {
  Nv21Frame frame(3, 3);
  frame.data = {1,  2,  3,  4,  5,  6,  7,  8, 9,  // luma
                10, 20, 11, 21, 12, 22, 13, 23};
  const Nv21Frame grown = tool::with_size(frame, {6, 4});
  const std::vector<uint8_t> expected = {1,  2,  3,  3,  3,  3,  4,  5,  6,  6,  6,  6,  //
                                         7,  8,  9,  9,  9,  9,  7,  8,  9,  9,  9,  9,  //
                                         10, 20, 11, 21, 11, 21, 12, 22, 13, 23, 13, 23};
  EXPECT_THAT(grown.data, ElementsAreArray(expected));
  EXPECT_THAT(tool::with_size(grown, {3, 3}).data, ElementsAreArray(frame.data));
}

TEST(Picture, LegalSizesHaveRoomInTheLibrarysArithmetic) {
  EXPECT_TRUE(tool::is_legal_size(65535, 4096));
  EXPECT_FALSE(tool::is_legal_size(65535, 4097));
  EXPECT_FALSE(tool::is_legal_size(65536, 1));
  EXPECT_FALSE(tool::is_legal_size(0, 1));
  EXPECT_FALSE(tool::is_legal_size(1, -1));
}

}  // namespace
