#include <memory>

#include "tools/files/failure.h"
#include "tools/verbs/dump.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

constexpr char kFooter[] =
    "Dumps come from 'vorel denoise --dump DIR', or from a phone with the property\n"
    "persist.vendor.libvorel.debug set to 3 (input), 4 (output too) or 5 (every plane).\n"
    "Nothing in the folder is changed.\n"
    "\n"
    "Example:\n"
    "  vorel dump 0_20260101_120000 --png -o pictures";

}  // namespace

Verb add_dump_verb(CLI::App& app) {
  const auto options = std::make_shared<DumpOptions>();
  CLI::App& verb = add_verb(app, "dump", "Explain and convert the library's dumps", kFooter);
  verb.add_option("DIR", options->directory, "folder with dumps")->required()->option_text(" ");
  verb.add_flag("--png", options->png, "write every plane and frame as a PNG picture");
  verb.add_flag("--y4m", options->y4m, "write frames as y4m");
  verb.add_flag("--rename", options->rename,
                "copy to names with 1920x1080, from which viewers of raw pictures guess the size");
  verb.add_option("-o,--output", options->output, "folder for the results")->option_text("OUTDIR");
  return {&verb, [options] {
            run_dump(*options);
            return kDone;
          }};
}

}  // namespace tool
