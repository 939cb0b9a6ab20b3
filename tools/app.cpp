#include "tools/app.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <memory>
#include <new>
#include <vector>

#include "tools/app_help.h"
#include "tools/did_you_mean.h"
#include "tools/files/doomed_path.h"
#include "tools/files/failure.h"
#include "tools/files/standard_streams.h"
#include "tools/verbs/verbs.h"

#ifndef VOREL_VERSION
#define VOREL_VERSION "unknown"
#endif
#ifndef VOREL_COMMIT_ID
#define VOREL_COMMIT_ID "unknown"
#endif
#ifndef VOREL_BUILD_DATE
#define VOREL_BUILD_DATE "unknown"
#endif

namespace tool {
namespace {

// In the order of the help.
constexpr Verb (*kVerbs[])(CLI::App&) = {
    add_denoise_verb, add_measure_verb, add_noise_verb, add_compare_verb,
    add_chart_verb,   add_sweep_verb,   add_tune_verb,  add_check_verb,
    add_show_verb,    add_schema_verb,  add_dump_verb,
};

int run_verb(const std::vector<Verb>& verbs) {
  for (const Verb& verb : verbs) {
    if (verb.command->parsed()) return verb.run();
  }
  return kDone;
}

std::vector<std::string> names_of(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* verb : app.get_subcommands({})) names.push_back(verb->get_name());
  return names;
}

// The first argument, when it is neither an option nor a verb.
std::string unknown_verb(const CLI::App& app, int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') return "";
  const std::vector<std::string> names = names_of(app);
  return std::find(names.begin(), names.end(), argv[1]) == names.end() ? argv[1] : "";
}

// Asks for the option that was probably meant instead of the first unknown one.
std::string suggested_option(const CLI::App& app, int argc, char** argv) {
  const std::vector<CLI::App*> used = app.get_subcommands();
  if (used.empty()) return "";
  std::vector<std::string> known;
  for (const CLI::Option* option : used.front()->get_options()) {
    for (const std::string& name : option->get_lnames()) known.push_back("--" + name);
  }
  for (int i = 2; i < argc; ++i) {
    const std::string word = std::string(argv[i]).substr(0, std::string(argv[i]).find('='));
    const bool is_known = std::find(known.begin(), known.end(), word) != known.end();
    if (word.starts_with("--") && !is_known) return did_you_mean(word, known);
  }
  return "";
}

// Help and version are no failures; everything else about the command line is bad usage.
int end_of_parsing(const CLI::App& app, const CLI::ParseError& error, int argc, char** argv) {
  if (error.get_exit_code() == 0) {
    std::fputs(error.get_name() == "CallForVersion" ? (std::string(error.what()) + "\n").c_str()
                                                    : app.help().c_str(),
               stdout);
    return kDone;
  }
  std::string verb;
  for (const CLI::App* used : app.get_subcommands()) verb = used->get_name() + " ";
  const bool unknown = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
  complain(error.what() + (unknown ? suggested_option(app, argc, argv) : ""));
  std::fprintf(stderr, "'vorel %s--help' shows what is possible\n", verb.c_str());
  return kBadUsage;
}

// What was printed must have got out: a full disk behind standard output is a failure too.
int flush_output(int status) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
  complain("standard output: cannot be written");
  return status == kDone ? kFailed : status;
}

}  // namespace

int run_command(int argc, char** argv) {
  hold_standard_streams();
  install_signal_handlers();
  CLI::App app(kMainDescription, "vorel");
  app.formatter(std::make_shared<HelpFormatter>());
  app.set_help_flag("-h,--help", "show this help");
  app.footer(kMainFooter);
  app.require_subcommand(1);
  app.set_version_flag("--version",
                       "vorel " VOREL_VERSION " (commit " VOREL_COMMIT_ID ", " VOREL_BUILD_DATE ")",
                       "show the version");
  std::vector<Verb> verbs;
  for (auto* add_verb : kVerbs) verbs.push_back(add_verb(app));
  try {
    const std::string unknown = unknown_verb(app, argc, argv);
    if (!unknown.empty()) {
      const std::string meant = did_you_mean(unknown, names_of(app));
      throw usage_error("'" + unknown + "' is no verb" +
                        (meant.empty() ? "; see vorel --help" : meant));
    }
    if (argc < 2) throw usage_error("a verb is needed; see vorel --help");
    app.parse(argc, argv);
    return flush_output(run_verb(verbs));
  } catch (const CLI::ParseError& error) {
    return flush_output(end_of_parsing(app, error, argc, argv));
  } catch (const Failure& failure) {
    complain(failure.what());
    return failure.status();
  } catch (const std::bad_alloc&) {
    complain("out of memory");
    return kFailed;
  } catch (const std::exception& error) {
    complain(error.what());
    return kFailed;
  }
}

}  // namespace tool
