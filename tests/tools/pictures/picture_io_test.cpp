#include "tools/pictures/picture_io.h"

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>

#include "tests/support/source_path.h"
#include "tests/tools/run_command.h"
#include "tests/tools/test_pictures.h"
#include "tools/files/failure.h"
#include "tools/files/file_bytes.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/png_file.h"
#include "tools/pictures/raw_layout.h"

namespace {

using testing::HasSubstr;
using tool::Nv21Frame;
using tool::Picture;
using tool::ReadOptions;
using tool::RgbImage;
using tool::Size;

// Status and text of the failure that `action` ends with; kDone and "" when it does not fail.
template <typename Action>
std::pair<int, std::string> failure_of(Action action) {
  try {
    action();
  } catch (const tool::Failure& failure) {
    return {failure.status(), failure.what()};
  }
  return {tool::kDone, ""};
}

// Reading must fail as bad input, naming the file and saying `reason`.
void expect_unreadable(const std::string& path, const std::string& reason,
                       const ReadOptions& options = {}) {
  const auto [status, text] =
      failure_of([&] { static_cast<void>(tool::read_picture(path, options)); });
  EXPECT_EQ(status, tool::kBadInput) << path << ": " << text;
  EXPECT_THAT(text, HasSubstr(path));
  EXPECT_THAT(text, HasSubstr(reason));
}

const RgbImage& rgb(const Picture& picture) { return std::get<RgbImage>(picture.pixels); }
const Nv21Frame& frame(const Picture& picture) { return std::get<Nv21Frame>(picture.pixels); }

double mean_difference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  double sum = 0;
  for (size_t i = 0; i < a.size(); ++i) sum += std::abs(a[i] - b[i]);
  return sum / static_cast<double>(a.size());
}

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

TEST(PictureIo, RawKeepsEveryBitAndTakesItsSizeFromNameOrOption) {
  const TestDirectory directory;
  for (const Size size : {Size{16, 8}, Size{17, 9}}) {
    const Nv21Frame original = patterned_frame(size.width, size.height);
    const std::string spelled = directory / ("f_" + std::to_string(size.width) + "x" +
                                             std::to_string(size.height) + ".nv21");
    save(spelled, original);
    EXPECT_EQ(frame(tool::read_picture(spelled, {})).data, original.data);
    save(directory / "plain.yuv", original);
    EXPECT_EQ(frame(tool::read_picture(directory / "plain.yuv", {size, {}, {}})).data,
              original.data);
  }
}

// Pixels with colours that differ between all places, so that no two layouts look alike.
TEST(PictureIo, RawLayoutsHoldTheSamePicture) {
  const TestDirectory directory;
  for (const Size size : {Size{18, 6}, Size{17, 9}}) {
    const Nv21Frame original = patterned_frame(size.width, size.height);
    const auto luma = static_cast<size_t>(size.width * size.height);
    const size_t chroma = (original.data.size() - luma) / 2;
    const auto v = [&](size_t i) { return original.vu()[2 * i]; };
    const auto u = [&](size_t i) { return original.vu()[2 * i + 1]; };
    for (const std::string name : {"nv21", "nv12", "i420", "yv12"}) {
      const std::string path = directory / ("a." + name);
      save(path, original);
      const std::string bytes = read_text(path).substr(luma);
      const bool planar = name == "i420" || name == "yv12";
      const bool u_first = name == "nv12" || name == "i420";
      const auto first = static_cast<uint8_t>(bytes[planar ? 1 : 2]);
      const auto second = static_cast<uint8_t>(bytes[planar ? chroma + 1 : 3]);
      EXPECT_EQ(first, u_first ? u(1) : v(1)) << name;
      EXPECT_EQ(second, u_first ? v(1) : u(1)) << name;
      EXPECT_EQ(frame(tool::read_picture(path, {size})).data, original.data) << name;
      std::filesystem::rename(path, directory / "b.raw");
      ReadOptions told{size};
      told.layout = tool::parse_layout(name);
      EXPECT_EQ(frame(tool::read_picture(directory / "b.raw", told)).data, original.data) << name;
    }
  }
}

