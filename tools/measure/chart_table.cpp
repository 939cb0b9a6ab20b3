#include "tools/measure/chart_table.h"

#include <cmath>
#include <cstdio>

#include "tools/files/json_text.h"

namespace tool {
namespace {

std::string width_cell(const std::optional<double>& pixels) {
  if (!pixels) return "-";
  char text[32];
  std::snprintf(text, sizeof(text), "%.1f", *pixels);
  return text;
}

std::string change_cell(const std::optional<double>& change, const char* unit) {
  if (!change) return "-";
  char text[32];
  std::snprintf(text, sizeof(text), "%+.1f%s", *change, unit);
  return text;
}

std::string patch_line(const std::string& name, const PatchFigures& figures) {
  char line[160];
  std::snprintf(line, sizeof(line), "  %-20s%9.2f%10.1f %%%9.2f%10s%13s\n", name.c_str(),
                figures.deviation, 100 * figures.coarse_share, figures.shift,
                change_cell(figures.hue_shift, "").c_str(),
                change_cell(figures.saturation_shift, " %").c_str());
  return line;
}

json_t* number(const std::optional<double>& figure) {
  return figure ? json_real(*figure) : json_null();
}

}  // namespace

std::string chart_table(const ChartFigures& chart) {
  std::string table;
  if (!chart.patches.empty()) {
    table += "  patch               deviation  below 1/16    shift  hue, deg   saturation\n";
  }
  for (const NamedPatch& patch : chart.patches) table += patch_line(patch.name, patch.figures);
  if (!chart.edges.empty()) table += "  edge                10-90 %, pixels      truth\n";
  for (const NamedEdge& edge : chart.edges) {
    char line[96];
    std::snprintf(line, sizeof(line), "  %-20s%15s%11s\n", edge.name.c_str(),
                  width_cell(edge.width).c_str(), width_cell(edge.reference_width).c_str());
    table += line;
  }
  return table;
}

json_t* patches_json(const ChartFigures& chart) {
  json_t* list = json_array();
  for (const auto& [name, figures] : chart.patches) {
    json_array_append_new(
        list, json_pack("{s:o,s:f,s:f,s:f,s:o,s:o}", "name", json_text(name), "deviation",
                        figures.deviation, "coarse_share", figures.coarse_share, "shift",
                        figures.shift, "hue_shift", number(figures.hue_shift), "saturation_shift",
                        number(figures.saturation_shift)));
  }
  return list;
}

json_t* edges_json(const ChartFigures& chart) {
  json_t* list = json_array();
  for (const NamedEdge& edge : chart.edges) {
    json_array_append_new(
        list, json_pack("{s:o,s:o,s:o}", "name", json_text(edge.name), "width", number(edge.width),
                        "reference_width", number(edge.reference_width)));
  }
  return list;
}

}  // namespace tool
