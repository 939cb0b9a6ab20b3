#include "tools/app.h"

#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <new>

#include "tools/app_help.h"
#include "tools/app_options.h"
#include "tools/check.h"
#include "tools/compare.h"
#include "tools/denoise.h"
#include "tools/doomed_path.h"
#include "tools/dump.h"
#include "tools/failure.h"
#include "tools/noise.h"
#include "tools/noise_model.h"

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

struct Options {
  DenoiseOptions denoise;
  NoiseOptions noise;
  CompareOptions compare;
  std::vector<std::string> check;
  bool strict = false;
  DumpOptions dump;
};

void add_output(CLI::App& verb, std::string& output) {
  verb.add_option("-o,--output", output, "file to write")->required()->option_text("OUTPUT");
}

void add_quality(CLI::App& verb, int& quality) {
  verb.add_option("--quality", quality, "of JPEG output (95 is the default)")
      ->option_text("1-100")
      ->check(whole_number(1, 100));
}

void add_force(CLI::App& verb, bool& force) {
  verb.add_flag("--force", force,
                "let the output replace an input; it is replaced as a whole, at the end");
}

CLI::App& add_verb(CLI::App& app, const char* name, const char* description, const char* footer) {
  CLI::App& verb = *app.add_subcommand(name, description);
  verb.footer(footer);
  verb.group("Verbs");
  return verb;
}

void add_denoise(CLI::App& app, DenoiseOptions& options) {
  static const std::map<std::string, LogLevel> kLevels{{"error", LogLevel::kError},
                                                       {"warning", LogLevel::kWarning},
                                                       {"info", LogLevel::kInfo},
                                                       {"debug", LogLevel::kDebug}};
  CLI::App& verb =
      add_verb(app, "denoise", "Remove colour noise from a picture or video", kDenoiseFooter);
  verb.add_option("INPUT", options.input, "picture or video")->required()->option_text(" ");
  add_output(verb, options.output);
  verb.add_option("-n,--noise-index", options.noise_index,
                  "noise level of the frame, commonly its ISO sensitivity (1600 is the default)")
      ->option_text("N")
      ->check(whole_number(0, kMaxInt));
  verb.add_option("--sensor", options.tuning.sensor, "id of the sensor (0 is the default)")
      ->option_text("ID")
      ->check(whole_number(0, kMaxInt));
  verb.add_option("--tuning", options.tuning.name,
                  "tuning file of any name; or a folder with vorel_<model>.json files; or none for "
                  "the library's built-in values. Default: the folder VOREL_FIRMWARE_DIR, else a "
                  "sample tuning in this program")
      ->option_text("FILE|DIR|none");
  verb.add_flag("--no-spatial", options.tuning.no_spatial, "switch the spatial path off");
  verb.add_flag("--no-wavelet", options.tuning.no_wavelet, "switch the wavelet path off");
  verb.add_option("--compare", options.compare, "also write before, after and truth side by side")
      ->option_text("PICTURE");
  verb.add_option("--truth", options.truth,
                  "the same picture without noise: say how far before and after are from it")
      ->option_text("PICTURE");
  add_read_options(verb, options.read);
  verb.add_option_function<std::string>(
          "--format",
          [&options](const std::string& text) { options.separate_planes = text == "nm21"; },
          "hand planes to the library as one buffer (nv21, the default) or as two (nm21)")
      ->option_text("nv21|nm21")
      ->check(CLI::IsMember({"nv21", "nm21"}));
  add_quality(verb, options.quality);
  verb.add_option("--dump", options.dump,
                  "let the library dump every plane into a folder below DIR")
      ->option_text("DIR");
  verb.add_option_function<std::string>(
          "--log", [&options](const std::string& text) { options.log = kLevels.at(text); },
          "which lines of the library to show (warning is the default)")
      ->option_text("error|warning|info|debug")
      ->check(CLI::IsMember({"error", "warning", "info", "debug"}));
  verb.add_flag("-q,--quiet", options.quiet, "print no summary");
  add_force(verb, options.force);
}

