#include "tools/verbs/compare_charts.h"

#include <cstdio>
#include <optional>

#include "tools/measure/patch_noise.h"
#include "tools/report/chart_layout.h"
#include "tools/verbs/verb_options.h"

namespace tool {
namespace {

// The drawn chart's patches and edges.
ChartFigures drawn_chart(const Nv21Frame& frame, const Nv21Frame& reference) {
  ChartFigures figures;
  int number = 0;
  for (const ChartPatch& patch : kChartPatches) {
    figures.patches.push_back(
        {patch.name, measure_colour_patch(frame, reference, patch_core(number++))});
  }
  for (const ChartEdge& edge : kChartEdges) {
    figures.edges.push_back({edge.name, edge_width(frame, edge.area, edge.vertical),
                             edge_width(reference, edge.area, edge.vertical)});
  }
  return figures;
}

// An edge in any picture is upright when the reference has a step from left to right.
NamedEdge measure_edge(const Nv21Frame& frame, const Nv21Frame& reference, const Crop& area) {
  const bool is_vertical = edge_width(reference, area, true).has_value();
  return {crop_text(area), edge_width(frame, area, is_vertical),
          edge_width(reference, area, is_vertical)};
}

std::string cell(double figure) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.2f", figure);
  return text;
}

// With one decimal.
std::string short_cell(const std::optional<double>& figure) {
  if (!figure) return "-";
  char text[32];
  std::snprintf(text, sizeof(text), "%.1f", *figure);
  return text;
}

std::string change_cell(const std::optional<double>& change, const char* unit) {
  if (!change) return "-";
  char text[32];
  std::snprintf(text, sizeof(text), "%+.1f%s", *change, unit);
  return text;
}

}  // namespace

bool measures_charts(const CompareOptions& options) {
  return options.chart || !options.patches.empty() || !options.edges.empty();
}

ChartFigures measure_chart(const CompareOptions& options, const Nv21Frame& frame,
                           const Nv21Frame& reference, const std::string& reference_name) {
  const Size size{reference.width, reference.height};
  ChartFigures figures = options.chart ? drawn_chart(frame, reference) : ChartFigures{};
  for (const Crop& patch : options.patches) {
    check_area("--patch", patch, size, reference_name);
    figures.patches.push_back({crop_text(patch), measure_colour_patch(frame, reference, patch)});
  }
  for (const Crop& edge : options.edges) {
    check_area("--edge", edge, size, reference_name);
    figures.edges.push_back(measure_edge(frame, reference, edge));
  }
  return figures;
}

std::vector<Table> chart_tables(const std::string& picture, const ChartFigures& figures) {
  std::vector<Table> tables;
  if (!figures.patches.empty()) {
    Table table{picture + ": patches, in 8-bit steps of chroma",
                {"patch", "deviation", "below 1/16", "shift", "hue, deg", "saturation"},
                {}};
    for (const auto& [name, patch] : figures.patches) {
      table.rows.push_back({name, cell(patch.deviation),
                            short_cell(100 * patch.coarse_share) + " %", cell(patch.shift),
                            change_cell(patch.hue_shift, ""),
                            change_cell(patch.saturation_shift, " %")});
    }
    tables.push_back(std::move(table));
  }
  if (!figures.edges.empty()) {
    Table table{picture + ": edges, pixels from 10 to 90 %", {"edge", "width", "truth"}, {}};
    for (const NamedEdge& edge : figures.edges) {
      table.rows.push_back({edge.name, short_cell(edge.width), short_cell(edge.reference_width)});
    }
    tables.push_back(std::move(table));
  }
  return tables;
}

}  // namespace tool
