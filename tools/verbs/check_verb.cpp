#include <memory>

#include "tools/verbs/check.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

constexpr char kFooter[] =
    "The library takes what it can from a tuning file and is quiet about the rest. This names, "
    "with\n"
    "line and column, what it does not tell: unknown keys, numbers of the wrong kind, short "
    "tables,\n"
    "levels out of order or out of reach, values that do harm, texts that are no JSON.\n"
    "Exit status 2 when a file has errors or cannot be read, 3 when a fixed one cannot be "
    "written.\n"
    "\n"
    "Examples:\n"
    "  vorel check tuning/samples\n"
    "  vorel check --fix vorel_WT1200.json";

}  // namespace

Verb add_check_verb(CLI::App& app) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App& verb = add_verb(app, "check", "Say what is wrong with tuning files", kFooter);
  verb.add_option("TUNING", options->paths, "tuning files, or folders with .json files")
      ->required()
      ->option_text(" ");
  verb.add_flag("--strict", options->strict, "exit with status 2 for warnings too");
  verb.add_flag("--json", options->json, "print one JSON object");
  verb.add_flag("--fix", options->fix,
                "first write the decimal points that reals have lost; the file as it was stays "
                "beside it as .bak");
  return {&verb, [options] { return run_check(*options); }};
}

}  // namespace tool
