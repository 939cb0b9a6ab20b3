#include <gmock/gmock.h>

#include <cmath>

#include "tests/tools/run_command.h"
#include "tests/tools/test_pictures.h"
#include "tools/library/dump_names.h"
#include "tools/library/dump_picture.h"
#include "tools/library/dump_samples.h"
#include "tools/library/dump_trace.h"
#include "tools/pictures/picture_io.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using tool::DumpContent;
using tool::DumpLayout;
using tool::parse_dump_name;
using tool::Size;

TEST(DumpNames, EveryPlaneOfTheLibraryIsKnown) {
  const struct {
    const char* name;
    uint64_t bytes;
    Size size;
    DumpContent content;
    DumpLayout layout;
  } kNames[] = {
      {"input_1920_1080_0_640.nv21", 3110400, {1920, 1080}, DumpContent::kFrame, DumpLayout::kNv21},
      {"output_16_5_120_800.nv21", 120, {16, 5}, DumpContent::kFrame, DumpLayout::kNv21},
      {"input_16_4_0_1.yuyv", 128, {16, 4}, DumpContent::kFrame, DumpLayout::kYuyv},
      {"d_U_160_90.raw", 14400, {160, 90}, DumpContent::kPlane, DumpLayout::kBytes},
      {"Y_64_32.raw", 2048, {64, 32}, DumpContent::kPlane, DumpLayout::kBytes},
      {"Y_high_64_32.raw", 2048, {64, 32}, DumpContent::kPlane, DumpLayout::kBytes},
      {"u_Y_low_64_32.raw", 2048, {64, 32}, DumpContent::kPlane, DumpLayout::kBytes},
      {"VOREL_UV_64_16.raw", 1024, {64, 16}, DumpContent::kPairs, DumpLayout::kBytes},
      {"p_V_96_80.raw", 15360, {96, 80}, DumpContent::kPlane, DumpLayout::kHalfFloats},
      {"fW_0_U_24_20.raw", 960, {24, 20}, DumpContent::kLow, DumpLayout::kHalfFloats},
      {"fW_6_V_16_8_crop.raw", 256, {16, 8}, DumpContent::kDetail, DumpLayout::kHalfFloats},
      {"dH_U_24_20.raw", 960, {24, 20}, DumpContent::kLow, DumpLayout::kHalfFloats},
      {"dS_V_32_16_crop.raw", 1024, {32, 16}, DumpContent::kPlane, DumpLayout::kHalfFloats},
      {"p_V_96_80.raw", 7000, {96, 80}, DumpContent::kPlane, DumpLayout::kDamaged},
  };
  for (const auto& expected : kNames) {
    const auto file = parse_dump_name(expected.name, expected.bytes);
    ASSERT_TRUE(file) << expected.name;
    EXPECT_EQ(file->size, expected.size) << expected.name;
    EXPECT_EQ(file->content, expected.content) << expected.name;
    EXPECT_EQ(file->layout, expected.layout) << expected.name;
    EXPECT_EQ(file->cropped, std::string(expected.name).find("_crop") != std::string::npos);
  }
}

TEST(DumpNames, OtherFilesAreNot) {
  for (const char* name : {"readme.txt", "Y_64.raw", "d_X_4_4.raw", "fW_7_U_4_4.raw", "Y_.raw",
                           "input_4_4_0_1.png", "Y_0_4.raw", "Z_4_4.raw", "Y_high_4_x.raw",
                           "Y_4_4.yuyv", "f_V_1_101.nv21", "input_4_4_0_1.raw"}) {
    EXPECT_FALSE(parse_dump_name(name, 16)) << name;
  }
}

