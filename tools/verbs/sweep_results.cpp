#include "tools/verbs/sweep_results.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "tools/measure/frame_view.h"
#include "tools/pictures/colour.h"

namespace tool {
namespace {

std::string text_of(double value) {
  if (std::isnan(value)) return "-";
  char text[32];
  std::snprintf(text, sizeof(text), "%.2f", value);
  return text;
}

constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();

// Figures of a result; those of the distance only when there is a truth.
struct Figure {
  const char* title;
  double (*of)(const SweepResult& result);
  bool needs_truth;
};
constexpr Figure kFigures[] = {
    {"PSNR Y, dB", [](const SweepResult& result) { return result.distance->psnr_y(); }, true},
    {"PSNR U, dB", [](const SweepResult& result) { return result.distance->psnr_u(); }, true},
    {"PSNR V, dB", [](const SweepResult& result) { return result.distance->psnr_v(); }, true},
    {"CIEDE2000", [](const SweepResult& result) { return result.distance->mean_ciede2000(); },
     true},
    {"chroma noise left",
     [](const SweepResult& result) { return result.chroma_noise.value_or(kNothing); }, false},
    {"mean change, chroma", [](const SweepResult& result) { return result.change.chroma().mean(); },
     false},
    {"mean change, luma", [](const SweepResult& result) { return result.change.luma().mean(); },
     false},
};

bool has_truth(const std::vector<SweepResult>& results) {
  return results.front().distance.has_value();
}

}  // namespace

double chroma_psnr(const PictureDistance& distance) {
  return 0.5 * (distance.psnr_u() + distance.psnr_v());
}

SweepResult sweep_result(std::string label, std::optional<double> value, const Nv21Frame& before,
                         Nv21Frame after, const SweepTruth* truth) {
  SweepResult result{std::move(label), value, std::move(after), RgbImage(0, 0), {}, {}, {}};
  result.image = nv21_to_rgb(result.frame);
  result.change.add(before, result.frame);
  result.chroma_noise = estimate_chroma_noise(view_of(result.frame));
  if (truth != nullptr) {
    result.distance.emplace();
    result.distance->add(result.frame, result.image, truth->frame, truth->image);
  }
  return result;
}

size_t best_of(const std::vector<SweepResult>& results) {
  if (!has_truth(results)) return results.size() - 1;
  const auto best =
      std::max_element(results.begin(), results.end(), [](const auto& a, const auto& b) {
        return chroma_psnr(*a.distance) < chroma_psnr(*b.distance);
      });
  return static_cast<size_t>(best - results.begin());
}

Table sweep_table(const std::string& key, const std::vector<SweepResult>& results) {
  Table table{"", {key}, {}};
  for (const Figure& figure : kFigures) {
    if (!figure.needs_truth || has_truth(results)) table.headings.emplace_back(figure.title);
  }
  for (const SweepResult& result : results) {
    table.rows.push_back({result.label});
    for (const Figure& figure : kFigures) {
      if (figure.needs_truth && !has_truth(results)) continue;
      table.rows.back().push_back(text_of(figure.of(result)));
    }
  }
  return table;
}

std::string sweep_caption(const SweepResult& result) {
  std::string caption = result.label + "\n";
  if (result.distance) {
    return caption + "PSNR U " + text_of(result.distance->psnr_u()) + " V " +
           text_of(result.distance->psnr_v()) + " dB, CIEDE2000 " +
           text_of(result.distance->mean_ciede2000());
  }
  if (result.chroma_noise) caption += "chroma noise " + text_of(*result.chroma_noise) + ", ";
  return caption + "mean change " + text_of(result.change.chroma().mean());
}

std::vector<PageCurves> sweep_curves(const std::string& key,
                                     const std::vector<SweepResult>& results) {
  std::vector<const SweepResult*> points;
  for (const SweepResult& result : results) {
    if (result.value) points.push_back(&result);
  }
  std::sort(points.begin(), points.end(),
            [](const auto* a, const auto* b) { return *a->value < *b->value; });
  std::vector<double> values;
  for (const SweepResult* point : points) values.push_back(*point->value);
  // Steps that grow with the value are steps of a factor.
  const bool is_wide = values.front() > 0 && values.back() >= 8 * values.front();
  const auto line = [&](const Figure& figure) {
    PageCurves::Line result{figure.title, {}};
    for (const SweepResult* point : points) result.values.push_back(figure.of(*point));
    return result;
  };
  std::vector<PageCurves> curves;
  if (has_truth(results)) {
    curves.push_back({"Distance from the truth over the value",
                      key,
                      "dB, higher is nearer",
                      is_wide,
                      false,
                      values,
                      {line(kFigures[1]), line(kFigures[2])}});
  }
  curves.push_back({"What is left and what changed",
                    key,
                    "8-bit steps",
                    is_wide,
                    false,
                    values,
                    {line(kFigures[4]), line(kFigures[5]), line(kFigures[6])}});
  return curves;
}

}  // namespace tool
