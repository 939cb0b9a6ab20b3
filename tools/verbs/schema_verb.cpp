#include <cstdio>

#include "tools/files/failure.h"
#include "tools/tuning/schema.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

constexpr char kFooter[] =
    "With it an editor explains each key, completes names and underlines values that make no "
    "sense.\n"
    "docs/tuning.md tells how to switch that on.\n"
    "\n"
    "Example:\n"
    "  vorel schema > vorel_tuning.schema.json";

}  // namespace

Verb add_schema_verb(CLI::App& app) {
  CLI::App& verb = add_verb(app, "schema", "Print the JSON Schema of tuning files", kFooter);
  return {&verb, [] {
            std::fputs(tuning_schema().c_str(), stdout);
            return kDone;
          }};
}

}  // namespace tool
