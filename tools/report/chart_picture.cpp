#include "tools/report/chart_picture.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "tools/report/caption.h"
#include "tools/report/chart_layout.h"

namespace tool {
namespace {

constexpr Rgb kBlack{16, 16, 16};
constexpr Rgb kWhite{240, 240, 240};

void put(RgbImage& image, int x, int y, Rgb colour) {
  uint8_t* pixel = image.row(y) + 3 * static_cast<size_t>(x);
  pixel[0] = colour.r;
  pixel[1] = colour.g;
  pixel[2] = colour.b;
}

// Paints an area with colour(x, y), counted from its top left corner.
template <typename Colour>
void paint(RgbImage& image, const Crop& area, Colour colour) {
  for (int y = 0; y < area.height; ++y) {
    for (int x = 0; x < area.width; ++x) put(image, area.x + x, area.y + y, colour(x, y));
  }
}

void fill(RgbImage& image, const Crop& area, Rgb colour) {
  paint(image, area, [colour](int, int) { return colour; });
}

// From `a` to `b` in `steps`, rounded to nearest.
Rgb between(Rgb a, Rgb b, int step, int steps) {
  const auto mix = [&](uint8_t from, uint8_t to) {
    return static_cast<uint8_t>((from * (steps - step) + to * step + steps / 2) / steps);
  };
  return {mix(a.r, b.r), mix(a.g, b.g), mix(a.b, b.b)};
}

// The pure hues from red through green and blue, 256 steps for each sixth of the circle.
Rgb hue(int step) {
  constexpr int kSixth = 256;
  const auto rising = static_cast<uint8_t>(step % kSixth);
  const auto falling = static_cast<uint8_t>(255 - rising);
  switch (step / kSixth) {
    case 0:
      return {255, rising, 0};
    case 1:
      return {falling, 255, 0};
    case 2:
      return {0, 255, rising};
    case 3:
      return {0, falling, 255};
    case 4:
      return {rising, 0, 255};
    default:
      return {255, 0, falling};
  }
}

void draw_edge(RgbImage& image, const ChartEdge& edge) {
  paint(image, edge.area, [&](int x, int y) {
    const bool is_first = edge.vertical ? x < edge.area.width / 2 : y < edge.area.height / 2;
    return is_first ? edge.first : edge.second;
  });
}

void draw_gradients(RgbImage& image) {
  paint(image, kChartRamp, [](int x, int) {
    const auto grey = static_cast<uint8_t>(x * 256 / kChartRamp.width);
    return Rgb{grey, grey, grey};
  });
  paint(image, kChartHues, [](int x, int y) {
    constexpr Rgb kGrey{128, 128, 128};
    const int quarter = y * 4 / kChartHues.height;
    return between(hue(x), kGrey, quarter, 4);
  });
  paint(image, kChartSkin, [](int x, int y) {
    constexpr Rgb kTones[] = {
        {62, 38, 30}, {120, 78, 56}, {172, 120, 92}, {214, 166, 138}, {244, 214, 196}};
    constexpr int kStep = kChartSkin.width / (static_cast<int>(std::size(kTones)) - 1);
    const int tone = x / kStep;
    const Rgb colour = between(kTones[tone], kTones[tone + 1], x % kStep, kStep);
    return between(colour, {0, 0, 0}, y, 2 * kChartSkin.height);  // down to half the light
  });
}

// Lines whose distance grows from 2 pixels to 16.
bool is_line(int position) {
  int at = 2;
  for (int gap = 2; at < position; gap = std::min(gap + 1, 16)) at += gap;
  return at == position;
}

void draw_ray(RgbImage& image, const Crop& tile, int end_x, int end_y, Rgb colour) {
  const int steps = std::max(end_x, end_y);
  for (int i = 0; i <= steps; ++i) {
    put(image, tile.x + (2 * end_x * i + steps) / (2 * steps),
        tile.y + (2 * end_y * i + steps) / (2 * steps), colour);
  }
}

void draw_lines(RgbImage& image) {
  constexpr int kTiles = 4;
  constexpr int kGap = 16;
  Crop tile = kChartLines;
  tile.width = (kChartLines.width - (kTiles - 1) * kGap) / kTiles;
  paint(image, tile, [](int x, int) { return is_line(x) ? kBlack : kWhite; });
  tile.x += tile.width + kGap;
  paint(image, tile, [](int, int y) { return is_line(y) ? kWhite : kBlack; });
  tile.x += tile.width + kGap;
  fill(image, tile, kWhite);
  for (int end = 0; end < tile.height; end += 24) {
    draw_ray(image, tile, tile.width - 1, end, kBlack);
    draw_ray(image, tile, end, tile.height - 1, kBlack);
  }
  tile.x += tile.width + kGap;
  // Coloured lines on a grey of about their luma, so that they live in chroma only.
  constexpr Rgb kColours[] = {{200, 40, 40}, {40, 110, 40}, {60, 80, 220}};
  paint(image, tile, [&](int x, int y) {
    constexpr Rgb kGrey{88, 88, 88};
    if (x % 15 == 7) return kColours[x / 15 % 3];
    return y % 15 == 7 ? kColours[y / 15 % 3] : kGrey;
  });
}

void draw_text(RgbImage& image) {
  struct Panel {
    Rgb ground;
    Rgb ink;
  };
  constexpr Panel kPanels[] = {{{240, 240, 240}, {16, 16, 16}},
                               {{16, 16, 16}, {240, 240, 240}},
                               {{88, 88, 88}, {200, 40, 40}},
                               {{230, 200, 30}, {30, 60, 160}}};
  Crop panel = kChartText;
  panel.width /= static_cast<int>(std::size(kPanels));
  for (const Panel& colours : kPanels) {
    fill(image, panel, colours.ground);
    int y = panel.y + 8;
    for (const int scale : {1, 2, 3}) {
      draw_caption(image, panel.x + 8, y,
                   scale == 3 ? "Fine text 0123456" : "Letters stay sharp:\nabcdefg 0123456 &%#@",
                   scale, colours.ink);
      y += scale == 3 ? 0 : 26 * scale;
    }
    panel.x += panel.width;
  }
}

}  // namespace

RgbImage chart_picture() {
  RgbImage image(kChartSize.width, kChartSize.height);
  fill(image, {0, 0, image.width, image.height}, kChartGround);
  for (size_t i = 0; i < std::size(kChartPatches); ++i) {
    fill(image, patch_area(static_cast<int>(i)), kChartPatches[i].colour);
  }
  for (const ChartEdge& edge : kChartEdges) draw_edge(image, edge);
  draw_gradients(image);
  draw_lines(image);
  draw_text(image);
  return image;
}

}  // namespace tool
