#include "tools/measure/chart_figures.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "tests/tools/run_command.h"
#include "tests/tools/test_pictures.h"
#include "tools/pictures/colour.h"
#include "tools/report/chart_layout.h"
#include "tools/report/chart_picture.h"

namespace {

using testing::HasSubstr;
using tool::Nv21Frame;

// A frame whose chroma samples are chroma(x, y) = {u, v}.
template <typename Chroma>
Nv21Frame frame_of(int width, int height, Chroma chroma) {
  Nv21Frame frame(width, height);
  for (int y = 0; y < frame.chroma_height(); ++y) {
    for (int x = 0; x < frame.chroma_width(); ++x) {
      const auto [u, v] = chroma(x, y);
      uint8_t* pair = frame.vu() + y * frame.chroma_stride() + 2 * x;
      pair[0] = static_cast<uint8_t>(v);
      pair[1] = static_cast<uint8_t>(u);
    }
  }
  return frame;
}

TEST(ChartFigures, PatchWorkedOutByHand) {
  const Nv21Frame reference = frame_of(32, 32, [](int, int) { return std::pair(168, 158); });
  // (40, 30) turns by a right angle to (-30, 40) and grows to (-33, 44). U has a checkerboard of 3;
  // V is a wave of 4 over 16 samples, whose frequency, 1/16, does not count as coarse.
  const Nv21Frame frame = frame_of(32, 32, [](int x, int y) {
    return std::pair(95 + ((x + y) % 2 == 0 ? 3 : -3), 172 + (y < 8 ? 4 : -4));
  });
  const tool::PatchFigures figures = tool::measure_colour_patch(frame, reference, {0, 0, 32, 32});
  EXPECT_NEAR(figures.deviation, std::sqrt((9 + 16) / 2.0), 1e-12);
  EXPECT_NEAR(figures.shift, std::hypot(33 + 40, 44 - 30), 1e-12);
  EXPECT_NEAR(figures.hue_shift.value(), 90, 1e-9);
  EXPECT_NEAR(figures.saturation_shift.value(), 10, 1e-9);
  EXPECT_NEAR(figures.coarse_share, 0, 1e-12);

  const tool::PatchFigures grey = tool::measure_colour_patch(
      reference, frame_of(32, 32, [](int, int) { return std::pair(129, 128); }), {0, 0, 32, 32});
  EXPECT_FALSE(grey.hue_shift || grey.saturation_shift) << "grey has no hue";
}

TEST(ChartFigures, CoarseShareIsThatOfBothPlanes) {
  // 64 samples: one wave over the width lies below 1/16, the checkerboard does not. Variances of 36
  // and 9.
  const Nv21Frame frame = frame_of(128, 128, [](int x, int y) {
    return std::pair(128 + (x < 32 ? 6 : -6), 128 + ((x + y) % 2 == 0 ? 3 : -3));
  });
  // Harmonics 1 and 3 of a square wave of 64 samples.
  const auto harmonic = [](int k) {
    return 2 / std::pow(32 * std::sin(std::numbers::pi * k / 64), 2);
  };
  EXPECT_NEAR(tool::measure_colour_patch(frame, frame, {0, 0, 128, 128}).coarse_share,
              36.0 / 45 * (harmonic(1) + harmonic(3)), 1e-9);
}

TEST(ChartFigures, EdgesWorkedOutByHand) {
  const auto ramp = [](int samples, int from, int to) {  // `samples` steps from level to level
    return [=](int at) {
      const int way = std::clamp(at - 20, 0, samples);
      return from + (to - from) * way / samples;
    };
  };
  const struct {
    int samples;
    double width;
  } kRamps[] = {{1, 1.6}, {2, 3.2}, {10, 16}, {20, 32}};  // 0.8 of the samples, 2 pixels each
  for (const auto& [samples, width] : kRamps) {
    const auto up = ramp(samples, 60, 200);
    const auto down = ramp(samples, 190, 110);
    const Nv21Frame columns =
        frame_of(128, 16, [&](int x, int) { return std::pair(120 + x % 2, up(x)); });
    EXPECT_NEAR(tool::edge_width(columns, {0, 0, 128, 16}, true).value(), width, 1e-9) << samples;
    const Nv21Frame rows = frame_of(16, 128, [&](int, int y) { return std::pair(down(y), 100); });
    EXPECT_NEAR(tool::edge_width(rows, {0, 0, 16, 128}, false).value(), width, 1e-9) << samples;
  }
  const Nv21Frame flat = frame_of(64, 16, [](int x, int) { return std::pair(100 + x / 8, 90); });
  EXPECT_FALSE(tool::edge_width(flat, {0, 0, 64, 16}, true)) << "a step of less than 8";
  EXPECT_FALSE(tool::edge_width(flat, {0, 0, 8, 16}, true)) << "too narrow for both sides";
}

TEST(Chart, PartsLieWhereTheTableSays) {
  EXPECT_EQ(tool::kChartSize.height % 2, 0);
  EXPECT_NE(tool::kChartSize.height % 16, 0);
  const tool::RgbImage image = tool::chart_picture();
  EXPECT_EQ(digest(image.pixels), 3745795518861881960u) << "the same on every machine";
  const Nv21Frame frame = tool::rgb_to_nv21(image, {});
  std::vector<tool::Crop> areas = {tool::kChartRamp, tool::kChartHues, tool::kChartSkin,
                                   tool::kChartLines, tool::kChartText};
  for (int i = 0; i < static_cast<int>(std::size(tool::kChartPatches)); ++i) {
    areas.push_back(tool::patch_area(i));
    const tool::PatchFigures figures =
        tool::measure_colour_patch(frame, frame, tool::patch_area(i));
    EXPECT_EQ(figures.deviation, 0) << tool::kChartPatches[i].name;
  }
  for (const tool::ChartEdge& edge : tool::kChartEdges) {
    areas.push_back(edge.area);
    EXPECT_NEAR(tool::edge_width(frame, edge.area, edge.vertical).value_or(0), 1.6, 1e-9)
        << edge.name;
  }
  for (size_t i = 0; i < areas.size(); ++i) {
    const tool::Crop& a = areas[i];
    EXPECT_EQ((a.x | a.y | a.width | a.height) % 2, 0) << i;
    EXPECT_LE(a.x + a.width, image.width) << i;
    EXPECT_LE(a.y + a.height, image.height) << i;
    for (size_t j = 0; j < i; ++j) {
      const tool::Crop& b = areas[j];
      EXPECT_TRUE(a.x + a.width <= b.x || b.x + b.width <= a.x || a.y + a.height <= b.y ||
                  b.y + b.height <= a.y)
          << i << " " << j;
    }
  }
}

TEST(Chart, CompareMeasuresIt) {
  const TestDirectory directory;
  const std::string chart = directory / "chart.png";
  ASSERT_EQ(run_vorel({"chart", "-o", chart}).status, 0);
  const CommandResult text = run_vorel({"compare", chart, "--chart"});
  EXPECT_EQ(text.status, 0) << text.err;
  EXPECT_THAT(text.out, HasSubstr("against the chart (1600 x 1062)"));
  EXPECT_THAT(text.out, testing::ContainsRegex("\nred +0.00 +0.0 % +0.00 +[+]0.0 +[+]0.0 %\n"));
  EXPECT_THAT(text.out, testing::ContainsRegex("\ngrey 80 +0.00 +0.0 % +0.00 +- +-\n"));
  EXPECT_THAT(text.out, testing::ContainsRegex("\nred / grey +1.6 +1.6\n"));
  const CommandResult json = run_vorel(
      {"compare", chart, chart, "--json", "--patch", "8,8,40,40", "--patch", "40,40,20,20"});
  EXPECT_EQ(json.status, 0) << json.err;
  EXPECT_THAT(json.out, HasSubstr("\"name\": \"40,40,20,20\""));
  EXPECT_THAT(json.out, HasSubstr("\"hue_shift\": 0.0"));

  // The red and blue edges, upright and level, and no edge at all.
  const CommandResult edges = run_vorel({"compare", chart, chart, "--edge", "1120,40,160,80",
                                         "--edge", "1464,40,100,224", "--edge", "40,40,100,80"});
  EXPECT_EQ(edges.status, 0) << edges.err;
  EXPECT_THAT(edges.out, testing::ContainsRegex("1120,40,160,80 +1.6 +1.6\n1464,40,100,224 +1.6 "
                                                "+1.6\n40,40,100,80 +- +-\n"));

  const std::string small = directory / "small.png";
  save(small, gradient_picture(64, 48));
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* message;
  } kRefused[] = {
      {{"compare", small, "--chart"}, 2, "small.png: is 64 x 48, but the chart is 1600 x 1062"},
      {{"compare", chart, "--chart", "--truth", chart}, 1, "both name the truth"},
      {{"compare", small, small, "--patch", "60,40,8,8"}, 1, "small.png, which is 64 x 48"},
      {{"compare", small, small, "--edge", "0,0,8,1"}, 1, "--edge does not lie in"},
  };
  for (const auto& refused : kRefused) {
    const CommandResult result = run_vorel(refused.arguments);
    EXPECT_EQ(result.status, refused.status);
    EXPECT_THAT(result.err, HasSubstr(refused.message));
  }
}

}  // namespace
