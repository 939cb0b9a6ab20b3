// What `vorel compare` measures of charts: its own, and patches and edges that are named.
#ifndef VOREL_TOOLS_VERBS_COMPARE_CHARTS_H_
#define VOREL_TOOLS_VERBS_COMPARE_CHARTS_H_

#include <string>
#include <vector>

#include "tools/measure/chart_figures.h"
#include "tools/report/table.h"
#include "tools/verbs/compare.h"

namespace tool {

[[nodiscard]] bool measures_charts(const CompareOptions& options);

// Both frames have one size; with `options.chart` it is the chart's. An area that does not lie in
// them is a usage error that names the reference.
[[nodiscard]] ChartFigures measure_chart(const CompareOptions& options, const Nv21Frame& frame,
                                         const Nv21Frame& reference,
                                         const std::string& reference_name);

// The patches and the edges of a picture, when there are any.
[[nodiscard]] std::vector<Table> chart_tables(const std::string& picture,
                                              const ChartFigures& figures);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_COMPARE_CHARTS_H_
