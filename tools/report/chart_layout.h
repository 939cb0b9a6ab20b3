// The test chart of `vorel chart`: where its parts are and which colours they have. What draws it
// and what measures pictures of it both read this.
#ifndef VOREL_TOOLS_REPORT_CHART_LAYOUT_H_
#define VOREL_TOOLS_REPORT_CHART_LAYOUT_H_

#include "tools/pictures/picture.h"
#include "tools/pictures/side_by_side.h"
#include "tools/report/caption.h"

namespace tool {

// The height is no multiple of 16, and chroma has an odd number of rows. All parts start and end at
// even pixels, so that no chroma sample lies in two of them.
inline constexpr Size kChartSize{1600, 1062};
inline constexpr Rgb kChartGround{104, 104, 104};

struct ChartPatch {
  const char* name;
  Rgb colour;
};

inline constexpr int kPatchColumns = 6;
inline constexpr int kPatchRows = 4;
inline constexpr ChartPatch kChartPatches[kPatchColumns * kPatchRows] = {
    {"deep skin", {112, 76, 60}},  {"fair skin", {204, 158, 136}}, {"sky", {96, 130, 172}},
    {"leaf", {84, 110, 60}},       {"lavender", {136, 126, 182}},  {"sea", {96, 186, 170}},
    {"orange", {214, 126, 48}},    {"brick", {176, 84, 76}},       {"plum", {92, 62, 104}},
    {"moss", {150, 160, 72}},      {"amber", {222, 164, 56}},      {"navy", {52, 66, 128}},
    {"blue", {40, 60, 200}},       {"green", {60, 150, 70}},       {"red", {200, 40, 40}},
    {"yellow", {230, 200, 30}},    {"magenta", {184, 60, 148}},    {"cyan", {44, 144, 166}},
    {"grey 244", {244, 244, 244}}, {"grey 200", {200, 200, 200}},  {"grey 160", {160, 160, 160}},
    {"grey 118", {118, 118, 118}}, {"grey 80", {80, 80, 80}},      {"grey 44", {44, 44, 44}},
};

[[nodiscard]] constexpr Crop patch_area(int patch) {
  return {32 + patch % kPatchColumns * 176, 32 + patch / kPatchColumns * 128, 160, 112};
}

// The part of a patch that is measured: what runs over from its neighbours stays outside.
[[nodiscard]] constexpr Crop patch_core(int patch) {
  const Crop area = patch_area(patch);
  return {area.x + 16, area.y + 16, area.width - 32, area.height - 32};
}

// Two colours that meet in the middle. All but the last pair have one luma, so that only chroma has
// an edge.
struct ChartEdge {
  const char* name;
  Rgb first;  // left or above
  Rgb second;
  bool vertical;  // else horizontal
  Crop area;
};

inline constexpr ChartEdge kChartEdges[] = {
    {"red | grey", {200, 40, 40}, {88, 88, 88}, true, {1104, 32, 224, 112}},
    {"blue | grey", {40, 60, 200}, {70, 70, 70}, true, {1104, 160, 224, 112}},
    {"green | magenta", {40, 150, 60}, {184, 60, 148}, true, {1104, 288, 224, 112}},
    {"yellow | blue", {230, 200, 30}, {30, 60, 160}, true, {1104, 416, 224, 112}},
    {"red / grey", {200, 40, 40}, {88, 88, 88}, false, {1344, 32, 104, 240}},
    {"blue / grey", {40, 60, 200}, {70, 70, 70}, false, {1464, 32, 104, 240}},
    {"green / magenta", {40, 150, 60}, {184, 60, 148}, false, {1344, 288, 104, 240}},
    {"yellow / blue", {230, 200, 30}, {30, 60, 160}, false, {1464, 288, 104, 240}},
};

// Parts for the eye.
inline constexpr Crop kChartRamp{32, 544, 1536, 64};    // grey, 6 pixels a step
inline constexpr Crop kChartHues{32, 624, 1536, 96};    // all hues, four saturations
inline constexpr Crop kChartSkin{32, 736, 752, 128};    // deep to fair, light to shade
inline constexpr Crop kChartLines{800, 736, 768, 128};  // one pixel wide
inline constexpr Crop kChartText{32, 880, 1536, 150};

}  // namespace tool

#endif  // VOREL_TOOLS_REPORT_CHART_LAYOUT_H_
