// What pictures of a test chart tell about a filter: noise that is left, colours that moved,
// colours that ran.
#ifndef VOREL_TOOLS_MEASURE_CHART_FIGURES_H_
#define VOREL_TOOLS_MEASURE_CHART_FIGURES_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/pictures/picture.h"
#include "tools/pictures/side_by_side.h"

namespace tool {

// Of a field of one colour. Chroma is measured on the frame's planes, in 8-bit steps.
struct PatchFigures {
  double deviation;     // root mean square of the standard deviations of U and V
  double coarse_share;  // of their variance, below 1/16 of a cycle per sample
  double shift;         // distance of the mean (U, V) from the reference's
  // Of colours only: an angle in the U, V plane, counter-clockwise, in degrees, and the change of
  // the distance from grey in percent.
  std::optional<double> hue_shift;
  std::optional<double> saturation_shift;
};

// The patch lies in both frames, which have one size.
[[nodiscard]] PatchFigures measure_colour_patch(const Nv21Frame& frame, const Nv21Frame& reference,
                                                const Crop& patch);

// Pixels in which the chroma of an edge across the middle of an area goes from 10 to 90 % of its
// step, in the plane where the step is larger. Planes have half the resolution: the sharpest edge
// takes 1.6 pixels. Nothing when there is no step of 8 and more.
[[nodiscard]] std::optional<double> edge_width(const Nv21Frame& frame, const Crop& area,
                                               bool is_vertical);

struct NamedPatch {
  std::string name;
  PatchFigures figures;
};

struct NamedEdge {
  std::string name;
  std::optional<double> width;
  std::optional<double> reference_width;
};

struct ChartFigures {
  std::vector<NamedPatch> patches;
  std::vector<NamedEdge> edges;
};

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_CHART_FIGURES_H_
