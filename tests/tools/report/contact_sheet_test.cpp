#include "tools/report/contact_sheet.h"

#include <gmock/gmock.h>

#include "tests/tools/test_pictures.h"
#include "tools/files/failure.h"
#include "tools/report/caption.h"

namespace {

using tool::RgbImage;

// The picture's red samples, '#' where set.
std::vector<std::string> drawing(const RgbImage& image) {
  std::vector<std::string> rows;
  for (int y = 0; y < image.height; ++y) {
    rows.emplace_back();
    for (int x = 0; x < image.width; ++x) rows.back() += image.row(y)[3 * x] != 0 ? '#' : '.';
  }
  return rows;
}

RgbImage drawn(const std::string& text, int scale, int width, int height, int x, int y) {
  RgbImage image(width, height);
  tool::draw_caption(image, x, y, text, scale, {255, 255, 255});
  return image;
}

TEST(Caption, LettersStandInOrderAndAreCutAtTheEdge) {
  EXPECT_THAT(drawing(drawn("j\xc3\xa4L", 1, 17, 9, 0, 0)),
              testing::ElementsAre("...#..#####.#....", "......#...#.#....", "..##..#...#.#....",
                                   "...#..#...#.#....", "...#..#...#.#....", "...#..#...#.#....",
                                   "...#..#####.#####", "#..#.............", ".##.............."));
  EXPECT_THAT(drawing(drawn("L", 2, 6, 4, -1, -10)),
              testing::ElementsAre("#.....", "#.....", "######", "######"));
}

TEST(Caption, LinesBreakAtBlanksAndInLongWords) {
  EXPECT_EQ(tool::wrapped_caption("one two\nabcdefgh", 5 * 6 - 1, 1), "one\ntwo\nabcde\nfgh");
  EXPECT_EQ(tool::caption_size("one\nseven", 2), (tool::Size{2 * (5 * 6 - 1), 2 * (2 * 11 - 2)}));
}

TEST(ContactSheet, TilesStandInReadingOrder) {
  const RgbImage a = gradient_picture(300, 40);
  const RgbImage b = gradient_picture(280, 60);
  const RgbImage sheet = tool::contact_sheet({{a, "a"}, {b, ""}, {b, "c"}}, {"title", 2, 1});
  // Margins of 16; title and captions 9 high, 6 below a picture.
  ASSERT_EQ(sheet.width, 16 + 300 + 16 + 280 + 16);
  ASSERT_EQ(sheet.height, 16 + 9 + 16 + 60 + 16 + (60 + 6 + 9) + 16);
  const auto shows = [&](const RgbImage& picture, int left, int top) {
    for (int y = 0; y < picture.height; ++y) {
      if (!std::equal(picture.row(y), picture.row(y) + picture.stride(),
                      sheet.row(top + y) + 3 * left)) {
        return false;
      }
    }
    return true;
  };
  EXPECT_TRUE(shows(a, 16, 41));
  EXPECT_TRUE(shows(b, 16 + 300 + 16, 41));
  EXPECT_TRUE(shows(b, 16, 41 + 60 + 16));
  EXPECT_THROW(static_cast<void>(tool::contact_sheet(
                   {{RgbImage(40000, 1), ""}, {a, ""}, {RgbImage(40000, 1), ""}}, {"", 3, 1})),
               tool::Failure);
}

}  // namespace
