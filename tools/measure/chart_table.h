// Figures of a test chart, for people and for programs.
#ifndef VOREL_TOOLS_MEASURE_CHART_TABLE_H_
#define VOREL_TOOLS_MEASURE_CHART_TABLE_H_

#include <jansson.h>

#include <string>

#include "tools/measure/chart_figures.h"

namespace tool {

// One line per patch, then one per edge. Ends with a line end.
[[nodiscard]] std::string chart_table(const ChartFigures& chart);

// New arrays, owned by the caller. Figures that do not exist are null.
[[nodiscard]] json_t* patches_json(const ChartFigures& chart);
[[nodiscard]] json_t* edges_json(const ChartFigures& chart);

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_CHART_TABLE_H_
