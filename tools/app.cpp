#include "tools/app.h"

#include <cstdio>
#include <exception>
#include <memory>
#include <new>
#include <vector>

#include "tools/app_help.h"
#include "tools/files/doomed_path.h"
#include "tools/files/failure.h"
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
    add_denoise_verb, add_noise_verb, add_compare_verb, add_check_verb, add_dump_verb,
};

int run_verb(const std::vector<Verb>& verbs) {
  for (const Verb& verb : verbs) {
    if (verb.command->parsed()) return verb.run();
  }
  return kDone;
}

// The first argument, when it is neither an option nor a verb.
std::string unknown_verb(const CLI::App& app, int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') return "";
  for (const CLI::App* verb : app.get_subcommands({})) {
    if (verb->get_name() == argv[1]) return "";
  }
  return argv[1];
}

void complain(const std::string& text) { std::fprintf(stderr, "vorel: %s\n", text.c_str()); }

// Help and version are no failures; everything else about the command line is bad usage.
int end_of_parsing(const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() == 0) {
    std::fputs(error.get_name() == "CallForVersion" ? (std::string(error.what()) + "\n").c_str()
                                                    : app.help().c_str(),
               stdout);
    return kDone;
  }
  std::string verb;
  for (const CLI::App* used : app.get_subcommands()) verb = used->get_name() + " ";
  complain(error.what());
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
    if (!unknown.empty()) throw usage_error("'" + unknown + "' is no verb; see vorel --help");
    if (argc < 2) throw usage_error("a verb is needed; see vorel --help");
    app.parse(argc, argv);
    return flush_output(run_verb(verbs));
  } catch (const CLI::ParseError& error) {
    return flush_output(end_of_parsing(app, error));
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
