#include <memory>

#include "tools/files/failure.h"
#include "tools/verbs/sweep.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

constexpr char kFooter[] =
    "Denoises the picture once for each value and beside it as tuned. A key may be written "
    "without\n"
    "its section and without Table; a value of a table holds at every level.\n"
    "\n"
    "Examples:\n"
    "  vorel sweep noisy.png --key MFD_UV_tuning.denoiseThrChroma1 --values 5,10,20,40\n"
    "  vorel sweep noisy.png --key denoiseThrChroma0 --values 10,40,160 -n 1600 -o sheet.png \\\n"
    "    --crop 1100,500,240,180 --zoom 2\n"
    "  vorel sweep noisy.png --key d_UV_thresh --values 1,8,32 --truth clean.png --page sweep.html";

}  // namespace

Verb add_sweep_verb(CLI::App& app) {
  const auto options = std::make_shared<SweepOptions>();
  CLI::App& verb = add_verb(app, "sweep", "Show what values of a tuning key do", kFooter);
  verb.add_option("PICTURE", options->picture, "picture, or video whose first frame is meant")
      ->required()
      ->option_text(" ");
  verb.add_option("-k,--key", options->key, "key of a tuning file")->required()->option_text("KEY");
  verb.add_option("--values", options->values, "values to try")
      ->required()
      ->option_text("V,...")
      ->delimiter(',');
  add_noise_index(verb, options->noise_index);
  add_tuning(verb, options->tuning);
  verb.add_flag("--no-spatial", options->tuning.no_spatial, "switch the spatial path off");
  verb.add_flag("--no-wavelet", options->tuning.no_wavelet, "switch the wavelet path off");
  verb.add_option("--truth", options->truth,
                  "the same picture without noise: say how far each result is from it")
      ->option_text("PICTURE");
  verb.add_option("-o,--output", options->sheet, "write a contact sheet of all results")
      ->option_text("PICTURE");
  add_crop(verb, options->crop, "part that the contact sheet and the page show");
  verb.add_option("--zoom", options->zoom,
                  "enlarge the contact sheet's pictures by repeating pixels")
      ->option_text("1-32")
      ->check(whole_number(1, kMaxZoom));
  verb.add_option("--csv", options->csv, "write the figures as CSV; - prints them so")
      ->option_text("FILE");
  add_page(verb, options->page);
  add_read_options(verb, options->read);
  verb.add_flag("-q,--quiet", options->quiet, "print no table");
  add_force(verb, options->force);
  return {&verb, [options] {
            run_sweep(*options);
            return kDone;
          }};
}

}  // namespace tool
