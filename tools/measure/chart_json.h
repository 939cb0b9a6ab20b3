// Figures of a test chart, for programs.
#ifndef VOREL_TOOLS_MEASURE_CHART_JSON_H_
#define VOREL_TOOLS_MEASURE_CHART_JSON_H_

#include <jansson.h>

#include "tools/measure/chart_figures.h"

namespace tool {

// New arrays, owned by the caller. Figures that do not exist are null.
[[nodiscard]] json_t* patches_json(const ChartFigures& chart);
[[nodiscard]] json_t* edges_json(const ChartFigures& chart);

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_CHART_JSON_H_
