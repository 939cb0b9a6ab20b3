#include <memory>
#include <string>
#include <vector>

#include "tools/files/failure.h"
#include "tools/verbs/check.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

struct CheckOptions {
  std::vector<std::string> paths;
  bool strict = false;
};

constexpr char kFooter[] =
    "The library takes what it can from a tuning file and is quiet about the rest. This is what "
    "it\n"
    "does not tell: keys that it does not know, numbers of the wrong kind, short tables, levels "
    "out\n"
    "of order. Exit status 2 when a file has errors.\n"
    "\n"
    "Example:\n"
    "  vorel check tuning/samples/*.json";

}  // namespace

Verb add_check_verb(CLI::App& app) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App& verb = add_verb(app, "check", "Say what is wrong with tuning files", kFooter);
  verb.add_option("TUNING", options->paths, "tuning files")->required()->option_text(" ");
  verb.add_flag("--strict", options->strict, "exit with status 2 for warnings too");
  return {&verb, [options] { return run_check(options->paths, options->strict); }};
}

}  // namespace tool