TEST(DumpNames, ExplainAndRename) {
  const auto input = parse_dump_name("input_1920_1080_120_640.nv21", 3110400);
  EXPECT_THAT(input->explanation, HasSubstr("sensor 120, noise index 640"));
  EXPECT_EQ(input->viewer_name, "input_1920x1080_120_640.nv21");
  const auto plane = parse_dump_name("dS_V_32_16_crop.raw", 1024);
  EXPECT_THAT(plane->explanation, HasSubstr("second of each pair, without its border"));
  EXPECT_EQ(plane->viewer_name, "dS_V_32x16_crop.raw");
}

TEST(DumpPicture, HalfPrecisionNumbers) {
  const std::pair<uint16_t, float> kNumbers[] = {
      {0x0000, 0.0f},       {0x3C00, 1.0f},        {0xC000, -2.0f},      {0x7BFF, 65504.0f},
      {0x508D, 36.40625f},  {0x5BF8, 255.0f},      {0x0001, 0x1.0p-24f}, {0x03FF, 0x1.FF8p-15f},
      {0x0400, 0x1.0p-14f}, {0x3555, 0x1.554p-2f}, {0x7C00, HUGE_VALF},  {0xFC00, -HUGE_VALF}};
  for (const auto& [bits, value] : kNumbers) EXPECT_EQ(tool::half_value(bits), value) << bits;
  EXPECT_TRUE(std::isnan(tool::half_value(0x7E00)));
}

// Bytes of a PNG file's pixels; grey is read as RGB.
std::vector<uint8_t> pixels_of(const std::vector<uint8_t>& png, const TestDirectory& directory) {
  write_text(directory / "shown.png", {png.begin(), png.end()});
  const tool::Picture picture = tool::read_picture(directory / "shown.png", {});
  return std::get<tool::RgbImage>(picture.pixels).pixels;
}

TEST(DumpPicture, HalfPrecisionPlanesAreShownInTheirScale) {
  const TestDirectory directory;
  // 1, 100, 300, -2, not a number, 0.5
  const std::string bytes("\x00\x3C\x40\x56\xB0\x5C\x00\xC0\x00\x7E\x00\x38", 12);
  const auto shown = [&](const std::string& name) {
    write_text(directory / name, bytes);
    auto file = parse_dump_name(name, bytes.size());
    file->path = directory / name;
    std::vector<int> greys;
    const std::vector<uint8_t> pixels = pixels_of(tool::dump_png(*file), directory);
    for (size_t i = 0; i < pixels.size(); i += 3) greys.push_back(pixels[i]);
    return greys;
  };
  EXPECT_THAT(shown("p_U_3_2.raw"), testing::ElementsAre(1, 100, 255, 0, 0, 1));
  EXPECT_THAT(shown("fW_0_U_3_2.raw"), testing::ElementsAre(0, 25, 75, 0, 0, 0));
  EXPECT_THAT(shown("fW_3_U_3_2.raw"), testing::ElementsAre(136, 255, 255, 112, 128, 132));
}

TEST(DumpSamples, FiguresWorkedOutByHand) {
  const float nan = std::nanf("");
  const tool::SampleFigures figures = tool::figures_of({nan, 3, -1, 7, nan, 3, HUGE_VALF});
  EXPECT_EQ(figures.least, -1);
  EXPECT_EQ(figures.most, HUGE_VALF);
  EXPECT_EQ(figures.mean, 3) << "of the finite ones";
  EXPECT_EQ(figures.deviation, std::sqrt(8.0));
  EXPECT_EQ(figures.not_numbers, 2u);
  EXPECT_EQ(tool::figures_of({nan, nan}).not_numbers, 2u);
}

