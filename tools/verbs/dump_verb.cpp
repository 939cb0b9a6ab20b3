#include <cstdio>
#include <memory>
#include <optional>

#include "tools/files/failure.h"
#include "tools/verbs/dump.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

constexpr char kFooter[] =
    "Dumps come from 'vorel denoise --dump DIR', or from a phone with the property\n"
    "persist.vendor.libvorel.debug set to 3 (input), 4 (output too) or 5 (every plane).\n"
    "Nothing in the folder is changed.\n"
    "\n"
    "Examples:\n"
    "  vorel dump 0_20260101_120000 --png -o pictures\n"
    "  vorel dump 0_20260101_120000 --montage sheet.png --trace 812,300";

std::optional<DumpPixel> read_pixel(const std::string& text) {
  DumpPixel pixel{};
  int length = 0;
  const int found = std::sscanf(text.c_str(), "%6d,%6d%n", &pixel.x, &pixel.y, &length);
  const bool is_whole = found == 2 && static_cast<size_t>(length) == text.size();
  if (!is_whole || pixel.x < 0 || pixel.y < 0) return std::nullopt;
  return pixel;
}

DumpPixel parse_pixel(const std::string& text) { return read_pixel(text).value_or(DumpPixel{}); }

CLI::Validator pixel_place() {
  return {[](const std::string& text) {
            return read_pixel(text) ? std::string() : "'" + text + "' is no pixel such as 812,300";
          },
          ""};
}

}  // namespace

Verb add_dump_verb(CLI::App& app) {
  const auto options = std::make_shared<DumpOptions>();
  CLI::App& verb = add_verb(app, "dump", "Explain and convert the library's dumps", kFooter);
  verb.add_option("DIR", options->directory, "folder with dumps")->required()->option_text(" ");
  verb.add_flag("--png", options->png, "write every plane and frame as a PNG picture");
  verb.add_flag("--y4m", options->y4m, "write frames as y4m");
  verb.add_flag("--rename", options->rename,
                "copy to names with 1920x1080, from which viewers of raw pictures guess the size");
  verb.add_option("-o,--output", options->output, "folder for the results")->option_text("OUTDIR");
  verb.add_option("--montage", options->montage,
                  "picture of all planes with their names, range, mean, deviation and samples that "
                  "are not a number")
      ->option_text("PICTURE");
  verb.add_option_function<std::string>(
          "--trace", [options](const std::string& text) { options->trace = parse_pixel(text); },
          "what each step made of a pixel of the frame, and which stage changed it most")
      ->option_text("X,Y")
      ->check(pixel_place());
  verb.add_flag("--json", options->json,
                "the list with figures of each plane, or the trace, for programs");
  return {&verb, [options] {
            run_dump(*options);
            return kDone;
          }};
}

}  // namespace tool
