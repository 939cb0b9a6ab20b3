#include "tools/app_help.h"

#include <sstream>

namespace tool {
namespace {

constexpr size_t kNameColumn = 32;
constexpr size_t kLineWidth = 100;

// Breaks a text into lines of at most `width` characters.
std::string wrap(const std::string& text, size_t width) {
  std::istringstream words(text);
  std::string wrapped;
  size_t used = 0;
  for (std::string word; words >> word; used += word.size()) {
    if (used > 0 && used + 1 + word.size() > width) {
      wrapped += "\n";
      used = 0;
    } else if (used > 0) {
      wrapped += " ";
      ++used;
    }
    wrapped += word;
  }
  return wrapped;
}

}  // namespace

HelpFormatter::HelpFormatter() {
  column_width(kNameColumn);
  label("Positionals", "Arguments");
}

std::string HelpFormatter::make_usage(const CLI::App* app, std::string name) const {
  std::string usage = "\nUsage: " + name;
  for (const CLI::Option* option : app->get_options()) {
    if (option->get_positional()) usage += " " + make_option_usage(option);
  }
  for (const CLI::Option* option : app->get_options()) {
    if (option->get_positional() || !option->get_required()) continue;
    usage += " -" + option->get_snames().front() + " " + option->get_option_text();
  }
  const bool has_verbs = !app->get_subcommands({}).empty();
  return usage + (has_verbs ? " VERB ..." : " [OPTIONS]") + "\n";
}

std::string HelpFormatter::make_option(const CLI::Option* option, bool is_positional) const {
  std::stringstream out;
  CLI::detail::format_help(out, make_option_name(option, is_positional) + make_option_opts(option),
                           wrap(make_option_desc(option), kLineWidth - kNameColumn),
                           get_column_width());
  return out.str();
}

const char kMainDescription[] =
    "vorel removes colour noise from camera pictures, and has what it takes to judge the result.";

const char kMainFooter[] =
    "Pictures: png, jpg; raw NV21 (nv21, nm21, raw, yuv; the size in the name, as in\n"
    "frame_1920x1080.nv21, or by --size); y4m (8-bit 4:2:0, every frame).\n"
    "\n"
    "Try it:\n"
    "  vorel noise meadow.jpg -o noisy.png --gain 16\n"
    "  vorel denoise noisy.png -o clean.png --noise-index 1600\n"
    "  vorel compare noisy.png clean.png --truth meadow.jpg -o side.png\n"
    "\n"
    "Exit status: 0 done, 1 bad usage, 2 bad input, 3 processing or writing failed.\n"
    "'vorel VERB --help' tells more about a verb.";

const char kDenoiseFooter[] =
    "The output's kind is what its name says; it appears only when it is complete.\n"
    "Frames below the tuning's enableNoiseIndex are left as they are, as on the phone.\n"
    "\n"
    "Examples:\n"
    "  vorel denoise noisy.png -o clean.png --noise-index 3200\n"
    "  vorel denoise dump_4000_3000.nv21 -o out.png --tuning vorel_WT1200.json --sensor 120\n"
    "  vorel denoise clip.y4m -o clean.y4m --noise-index 800 --no-spatial\n"
    "  vorel denoise noisy.png -o clean.png --compare side.png --truth clean_original.png";

const char kNoiseFooter[] =
    "The noise is made on the sensor's samples, before demosaicing, so it has the coarse, "
    "coloured\n"
    "grain of real pictures. Equal seeds give equal results on every machine.\n"
    "\n"
    "Example:\n"
    "  vorel noise meadow.jpg -o noisy.png --gain 16 --seed 1";

const char kCompareFooter[] =
    "PSNR per plane (higher is better) and mean CIEDE2000 colour difference (lower is better).\n"
    "With --truth every picture is held against it, else against the first picture.\n"
    "The side-by-side picture shows the pictures in the order given, then the truth.\n"
    "\n"
    "Examples:\n"
    "  vorel compare noisy.png clean.png --truth meadow.jpg\n"
    "  vorel compare a.png b.png c.png --truth t.png -o side.png --crop 1200,600,200,200 --zoom 4";

const char kCheckFooter[] =
    "The library takes what it can from a tuning file and is quiet about the rest. This is what "
    "it\n"
    "does not tell: keys that it does not know, numbers of the wrong kind, short tables, levels "
    "out\n"
    "of order. Exit status 2 when a file has errors.\n"
    "\n"
    "Example:\n"
    "  vorel check tuning/samples/*.json";

const char kDumpFooter[] =
    "Dumps come from 'vorel denoise --dump DIR', or from a phone with the property\n"
    "persist.vendor.libvorel.debug set to 3 (input), 4 (output too) or 5 (every plane).\n"
    "Nothing in the folder is changed.\n"
    "\n"
    "Example:\n"
    "  vorel dump 0_20260101_120000 --png -o pictures";

}  // namespace tool
