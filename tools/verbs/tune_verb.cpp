#include <ctime>
#include <map>
#include <memory>

#include "tools/files/failure.h"
#include "tools/pictures/noise_model.h"
#include "tools/verbs/tune.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

constexpr char kFooter[] =
    "Without --truth, --burst or --clean the pictures' names say what they are:\n"
    "  <scene>_n<noise index>[_<frame>].png    a noisy picture\n"
    "  <scene>_clean.png                       its truth; without one the frames of a noise index\n"
    "                                          are a burst, whose mean is the truth\n"
    "A manifest lists them: a .csv with the columns scene, noise_index, noisy, clean, or a .json\n"
    "array of objects with these keys. Entries without noisy are made noisy.\n"
    "\n"
    "Examples:\n"
    "  vorel tune captures/ -o vorel_WT1200.json --report report.json\n"
    "  vorel tune kitchen_*.png -o tuned.json --burst --noise-index 1600\n"
    "  vorel tune clean/*.png -o tuned.json --clean --noise-index 100,400,1600,6400";

std::string today() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[16];
  std::strftime(text, sizeof(text), "%Y-%m-%d", &local);
  return text;
}

}  // namespace

Verb add_tune_verb(CLI::App& app) {
  const auto options = std::make_shared<TuneOptions>();
  static const std::map<std::string, Goal> kGoals{{"psnr", Goal::kChromaPsnr},
                                                  {"ciede2000", Goal::kCiede2000}};
  static const std::map<std::string, SpatialChoice> kSpatial{
      {"auto", SpatialChoice::kAuto}, {"on", SpatialChoice::kOn}, {"off", SpatialChoice::kOff}};
  TuneSettings& settings = options->settings;
  settings.date = today();
  CLI::App& verb = add_verb(app, "tune", "Make a sensor's tuning file from captures", kFooter);
  verb.add_option("INPUT", options->inputs, "pictures, folders of pictures, or manifests")
      ->required()
      ->option_text("...");
  verb.add_option("-o,--output", options->output, "tuning file to write; not needed with --dry-run")
      ->option_text("FILE");
  verb.add_option("-n,--noise-index", options->noise_indices,
                  "noise index of the pictures; with --clean those to make, one level each")
      ->option_text("N,...")
      ->delimiter(',')
      ->check(whole_number(1, kMaxInt));
  verb.add_option("--truth", options->truth, "the pictures are noisy ones of this")
      ->option_text("PICTURE");
  verb.add_flag("--burst", options->is_burst, "the pictures are frames of one still scene");
  verb.add_flag("--clean", options->is_clean, "the pictures are clean: noise is made on them");
  CLI::Option* objective =
      verb.add_option_function<std::string>(
              "--objective",
              [&settings](const std::string& text) { settings.goal = kGoals.at(text); },
              "what to tune for: chroma PSNR (psnr, the default) or mean colour difference")
          ->option_text("psnr|ciede2000")
          ->check(CLI::IsMember({"psnr", "ciede2000"}));
  CLI::Option* spatial =
      verb.add_option_function<std::string>(
              "--spatial",
              [&settings](const std::string& text) { settings.fit.spatial = kSpatial.at(text); },
              "the spatial path: where it pays (auto, the default), on all levels, or never")
          ->option_text("auto|on|off")
          ->check(CLI::IsMember({"auto", "on", "off"}));
  verb.add_flag_callback(
          "--no-wavelet",
          [&settings] {
            settings.wavelet = false;
            settings.fit.spatial = SpatialChoice::kOff;
          },
          "tune the spatial path alone, for a file that leaves the wavelet path off")
      ->excludes(objective)
      ->excludes(spatial);
  verb.add_flag("--luma", settings.luma, "tune the luma keys too; else luma stays untouched");
  verb.add_option("--date", settings.date, "Date of the file (today is the default)")
      ->option_text("TEXT")
      ->check([](const std::string& text) {
        return text.size() < 64 ? "" : "a date has fewer than 64 bytes";
      });
  verb.add_option("--report", options->report,
                  "also write the report: as text, or as JSON when the name ends in .json")
      ->option_text("FILE");
  add_page(verb, options->page);
  verb.add_option("--seed", settings.captures.seed,
                  "choice of the random numbers of --clean (1 is the default)")
      ->option_text("S")
      ->check(whole_number(0, std::numeric_limits<uint64_t>::max()));
  verb.add_flag("--dry-run", options->dry_run, "only say what belongs together");
  add_read_options(verb, settings.captures.read);
  verb.add_flag("-q,--quiet", options->quiet, "print no report");
  add_force(verb, options->force);
  return {&verb, [options] {
            run_tune(*options);
            return kDone;
          }};
}

}  // namespace tool
