#include <map>
#include <memory>

#include "tools/files/failure.h"
#include "tools/verbs/denoise.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

constexpr char kFooter[] =
    "The output's kind is what its name says; it appears only when it is complete.\n"
    "Frames below the tuning's enableNoiseIndex are left as they are, as on the phone.\n"
    "\n"
    "Examples:\n"
    "  vorel denoise noisy.png -o clean.png\n"
    "  vorel denoise dump_4000_3000.nv21 -o out.png --tuning vorel_WT1200.json --sensor 120\n"
    "  vorel denoise clip.y4m -o clean.y4m --noise-index 800 --no-spatial\n"
    "  vorel denoise noisy.png -o clean.png --compare side.png --truth clean_original.png\n"
    "  vorel denoise *.jpg -o clean/\n"
    "  vorel denoise folder -o 'clean/{name}.png' --jobs 4\n"
    "  ffmpeg -i in.mp4 -pix_fmt yuv420p -f yuv4mpegpipe - | vorel denoise - -o clean.y4m";

}  // namespace

Verb add_denoise_verb(CLI::App& app) {
  const auto options = std::make_shared<DenoiseOptions>();
  static const std::map<std::string, LogLevel> kLevels{{"error", LogLevel::kError},
                                                       {"warning", LogLevel::kWarning},
                                                       {"info", LogLevel::kInfo},
                                                       {"debug", LogLevel::kDebug}};
  CLI::App& verb = add_verb(app, "denoise", "Remove colour noise from a picture or video", kFooter);
  verb.add_option("INPUT", options->inputs,
                  "pictures and videos, folders with such, or - for standard input")
      ->required()
      ->option_text(" ");
  add_output(verb, options->output,
             "file, folder, name with {name} in it, or - for standard output");
  add_noise_index(verb, options->noise_index);
  verb.add_option("--amount", options->noise_index.percent,
                  "how much of the change is kept, in percent (default: as auto finds, else 100)")
      ->option_text("1-100")
      ->check(whole_number(1, 100));
  add_tuning(verb, options->tuning);
  verb.add_flag("--no-spatial", options->tuning.no_spatial, "switch the spatial path off");
  verb.add_flag("--no-wavelet", options->tuning.no_wavelet, "switch the wavelet path off");
  verb.add_option("--compare", options->compare, "also write before, after and truth side by side")
      ->option_text("PICTURE");
  verb.add_option("--truth", options->truth,
                  "the same picture without noise: say how far before and after are from it")
      ->option_text("PICTURE");
  add_page(verb, options->page);
  add_read_options(verb, options->read);
  verb.add_option_function<std::string>(
          "--format",
          [options](const std::string& text) { options->separate_planes = text == "nm21"; },
          "hand planes to the library as one buffer (nv21, the default) or as two (nm21)")
      ->option_text("nv21|nm21")
      ->check(CLI::IsMember({"nv21", "nm21"}));
  add_quality(verb, options->quality);
  verb.add_option("--dump", options->dump,
                  "let the library dump every plane into a folder below DIR")
      ->option_text("DIR");
  verb.add_option("--trace", options->trace,
                  "write a time line of stages, jobs and waits, for trace viewers")
      ->option_text("FILE.json");
  verb.add_option_function<std::string>(
          "--log", [options](const std::string& text) { options->log = kLevels.at(text); },
          "which lines of the library to show (warning is the default)")
      ->option_text("error|warning|info|debug")
      ->check(CLI::IsMember({"error", "warning", "info", "debug"}));
  verb.add_option("-j,--jobs", options->jobs,
                  "pictures at a time (default: as many as there are processors)")
      ->option_text("N")
      ->check(whole_number(1, kMaxInt));
  verb.add_flag("--json", options->json, "print the summary for programs");
  verb.add_flag("-q,--quiet", options->quiet, "print no summary");
  add_force(verb, options->force);
  return {&verb, [options] { return run_denoise(*options); }};
}

}  // namespace tool