TEST(PictureIo, RawRowsMayHaveGapsAndFilesSeveralFrames) {
  const TestDirectory directory;
  // 4 x 2 with rows of 6 bytes: luma, then a U row and a V row of 3 bytes; two frames.
  write_text(directory / "a.i420", "abcd..efgh..UV.uv.ABCD..EFGH..WX.wx.");
  ReadOptions options{Size{4, 2}};
  options.stride = 6;
  options.frames = tool::kAllFrames;
  const auto input = tool::PictureInput::open(directory / "a.i420", options);
  EXPECT_EQ(input->expected_frames(), 2);
  const auto text = [](const Picture& picture) {
    return std::string(frame(picture).data.begin(), frame(picture).data.end());
  };
  EXPECT_EQ(text(*input->next()), "abcdefghuUvV");
  EXPECT_EQ(text(*input->next()), "ABCDEFGHwWxX");
  EXPECT_FALSE(input->next());
  options.frames = 3;
  expect_unreadable(directory / "a.i420", "3 are asked for", options);
  options.frames = 1;
  EXPECT_EQ(text(tool::read_picture(directory / "a.i420", options)), "abcdefghuUvV");
  options.stride = 3;
  const auto read = [&] { static_cast<void>(tool::read_picture(directory / "a.i420", options)); };
  EXPECT_EQ(failure_of(read).first, tool::kBadUsage);
}