// Every sample tells its place: 16-bit patterns that count, or bytes.
TEST(DumpTrace, TakesTheSampleThatHoldsThePixel) {
  const TestDirectory directory;
  const auto pattern = [](int x, int y) { return 0x4000 + (y * 89 + x) % 8192; };
  const struct {
    const char* name;
    Size size;
    bool half;
    int x;
    int y;
    double scale;
  } kPlanes[] = {
      // Pixel 45, 27 of the frame: chroma 22, 13.
      {"d_U_4_3.raw", {4, 3}, false, 2, 1, 1},
      {"Y_64_48.raw", {64, 48}, false, 45, 27, 1},
      {"u_V_32_24.raw", {32, 24}, false, 22, 13, 1},
      {"p_U_96_88.raw", {96, 88}, true, 22 + 32, 13 + 32, 1},
      {"fW_0_U_24_22.raw", {24, 22}, true, 22 / 4 + 8, 13 / 4 + 8, 0.25},
      {"fW_5_V_48_44.raw", {48, 44}, true, 22 / 2 + 16, 13 / 2 + 16, 1},
      {"dS_U_32_24_crop.raw", {32, 24}, true, 22, 13, 1},
  };
  write_text(directory / "input_64_48_0_800.nv21", std::string(64 * 72, 'a'));
  for (const auto& plane : kPlanes) {
    std::string bytes;
    for (int y = 0; y < plane.size.height; ++y) {
      for (int x = 0; x < plane.size.width; ++x) {
        bytes += static_cast<char>(pattern(x, y));
        if (plane.half) bytes += static_cast<char>(pattern(x, y) >> 8);
      }
    }
    write_text(directory / plane.name, bytes);
  }
  const tool::DumpTrace trace =
      tool::trace_pixel(directory.path(), tool::list_dumps(directory.path()), {45, 27});
  ASSERT_EQ(trace.steps.size(), 1 + std::size(kPlanes));
  for (size_t i = 0; i < std::size(kPlanes); ++i) {
    const auto& plane = kPlanes[i];
    const int bits = pattern(plane.x, plane.y);
    const double value = plane.half ? tool::half_value(static_cast<uint16_t>(bits)) : bits & 255;
    const std::string name = plane.name;
    const size_t component = name.find("_U_") != name.npos   ? 1
                             : name.find("_V_") != name.npos ? 2
                                                             : 0;
    EXPECT_EQ(trace.steps[i + 1].values[component], plane.scale * value) << plane.name;
  }
}

