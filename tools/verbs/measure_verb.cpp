#include <memory>

#include "tools/files/failure.h"
#include "tools/verbs/measure.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

constexpr char kFooter[] =
    "Noise is in 8-bit steps: of single samples and of means of 2 x 2 and 4 x 4, in the quiet "
    "parts.\n"
    "The noise index is what 'vorel denoise' takes by itself. Of a video the first frame counts.\n"
    "\n"
    "Examples:\n"
    "  vorel measure night.jpg\n"
    "  vorel measure chart.png --patch 1200,640,128,96 --json";

}  // namespace

Verb add_measure_verb(CLI::App& app) {
  const auto options = std::make_shared<MeasureOptions>();
  CLI::App& verb = add_verb(app, "measure", "Say how noisy pictures are", kFooter);
  verb.add_option("PICTURE", options->inputs, "pictures or videos")->required()->option_text(" ");
  verb.add_option_function<std::string>(
          "--patch", [options](const std::string& text) { options->patch = parse_crop(text); },
          "a field of one colour: mean and deviation of each plane there, and how much of its "
          "variance is coarser than 16 samples")
      ->option_text("X,Y,WIDTH,HEIGHT")
      ->check(crop_rectangle());
  verb.add_flag("--json", options->json, "print the figures for programs");
  add_tuning(verb, options->tuning);
  add_read_options(verb, options->read);
  return {&verb, [options] {
            run_measure(*options);
            return kDone;
          }};
}

}  // namespace tool
