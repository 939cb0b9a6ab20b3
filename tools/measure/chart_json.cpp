#include "tools/measure/chart_json.h"

#include "tools/files/json_text.h"

namespace tool {
namespace {

json_t* number(const std::optional<double>& figure) {
  return figure ? json_real(*figure) : json_null();
}

}  // namespace

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
