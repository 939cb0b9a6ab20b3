#include "tools/verbs/chart.h"

#include <cstdio>
#include <iterator>
#include <memory>

#include "tools/files/input_file.h"
#include "tools/files/printable.h"
#include "tools/pictures/picture_io.h"
#include "tools/report/chart_layout.h"
#include "tools/report/chart_picture.h"

namespace tool {

void run_chart(const ChartOptions& options) {
  const std::unique_ptr<PictureOutput> output =
      PictureOutput::open(options.output, {.quality = options.quality});
  output->write({chart_picture(), {}});
  output->finish();
  if (options.output == kStandardStream) return;
  std::printf("%s: %s, %zu colours, %zu edges\n", printable(options.output).c_str(),
              size_text(kChartSize).c_str(), std::size(kChartPatches), std::size(kChartEdges));
}

}  // namespace tool