TEST(PictureIo, ChromaOfAnotherLayoutIsNoticed) {
  using tool::Layout;
  constexpr Layout kLayouts[] = {Layout::kNv21, Layout::kNv12, Layout::kI420, Layout::kYv12};
  const Nv21Frame picture = tool::rgb_to_nv21(gradient_picture(128, 96), {});
  Nv21Frame grey = picture;
  std::fill_n(grey.vu(), grey.chroma_bytes(), uint8_t{128});
  for (const Layout held : kLayouts) {
    for (const Layout read : kLayouts) {
      const tool::RawShape shape{{128, 96}, read, 0};
      const auto likelier = tool::likelier_layout(tool::pack_raw(picture, held), shape);
      EXPECT_EQ(likelier.has_value(), is_planar(held) != is_planar(read))
          << tool::layout_name(held) << " read as " << tool::layout_name(read);
      if (likelier) EXPECT_EQ(is_planar(*likelier), is_planar(held));
      EXPECT_FALSE(tool::likelier_layout(tool::pack_raw(grey, held), shape));
    }
  }
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

TEST(PictureIo, RawSizeIsTheOneThatTheLengthConfirms) {
  const TestDirectory directory;
  save(directory / "9_12_16_8.raw", patterned_frame(16, 8));
  EXPECT_EQ(tool::read_picture(directory / "9_12_16_8.raw", {}).size(), (Size{16, 8}));
}

TEST(PictureIo, DumpsOfOddHeightAreReadWithoutTheirHalfChromaRow) {
  const TestDirectory directory;
  // 16 x 5: 80 bytes of luma, 2 chroma rows, and half a row.
  std::string bytes(16 * 5 + 16 * 2, 'a');
  for (int i = 0; i < 16; ++i) bytes[static_cast<size_t>(96 + i)] = static_cast<char>(i);
  write_text(directory / "input_16_5_0_640.nv21", bytes + "ignored!");
  const Picture picture = tool::read_picture(directory / "input_16_5_0_640.nv21", {});
  ASSERT_EQ(picture.size(), (Size{16, 5}));
  const uint8_t* vu = frame(picture).vu();
  for (int i = 0; i < 16; ++i) {
    EXPECT_EQ(vu[16 + i], i);
    EXPECT_EQ(vu[32 + i], i) << "the last row stands in for the missing one";
  }
}

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

TEST(PictureIo, ContentsTellPngFromJpeg) {
  const TestDirectory directory;
  const RgbImage image = gradient_picture(16, 16);
  save(directory / "a.png", image);
  write_text(directory / "b.jpg", read_text(directory / "a.png"));
  EXPECT_EQ(rgb(tool::read_picture(directory / "b.jpg", {})).pixels, image.pixels);
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

TEST(PictureIo, Y4mKeepsEveryFrameAndItsHeader) {
  const TestDirectory directory;
  const Nv21Frame first = patterned_frame(17, 9);
  Nv21Frame second = first;
  for (uint8_t& byte : second.data) byte ^= 0x55;
  const auto output = tool::PictureOutput::open(directory / "v.y4m");
  Picture picture{first, {}};
  picture.metadata.y4m_tags = "W17 H9 F24:1 Ip A1:1 C420mpeg2 XCOLORRANGE=LIMITED";
  output->write(picture);
  picture.pixels = second;
  output->write(picture);
  output->finish();
  EXPECT_THAT(read_text(directory / "v.y4m"),
              testing::StartsWith("YUV4MPEG2 W17 H9 F24:1 Ip A1:1 C420mpeg2 "
                                  "XCOLORRANGE=LIMITED\nFRAME\n"));

  const auto input = tool::PictureInput::open(directory / "v.y4m", {});
  EXPECT_EQ(input->expected_frames(), 2);
  EXPECT_EQ(input->colour().range, tool::Range::kLimited);
  EXPECT_EQ(frame(*input->next()).data, first.data);
  EXPECT_EQ(frame(*input->next()).data, second.data);
  EXPECT_EQ(input->next(), std::nullopt);
}

TEST(PictureIo, Y4mPlanesComeOutInTheirOrder) {
  const TestDirectory directory;
  write_text(directory / "v.y4m", "YUV4MPEG2 W2 H2 F1:1");
  EXPECT_EQ(tool::PictureInput::open(directory / "v.y4m", {})->expected_frames(), 0);
  write_text(directory / "v.y4m", "YUV4MPEG2 W2 H2 F1:1\nFRAME Xtag\nYYYYUV");
  const Picture picture = tool::read_picture(directory / "v.y4m", {});
  EXPECT_THAT(frame(picture).data, testing::ElementsAre('Y', 'Y', 'Y', 'Y', 'V', 'U'));
  EXPECT_EQ(frame(picture).colour.range, tool::Range::kFull) << "the default";
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

TEST(PictureIo, RawFilesMustFitTheirSize) {
  const TestDirectory directory;
  write_text(directory / "a.raw", std::string(384, 'a'));
  expect_unreadable(directory / "a.raw", "--size");
  expect_unreadable(directory / "a.raw", "16 x 18 has 432", {Size{16, 18}, {}, {}});
  expect_unreadable(directory / "a.raw", "2 frames", {Size{16, 8}, {}, {}});
  write_text(directory / "a_16x18.raw", std::string(431, 'a'));
  expect_unreadable(directory / "a_16x18.raw", "holds 431 bytes");
}

TEST(PictureIo, OtherVideoIsRefused) {
  const TestDirectory directory;
  for (const char* chroma : {"C420p10", "C422", "Cmono"}) {
    write_text(directory / "a.y4m", std::string("YUV4MPEG2 W16 H16 ") + chroma + "\nFRAME\n");
    expect_unreadable(directory / "a.y4m", "8-bit 4:2:0");
  }
  write_text(directory / "a.y4m", "RIFF W16 H16\n");
  expect_unreadable(directory / "a.y4m", "no y4m file");
  write_text(directory / "a.y4m", "YUV4MPEG2 W2 H2\nframe\nYYYYUV");
  expect_unreadable(directory / "a.y4m", "frame 1 does not start");
  write_text(directory / "a.y4m", "YUV4MPEG2 W2 H2\n");
  expect_unreadable(directory / "a.y4m", "no frame");
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
