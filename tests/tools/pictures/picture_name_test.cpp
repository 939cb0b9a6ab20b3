#include "tools/pictures/picture_name.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tool::FileKind;
using tool::Size;

TEST(PictureName, KindFollowsTheLastExtension) {
  EXPECT_EQ(tool::kind_of_name("/a.png/b.JPG"), FileKind::kJpeg);
  EXPECT_EQ(tool::kind_of_name("x.jpeg"), FileKind::kJpeg);
  EXPECT_EQ(tool::kind_of_name("x.tar.Png"), FileKind::kPng);
  EXPECT_EQ(tool::kind_of_name("input_16_16_0_1.nv21_m"), FileKind::kRaw);
  EXPECT_EQ(tool::kind_of_name("x.yuv"), FileKind::kRaw);
  EXPECT_EQ(tool::kind_of_name("x.y4m"), FileKind::kY4m);
  for (const char* name : {"x", "png", "x.tif", "/a.png/b", "x.", "x.png2"}) {
    EXPECT_EQ(tool::kind_of_name(name), std::nullopt) << name;
  }
}

TEST(PictureName, BothSpellingsOfASizeAreFoundTheClearerOneFirst) {
  EXPECT_THAT(tool::sizes_in_name("frame_1920x1080.nv21"), ElementsAre(Size{1920, 1080}));
  EXPECT_THAT(tool::sizes_in_name("input_1920_1080_0_640.nv21"), ElementsAre(Size{1920, 1080}));
  EXPECT_THAT(tool::sizes_in_name("7_9_64x48_crop_16x8.raw"),
              ElementsAre(Size{64, 48}, Size{16, 8}, Size{7, 9}, Size{9, 64}));
}

TEST(PictureName, SizesAreWholeNumbersOfTheNameItself) {
  EXPECT_THAT(tool::sizes_in_name("/1920x1080/x.raw"), IsEmpty());
  EXPECT_THAT(tool::sizes_in_name("20240101_120000_64X48.raw"), ElementsAre(Size{64, 48}));
  EXPECT_THAT(tool::sizes_in_name("a0x5-7x0-70000x2-16x.raw"), IsEmpty());
  EXPECT_THAT(tool::sizes_in_name("99999999999999999999x2.raw"), IsEmpty());
}

TEST(PictureName, SizeOptionTakesNothingElse) {
  EXPECT_EQ(tool::parse_size("1920x1080"), (Size{1920, 1080}));
  EXPECT_EQ(tool::parse_size("17_5"), (Size{17, 5}));
  for (const char* text : {"", "1920", "1920x", "x1080", "1920x1080x", "-1x5", "0x5", "5x0",
                           "65536x1", "60000x60000", " 1x1", "1 x 1"}) {
    EXPECT_EQ(tool::parse_size(text), std::nullopt) << text;
  }
}

}  // namespace
