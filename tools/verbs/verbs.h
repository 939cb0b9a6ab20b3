// The verbs of the command. Each adds itself with its options to the command line.
#ifndef VOREL_TOOLS_VERBS_VERBS_H_
#define VOREL_TOOLS_VERBS_VERBS_H_

#include <CLI/CLI.hpp>
#include <functional>

namespace tool {

struct Verb {
  CLI::App* command;
  std::function<int()> run;  // with the options that were parsed; gives the exit status
};

[[nodiscard]] Verb add_denoise_verb(CLI::App& app);
[[nodiscard]] Verb add_measure_verb(CLI::App& app);
[[nodiscard]] Verb add_noise_verb(CLI::App& app);
[[nodiscard]] Verb add_compare_verb(CLI::App& app);
[[nodiscard]] Verb add_chart_verb(CLI::App& app);
[[nodiscard]] Verb add_sweep_verb(CLI::App& app);
[[nodiscard]] Verb add_tune_verb(CLI::App& app);
[[nodiscard]] Verb add_check_verb(CLI::App& app);
[[nodiscard]] Verb add_show_verb(CLI::App& app);
[[nodiscard]] Verb add_schema_verb(CLI::App& app);
[[nodiscard]] Verb add_dump_verb(CLI::App& app);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_VERBS_H_
