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
    const bool is_short = !option->get_snames().empty();
    usage += is_short ? " -" + option->get_snames().front() : " --" + option->get_lnames().front();
    usage += " " + option->get_option_text();
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
    "Pictures: png, jpg; raw frames (nv21, nv12, i420, yv12, yuv, raw; the size in the name, as "
    "in\n"
    "frame_1920x1080.nv21, or by --size); y4m (8-bit 4:2:0, every frame). '-' is standard input "
    "or\n"
    "output.\n"
    "\n"
    "Try it:\n"
    "  vorel noise meadow.jpg -o noisy.png --gain 16\n"
    "  vorel denoise noisy.png -o clean.png\n"
    "  vorel compare noisy.png clean.png --truth meadow.jpg -o side.png\n"
    "\n"
    "Exit status: 0 done, 1 bad usage, 2 bad input, 3 processing or writing failed.\n"
    "'vorel VERB --help' tells more about a verb.";

}  // namespace tool