TEST(DumpVerb, ListsAndConvertsWhatTheLibraryWrote) {
  const TestDirectory directory;
  save(directory / "a_64x33.nv21", patterned_frame(64, 33));
  const CommandResult run =
      run_vorel({"denoise", directory / "a_64x33.nv21", "-o", directory / "b.nv21", "--dump",
                 directory / "dumps", "-n", "1600"});
  ASSERT_EQ(run.status, 0) << run.err;
  const CommandResult parent = run_vorel({"dump", directory / "dumps"});
  EXPECT_EQ(parent.status, 2);
  const size_t colon = parent.err.find("do: ");
  ASSERT_NE(colon, std::string::npos) << parent.err;
  const std::string folder = parent.err.substr(colon + 4, parent.err.size() - colon - 5);
  const std::string dumps = directory / "dumps/" + folder;

  const CommandResult list = run_vorel({"dump", dumps});
  EXPECT_EQ(list.status, 0) << list.err;
  for (const char* text : {"input_64_34_0_1600.nv21", "MFD_UV_64_17.raw", "p_U_96_82.raw",
                           "half float", "noise index 1600"}) {
    EXPECT_THAT(list.out, HasSubstr(text));
  }
  EXPECT_THAT(list.out, testing::Not(HasSubstr("damaged")));

  // What the stages changed adds up to the way from the input to the output.
  const tool::Nv21Frame before = patterned_frame(64, 33);
  const tool::Picture after = tool::read_picture(directory / "b.nv21", {.size = Size{64, 33}});
  for (const tool::DumpPixel pixel : {tool::DumpPixel{0, 0}, {63, 32}, {17, 9}}) {
    const tool::DumpTrace trace = tool::trace_pixel(dumps, tool::list_dumps(dumps), pixel);
    const size_t pair = static_cast<size_t>(pixel.y / 2 * 64 + pixel.x / 2 * 2);
    const uint8_t* out = std::get<tool::Nv21Frame>(after.pixels).vu() + pair;
    double most = 0;
    for (size_t i : {0, 1}) {
      double change = 0;
      for (const tool::TraceChange& row : trace.changes) {
        change += row.change[i + 1].value();
        most = std::max(most, std::fabs(row.change[i + 1].value()));
      }
      EXPECT_EQ(trace.steps.front().values[i + 1], before.vu()[pair + i]);
      EXPECT_EQ(trace.steps.back().values[i + 1], out[i]);
      EXPECT_EQ(change, out[i] - before.vu()[pair + i]);
    }
    EXPECT_EQ(std::fabs(trace.largest.value().change), most);
  }
  const CommandResult trace =
      run_vorel({"dump", dumps, "--trace", "17,9", "--montage", directory / "sheet.png"});
  EXPECT_EQ(trace.status, 0) << trace.err;
  EXPECT_THAT(trace.out, testing::ContainsRegex("  wavelet path +- +[+-][0-9.]+ +[+-][0-9.]+\n"));
  EXPECT_THAT(trace.out, HasSubstr("most changed by the "));
  EXPECT_GT(tool::read_picture(directory / "sheet.png", {}).size().width, 1000);
  EXPECT_THAT(run_vorel({"dump", dumps, "--trace", "17,9", "--json"}).out,
              HasSubstr("\"largest\""));
  EXPECT_THAT(run_vorel({"dump", dumps, "--json"}).out, HasSubstr("\"not_numbers\": "));
  EXPECT_THAT(run_vorel({"dump", dumps, "--trace", "64,9"}).err, HasSubstr("which is 64 x 34"));

  const CommandResult converted =
      run_vorel({"dump", dumps, "--png", "--y4m", "--rename", "-o", directory / "pictures"});
  EXPECT_EQ(converted.status, 0) << converted.err;
  const tool::Picture input = tool::read_picture(directory / "pictures/input_64_34_0_1600.png", {});
  EXPECT_EQ(input.size(), (Size{64, 34}));
  EXPECT_EQ(tool::read_picture(directory / "pictures/dS_U_32_17_crop.png", {}).size(),
            (Size{32, 17}));
  // The same bytes under all names.
  const tool::Picture y4m = tool::read_picture(directory / "pictures/input_64_34_0_1600.y4m", {});
  const tool::Picture raw = tool::read_picture(directory / "pictures/input_64x34_0_1600.nv21", {});
  EXPECT_EQ(std::get<tool::Nv21Frame>(y4m.pixels).data, std::get<tool::Nv21Frame>(raw.pixels).data);
  EXPECT_EQ(run_vorel({"dump", dumps}).out, list.out) << "the folder did not change";
}

TEST(DumpVerb, RefusesWhatMakesNoSense) {
  const TestDirectory directory;
  write_text(directory / "Y_4_4.raw", std::string(16, 'y'));
  EXPECT_EQ(run_vorel({"dump", directory / "none"}).status, 2);
  EXPECT_EQ(run_vorel({"dump", directory.path(), "--png"}).status, 1);
  EXPECT_EQ(run_vorel({"dump", directory.path(), "-o", directory / "x"}).status, 1);
  EXPECT_EQ(run_vorel({"dump", directory.path(), "--png", "-o", directory.path()}).status, 1);
  EXPECT_EQ(run_vorel({"dump", directory.path(), "--trace", "1;2"}).status, 1);
  EXPECT_THAT(run_vorel({"dump", directory.path(), "--trace", "1,2"}).err,
              HasSubstr("no dump of a whole frame"));
  write_text(directory / "u_U_4_4.raw", "short");
  EXPECT_EQ(run_vorel({"dump", directory.path(), "--montage", directory / "sheet.png"}).status, 0);
  const CommandResult run = run_vorel({"dump", directory.path(), "--png", "-o", directory / "p"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.err, HasSubstr("u_U_4_4.raw: left out"));
  EXPECT_THAT(run.out, HasSubstr("1 files written"));
}

}  // namespace
