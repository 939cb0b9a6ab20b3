#include <limits>
#include <memory>

#include "tools/files/failure.h"
#include "tools/pictures/noise_model.h"
#include "tools/verbs/noise.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

constexpr char kFooter[] =
    "The noise is made on the sensor's samples, before demosaicing, so it has the coarse, "
    "coloured\n"
    "grain of real pictures. Equal seeds give equal results on every machine.\n"
    "\n"
    "Example:\n"
    "  vorel noise meadow.jpg -o noisy.png --gain 16 --seed 1";

}  // namespace

Verb add_noise_verb(CLI::App& app) {
  const auto options = std::make_shared<NoiseOptions>();
  CLI::App& verb = add_verb(app, "noise", "Make a clean picture noisy, as a camera does", kFooter);
  verb.add_option("INPUT", options->input, "picture or video")->required()->option_text(" ");
  add_output(verb, options->output);
  verb.add_option("-g,--gain", options->gain,
                  "sensor gain; the noise index of the result is 100 times it (16 is the default)")
      ->option_text("1-1024")
      ->check(whole_number(1, kMaxGain));
  verb.add_option("--seed", options->seed, "choice of the random numbers (1 is the default)")
      ->option_text("S")
      ->check(whole_number(0, std::numeric_limits<uint64_t>::max()));
  add_read_options(verb, options->read);
  add_quality(verb, options->quality);
  add_force(verb, options->force);
  return {&verb, [options] {
            run_noise(*options);
            return kDone;
          }};
}

}  // namespace tool
