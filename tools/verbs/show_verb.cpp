#include <memory>

#include "tools/files/failure.h"
#include "tools/verbs/show.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

constexpr char kFooter[] =
    "Says which value of each key a frame of the noise index gets and where it comes from: the\n"
    "file, the levels that it lies between, or built in. Without -n it shows every level.\n"
    "\n"
    "Examples:\n"
    "  vorel show vorel_WT1200.json -n 1200\n"
    "  vorel show tuning/samples --sensor 120 --plot curves.svg";

}  // namespace

Verb add_show_verb(CLI::App& app) {
  const auto options = std::make_shared<ShowOptions>();
  CLI::App& verb = add_verb(app, "show", "Show the values that a tuning gives a frame", kFooter);
  verb.add_option("TUNING", options->tuning.name,
                  "tuning file, folder of tuning files, or none for the built-in values "
                  "(VOREL_FIRMWARE_DIR, else the sample tuning, is the default)")
      ->option_text(" ");
  verb.add_option("-n,--noise-index", options->noise_index, "of the frame")
      ->option_text("N")
      ->check(whole_number(0, kMaxInt));
  verb.add_option("--sensor", options->tuning.sensor,
                  "sensor id (0 is the default): what it would load")
      ->option_text("ID")
      ->check(whole_number(0, kMaxInt));
  verb.add_flag("--json", options->json, "print one JSON object");
  verb.add_option("--plot", options->plot, "draw the values over the noise index")
      ->option_text("CURVES.svg");
  return {&verb, [options] {
            run_show(*options);
            return kDone;
          }};
}

}  // namespace tool
