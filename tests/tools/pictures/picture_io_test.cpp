#include "tools/pictures/picture_io.h"

#include <filesystem>

#include "tests/tools/pictures/picture_checks.h"
#include "tests/tools/run_command.h"
#include "tests/tools/test_pictures.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/png_file.h"

namespace {

using tool::Picture;
using tool::RgbImage;
using tool::Size;

TEST(PictureIo, PngKeepsEveryBit) {
  const TestDirectory directory;
  for (const Size size : {Size{1, 1}, Size{17, 5}, Size{64, 48}}) {
    const RgbImage image = gradient_picture(size.width, size.height);
    save(directory / "a.png", image);
    EXPECT_EQ(rgb(tool::read_picture(directory / "a.png", {})).pixels, image.pixels);
  }
}

TEST(PictureIo, GreyPngBecomesRgb) {
  const TestDirectory directory;
  const std::vector<uint8_t> bytes = tool::encode_grey_png({0, 100, 200, 255}, {2, 2});
  write_text(directory / "grey.png", {bytes.begin(), bytes.end()});
  const Picture picture = tool::read_picture(directory / "grey.png", {});
  EXPECT_THAT(rgb(picture).pixels,
              testing::ElementsAre(0, 0, 0, 100, 100, 100, 200, 200, 200, 255, 255, 255));
}

TEST(PictureIo, UnchangedPicturesAreWrittenByteForByteToTheirOwnKind) {
  const TestDirectory directory;
  // What follows the end of a PNG or JPEG picture shows that the bytes were not made anew.
  save(directory / "a.png", gradient_picture(20, 10));
  save(directory / "a.jpg", tool::rgb_to_nv21(gradient_picture(20, 10), {}));
  for (const char* name : {"a.png", "a.jpg"}) {
    write_text(directory / name, read_text(directory / name) + "more");
  }
  save(directory / "a_20x10.nv12", patterned_frame(20, 10));
  for (const char* name : {"a.png", "a.jpg", "a_20x10.nv12"}) {
    const std::string copy = directory / (std::string("copy_") + name);
    const auto output = tool::PictureOutput::open(copy);
    output->write_unchanged(tool::read_picture(directory / name, {}));
    output->finish();
    EXPECT_EQ(read_text(copy), read_text(directory / name)) << name;
  }
  const auto output = tool::PictureOutput::open(directory / "b.nv21");
  output->write_unchanged(tool::read_picture(directory / "a_20x10.nv12", {}));
  output->finish();
  EXPECT_NE(read_text(directory / "b.nv21"), read_text(directory / "a_20x10.nv12"));
}

TEST(PictureIo, ContentsTellPngFromJpeg) {
  const TestDirectory directory;
  const RgbImage image = gradient_picture(16, 16);
  save(directory / "a.png", image);
  write_text(directory / "b.jpg", read_text(directory / "a.png"));
  EXPECT_EQ(rgb(tool::read_picture(directory / "b.jpg", {})).pixels, image.pixels);
}

TEST(PictureIo, UnreadableFilesSayWhy) {
  const TestDirectory directory;
  expect_unreadable(directory / "none.png", "No such file");
  expect_unreadable(directory / "none.y4m", "No such file");
  expect_unreadable(directory / "none_16x16.nv21", "No such file");
  expect_unreadable(directory / "x.tif", "unknown extension");
  expect_unreadable("/.png", "No such file");
  write_text(directory / "empty.png", "");
  expect_unreadable(directory / "empty.png", "is empty");
  write_text(directory / "text.jpg", "no picture");
  expect_unreadable(directory / "text.jpg", "neither a PNG nor a JPEG");
}

TEST(PictureIo, CutFilesAreRefusedWhereverTheyAreCut) {
  const TestDirectory directory;
  save(directory / "a.png", gradient_picture(64, 64));
  save(directory / "a.jpg", tool::rgb_to_nv21(gradient_picture(64, 64), {}));
  save(directory / "a.y4m", patterned_frame(64, 64));
  for (const char* name : {"a.png", "a.jpg", "a.y4m"}) {
    const std::string whole = read_text(directory / name);
    const std::string cut = directory / (std::string("cut_") + name);
    for (size_t length = 20; length + 2 < whole.size(); length += 1 + whole.size() / 40) {
      write_text(cut, whole.substr(0, length));
      const int status = failure_of([&] { static_cast<void>(tool::read_picture(cut, {})); }).first;
      EXPECT_EQ(status, tool::kBadInput) << cut << " at " << length << " of " << whole.size();
    }
  }
}

TEST(PictureIo, DamagedPngIsRefused) {
  const TestDirectory directory;
  save(directory / "a.png", gradient_picture(64, 64));
  std::string bytes = read_text(directory / "a.png");
  bytes[bytes.size() / 2] ^= 1;
  write_text(directory / "a.png", bytes);
  expect_unreadable(directory / "a.png", "no readable PNG");
}

TEST(PictureIo, HugeSizesAreRefusedBeforeMemoryIsAskedFor) {
  const TestDirectory directory;
  save(directory / "a.png", gradient_picture(1, 1));
  std::string png = read_text(directory / "a.png");
  png.replace(16, 8, std::string("\0\1\0\0\0\1\0\0", 8));  // 65536 x 65536
  write_text(directory / "a.png", png);
  expect_unreadable(directory / "a.png", "no readable PNG");
  write_text(directory / "a.y4m", "YUV4MPEG2 W60000 H60000 F1:1\nFRAME\n");
  expect_unreadable(directory / "a.y4m", "no usable frame size");
  write_text(directory / "b.y4m", "YUV4MPEG2 W-16 H16 F1:1\nFRAME\n");
  expect_unreadable(directory / "b.y4m", "no usable frame size");
}

TEST(PictureIo, StillFilesTakeOnePicture) {
  const TestDirectory directory;
  const auto output = tool::PictureOutput::open(directory / "a.png");
  output->write({gradient_picture(8, 8), {}});
  EXPECT_EQ(failure_of([&] { output->write({gradient_picture(8, 8), {}}); }).first,
            tool::kBadUsage);
}

TEST(PictureIo, OutputsMayNotBeInputsOrEachOther) {
  const TestDirectory directory;
  write_text(directory / "in.png", "x");
  std::filesystem::create_symlink(directory / "in.png", directory / "link.png");
  const auto status = [&](const std::vector<std::string>& outputs, bool force) {
    return failure_of([&] { tool::check_outputs(outputs, {directory / "in.png"}, force); }).first;
  };
  EXPECT_EQ(status({directory / "in.png"}, false), tool::kBadUsage);
  EXPECT_EQ(status({directory / "link.png"}, false), tool::kBadUsage);
  EXPECT_EQ(status({directory / "in.png"}, true), tool::kDone);
  EXPECT_EQ(status({directory / "out.png"}, false), tool::kDone);
  EXPECT_EQ(status({directory / "out.png", directory / "out.png"}, true), tool::kBadUsage);
}

}  // namespace