void add_noise(CLI::App& app, NoiseOptions& options) {
  CLI::App& verb =
      add_verb(app, "noise", "Make a clean picture noisy, as a camera does", kNoiseFooter);
  verb.add_option("INPUT", options.input, "picture or video")->required()->option_text(" ");
  add_output(verb, options.output);
  verb.add_option("-g,--gain", options.gain,
                  "sensor gain; the noise index of the result is 100 times it (16 is the default)")
      ->option_text("1-1024")
      ->check(whole_number(1, kMaxGain));
  verb.add_option("--seed", options.seed, "choice of the random numbers (1 is the default)")
      ->option_text("S")
      ->check(whole_number(0, std::numeric_limits<uint64_t>::max()));
  add_read_options(verb, options.read);
  add_quality(verb, options.quality);
  add_force(verb, options.force);
}

void add_compare(CLI::App& app, CompareOptions& options) {
  CLI::App& verb =
      add_verb(app, "compare", "Say how far pictures are from each other", kCompareFooter);
  verb.add_option("PICTURE", options.pictures, "pictures or videos of one size")
      ->required()
      ->option_text(" ");
  verb.add_option("--truth", options.truth, "the picture that all others should be")
      ->option_text("PICTURE");
  verb.add_option("-o,--output", options.output, "write the pictures side by side")
      ->option_text("PICTURE");
  verb.add_option_function<std::string>(
          "--crop", [&options](const std::string& text) { options.crop = parse_crop(text); },
          "part that the side-by-side picture shows")
      ->option_text("X,Y,WIDTH,HEIGHT")
      ->check(crop_rectangle());
  verb.add_option("--zoom", options.zoom, "enlarge the side-by-side picture by repeating pixels")
      ->option_text("1-32")
      ->check(whole_number(1, kMaxZoom));
  verb.add_flag("--json", options.json, "print the figures for programs");
  add_read_options(verb, options.read);
  add_force(verb, options.force);
}

void add_check(CLI::App& app, Options& options) {
  CLI::App& verb = add_verb(app, "check", "Say what is wrong with tuning files", kCheckFooter);
  verb.add_option("TUNING", options.check, "tuning files")->required()->option_text(" ");
  verb.add_flag("--strict", options.strict, "exit with status 2 for warnings too");
}

void add_dump(CLI::App& app, DumpOptions& options) {
  CLI::App& verb = add_verb(app, "dump", "Explain and convert the library's dumps", kDumpFooter);
  verb.add_option("DIR", options.directory, "folder with dumps")->required()->option_text(" ");
  verb.add_flag("--png", options.png, "write every plane and frame as a PNG picture");
  verb.add_flag("--y4m", options.y4m, "write frames as y4m");
  verb.add_flag("--rename", options.rename,
                "copy to names with 1920x1080, from which viewers of raw pictures guess the size");
  verb.add_option("-o,--output", options.output, "folder for the results")->option_text("OUTDIR");
}

// The first argument, when it is neither an option nor a verb.
std::string unknown_verb(const CLI::App& app, int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') return "";
  for (const CLI::App* verb : app.get_subcommands({})) {
    if (verb->get_name() == argv[1]) return "";
  }
  return argv[1];
}

int run_verb(const CLI::App& app, const Options& options) {
  if (app.got_subcommand("denoise")) run_denoise(options.denoise);
  if (app.got_subcommand("noise")) run_noise(options.noise);
  if (app.got_subcommand("compare")) run_compare(options.compare);
  if (app.got_subcommand("check")) return run_check(options.check, options.strict);
  if (app.got_subcommand("dump")) run_dump(options.dump);
  return kDone;
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
  Options options;
  add_denoise(app, options.denoise);
  add_noise(app, options.noise);
  add_compare(app, options.compare);
  add_check(app, options);
  add_dump(app, options.dump);
  try {
    const std::string unknown = unknown_verb(app, argc, argv);
    if (!unknown.empty()) throw usage_error("'" + unknown + "' is no verb; see vorel --help");
    if (argc < 2) throw usage_error("a verb is needed; see vorel --help");
    app.parse(argc, argv);
    return flush_output(run_verb(app, options));
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
