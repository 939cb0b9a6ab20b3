#include <memory>

#include "tools/files/failure.h"
#include "tools/verbs/chart.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

constexpr char kFooter[] =
    "The chart has 24 patches of one colour, saturated edges, a grey ramp, all hues, skin tones,\n"
    "lines of one pixel and text. What becomes of it is what 'vorel compare --chart' measures.\n"
    "\n"
    "Example:\n"
    "  vorel chart -o chart.png\n"
    "  vorel noise chart.png -o noisy.png --gain 16\n"
    "  vorel denoise noisy.png -o clean.png\n"
    "  vorel compare noisy.png clean.png --chart";

}  // namespace

Verb add_chart_verb(CLI::App& app) {
  const auto options = std::make_shared<ChartOptions>();
  CLI::App& verb =
      add_verb(app, "chart", "Draw a test chart whose true colours are known", kFooter);
  add_output(verb, options->output);
  add_quality(verb, options->quality);
  return {&verb, [options] {
            run_chart(*options);
            return kDone;
          }};
}

}  // namespace tool
