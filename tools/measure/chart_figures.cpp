#include "tools/measure/chart_figures.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "tools/measure/patch_noise.h"

namespace tool {
namespace {

constexpr double kLeastColour = 4;  // steps from grey that a hue takes
constexpr double kLeastStep = 8;    // of an edge
constexpr double kDegree = std::numbers::pi / 180;

struct Chroma {
  double u;
  double v;
  [[nodiscard]] double saturation() const { return std::hypot(u, v); }
};

Chroma mean_chroma(const PatchPlanes& patch) { return {patch.u.mean - 128, patch.v.mean - 128}; }

// Mean chroma of each column, or row, of an area.
std::vector<Chroma> profile_across(const Nv21Frame& frame, const Crop& area, bool is_vertical) {
  const int left = (area.x + 1) / 2;
  const int top = (area.y + 1) / 2;
  const int width = (area.x + area.width) / 2 - left;
  const int height = (area.y + area.height) / 2 - top;
  const int count = is_vertical ? height : width;
  std::vector<Chroma> profile(static_cast<size_t>(std::max(is_vertical ? width : height, 0)));
  for (int y = 0; y < height; ++y) {
    const uint8_t* row = frame.vu() + static_cast<size_t>(top + y) * frame.chroma_stride();
    for (int x = 0; x < width; ++x) {
      const uint8_t* pair = row + 2 * static_cast<size_t>(left + x);
      Chroma& at = profile[static_cast<size_t>(is_vertical ? x : y)];
      at.v += static_cast<double>(pair[0]) / count;
      at.u += static_cast<double>(pair[1]) / count;
    }
  }
  return profile;
}

// Samples from the middle crossing to where the step, 0 to 1, passes `level`, going by `direction`.
double way_to(const std::vector<double>& step, size_t middle, int direction, double level) {
  size_t i = middle;
  while (true) {
    const bool at_end = direction < 0 ? i == 0 : i + 1 == step.size();
    if (at_end) return static_cast<double>(i);
    const size_t next = i + static_cast<size_t>(direction);
    const bool passes = direction < 0 ? step[next] <= level : step[next] >= level;
    if (passes) {
      const double part = (level - step[i]) / (step[next] - step[i]);
      return static_cast<double>(i) + direction * part;
    }
    i = next;
  }
}

}  // namespace

PatchFigures measure_colour_patch(const Nv21Frame& frame, const Nv21Frame& reference,
                                  const Crop& patch) {
  const PatchPlanes now = measure_patch(frame, patch);
  const Chroma is = mean_chroma(now);
  const Chroma should_be = mean_chroma(measure_patch(reference, patch));
  const double u_variance = now.u.deviation * now.u.deviation;
  const double v_variance = now.v.deviation * now.v.deviation;
  const double variance = u_variance + v_variance;
  PatchFigures figures{};
  figures.deviation = std::sqrt(variance / 2);
  if (variance > 0) {
    figures.coarse_share =
        (u_variance * now.u.coarse_share + v_variance * now.v.coarse_share) / variance;
  }
  figures.shift = std::hypot(is.u - should_be.u, is.v - should_be.v);
  if (should_be.saturation() >= kLeastColour) {
    figures.saturation_shift = 100 * (is.saturation() / should_be.saturation() - 1);
    if (is.saturation() >= kLeastColour) {
      const double turn = std::atan2(is.v, is.u) - std::atan2(should_be.v, should_be.u);
      figures.hue_shift = std::remainder(turn / kDegree, 360);
    }
  }
  return figures;
}

std::optional<double> edge_width(const Nv21Frame& frame, const Crop& area, bool is_vertical) {
  const std::vector<Chroma> profile = profile_across(frame, area, is_vertical);
  // The colours on both sides, from the outer eighths.
  const size_t side = profile.size() / 8;
  if (side == 0) return std::nullopt;
  Chroma first{};
  Chroma last{};
  for (size_t i = 0; i < side; ++i) {
    const Chroma& end = profile[profile.size() - 1 - i];
    first = {first.u + profile[i].u / side, first.v + profile[i].v / side};
    last = {last.u + end.u / side, last.v + end.v / side};
  }
  const Chroma step{last.u - first.u, last.v - first.v};
  const bool by_u = std::fabs(step.u) >= std::fabs(step.v);
  if (std::fabs(by_u ? step.u : step.v) < kLeastStep) return std::nullopt;
  std::vector<double> share;
  for (const Chroma& at : profile) {
    share.push_back(by_u ? (at.u - first.u) / step.u : (at.v - first.v) / step.v);
  }
  // The first sample past half of the step.
  const auto half = std::find_if(share.begin(), share.end(), [](double s) { return s > 0.5; });
  if (half == share.begin() || half == share.end()) return std::nullopt;
  const auto above = static_cast<size_t>(half - share.begin());
  return 2 * (way_to(share, above - 1, 1, 0.9) - way_to(share, above, -1, 0.1));
}

}  // namespace tool
