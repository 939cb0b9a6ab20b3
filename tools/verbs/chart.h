// `vorel chart`: draws the test chart.
#ifndef VOREL_TOOLS_VERBS_CHART_H_
#define VOREL_TOOLS_VERBS_CHART_H_

#include <optional>
#include <string>

namespace tool {

struct ChartOptions {
  std::string output;
  std::optional<int> quality;
};

void run_chart(const ChartOptions& options);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_CHART_H_
