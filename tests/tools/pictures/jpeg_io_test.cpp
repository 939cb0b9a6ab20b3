#include "tests/support/source_path.h"
#include "tests/tools/pictures/picture_checks.h"
#include "tests/tools/run_command.h"
#include "tests/tools/test_pictures.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/png_file.h"

namespace {

using testing::HasSubstr;
using tool::Nv21Frame;
using tool::Picture;
using tool::Size;

TEST(PictureIo, JpegIsWrittenAndReadWithoutColourConversion) {
  const TestDirectory directory;
  for (const Size size : {Size{64, 48}, Size{37, 21}}) {
    const Nv21Frame original = tool::rgb_to_nv21(gradient_picture(size.width, size.height), {});
    save(directory / "a.jpg", original);
    const Nv21Frame once = frame(tool::read_picture(directory / "a.jpg", {}));
    ASSERT_EQ(once.data.size(), original.data.size());
    EXPECT_LT(mean_difference(once.data, original.data), 1.2);
    // What a conversion would smear does not move any more.
    save(directory / "b.jpg", once);
    const Nv21Frame twice = frame(tool::read_picture(directory / "b.jpg", {}));
    EXPECT_LT(mean_difference(twice.data, once.data), 0.25);
  }
}

TEST(PictureIo, WhatFilesCarryTravelsBetweenKinds) {
  const TestDirectory directory;
  tool::Metadata carried;
  carried.exif = {'M', 'M', 0, 42, 0, 0, 0, 8, 0, 0, 0, 0, 0, 0};
  carried.xmp = {'<', 'x', ':', '>'};
  for (int i = 0; i < 70000; ++i) carried.iptc.push_back(static_cast<uint8_t>(i % 251));
  carried.texts = {{"Comment", "taken by caf\u00e9 light"}};
  carried.density = {{11811.0, 5906.0}};  // 300 x 150 per inch
  Picture picture{tool::rgb_to_nv21(gradient_picture(32, 32), {}), carried};
  for (const char* name : {"a.jpg", "b.png", "c.jpg"}) {
    const auto output = tool::PictureOutput::open(directory / name);
    output->write(picture);
    output->finish();
    picture = tool::read_picture(directory / name, {});
    const tool::Metadata& found = picture.metadata;
    EXPECT_EQ(found.exif, carried.exif) << name;
    EXPECT_EQ(found.xmp, carried.xmp) << name;
    EXPECT_EQ(found.iptc, carried.iptc) << name;
    ASSERT_EQ(found.texts.size(), 1u) << name;
    EXPECT_EQ(found.texts[0].text, carried.texts[0].text) << name;
    ASSERT_TRUE(found.density) << name;
    EXPECT_NEAR(found.density->x_per_metre, 11811, 1) << name;
    EXPECT_NEAR(found.density->y_per_metre, 5906, 1) << name;
  }
}

// The encoder would divide by it.
TEST(PictureIo, JpegWithAZeroInItsTablesIsWrittenWithOthers) {
  const TestDirectory directory;
  std::string bytes = read_text(source_path("tests/tools/data/420.jpg"));
  bytes[bytes.find("\xFF\xDB") + 20] = 0;
  write_text(directory / "zero.jpg", bytes);
  Picture picture = tool::read_picture(directory / "zero.jpg", {});
  Nv21Frame changed = frame(picture);
  changed.vu()[0] ^= 0x30;
  picture.pixels = changed;
  const auto output = tool::PictureOutput::open(directory / "o.jpg");
  output->write(picture);
  output->finish();
  EXPECT_EQ(tool::read_picture(directory / "o.jpg", {}).size(), picture.size());
}

// Decodes both files' planes by reading them as pictures of their own; luma must be the same.
TEST(PictureIo, JpegKeepsLumaTablesAndSamplingOfTheOneItComesFrom) {
  const TestDirectory directory;
  for (const char* name : {"grey", "444", "422", "440", "420", "progressive"}) {
    const std::string path = source_path(std::string("tests/tools/data/") + name + ".jpg");
    Picture picture = tool::read_picture(path, {});
    Nv21Frame changed = frame(picture);
    for (int y = 2; y < 8; ++y) {
      for (int x = 8; x < 24; ++x) changed.vu()[y * changed.chroma_stride() + x] ^= 0x30;
    }
    picture.pixels = changed;
    const auto output = tool::PictureOutput::open(directory / "o.jpg");
    output->write(picture);
    output->finish();
    const std::string before = read_text(path);
    const std::string after = read_text(directory / "o.jpg");
    // The tables (DQT), and sampling factors with the size (SOF).
    for (const char* marker :
         {"\xFF\xDB", std::string_view(name) == "progressive" ? "\xFF\xC2" : "\xFF\xC0"}) {
      const size_t from = before.find(marker);
      const size_t to = after.find(marker);
      ASSERT_NE(from, std::string::npos) << name;
      ASSERT_NE(to, std::string::npos) << name;
      EXPECT_EQ(before.substr(from, 13), after.substr(to, 13)) << name;
    }
    EXPECT_THAT(after, HasSubstr("a comment"));
    const Nv21Frame reread = frame(tool::read_picture(directory / "o.jpg", {}));
    const Nv21Frame original = frame(tool::read_picture(path, {}));
    EXPECT_TRUE(std::equal(original.y(), original.vu(), reread.y())) << name;
    const size_t far = original.chroma_bytes() - 4;
    EXPECT_EQ(reread.vu()[far], original.vu()[far]) << name << ": a block that did not change";
    if (std::string_view(name) != "grey") {
      EXPECT_GT(std::abs(reread.vu()[5 * changed.chroma_stride() + 15] -
                         original.vu()[5 * changed.chroma_stride() + 15]),
                16)
          << name;
    }
  }
}

TEST(PictureIo, ProfilesThatPngRefusesAreLeftOut) {
  const TestDirectory directory;
  Picture picture{gradient_picture(8, 8), {}};
  picture.metadata.icc = {'n', 'o', ' ', 'p', 'r', 'o', 'f', 'i', 'l', 'e'};
  for (const char* name : {"a.jpg", "b.png"}) {
    const auto output = tool::PictureOutput::open(directory / name);
    output->write(picture);
    output->finish();
  }
  EXPECT_EQ(tool::read_picture(directory / "a.jpg", {}).metadata.icc, picture.metadata.icc);
  EXPECT_EQ(tool::read_picture(directory / "b.png", {}).metadata.icc.size(), 0u);
}

}  // namespace
