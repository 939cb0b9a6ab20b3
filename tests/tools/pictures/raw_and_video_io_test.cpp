#include <filesystem>

#include "tests/tools/pictures/picture_checks.h"
#include "tests/tools/run_command.h"
#include "tests/tools/test_pictures.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/raw_layout.h"

namespace {

using tool::Nv21Frame;
using tool::Picture;
using tool::ReadOptions;
using tool::Size;

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

}  // namespace
