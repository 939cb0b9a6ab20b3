#include <memory>

#include "tools/files/failure.h"
#include "tools/verbs/compare.h"
#include "tools/verbs/verb_options.h"
#include "tools/verbs/verbs.h"

namespace tool {
namespace {

constexpr char kFooter[] =
    "PSNR per plane (higher is better) and mean CIEDE2000 colour difference (lower is better).\n"
    "With --truth every picture is held against it, else against the first picture.\n"
    "With --chart, --patch and --edge figures are of the first frame, in 8-bit steps of chroma.\n"
    "The side-by-side picture shows the pictures in the order given, then the truth.\n"
    "\n"
    "Examples:\n"
    "  vorel compare noisy.png clean.png --truth meadow.jpg\n"
    "  vorel compare a.png b.png c.png --truth t.png -o side.png --crop 1200,600,200,200 --zoom 4\n"
    "  vorel compare noisy.png clean.png --chart";

void add_areas(CLI::App& verb, const char* name, std::vector<Crop>& areas,
               const char* description) {
  verb.add_option_function<std::vector<std::string>>(
          name,
          [&areas](const std::vector<std::string>& texts) {
            for (const std::string& text : texts) areas.push_back(parse_crop(text));
          },
          description)
      ->option_text("X,Y,WIDTH,HEIGHT")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->check(crop_rectangle());
}

}  // namespace

Verb add_compare_verb(CLI::App& app) {
  const auto options = std::make_shared<CompareOptions>();
  CLI::App& verb = add_verb(app, "compare", "Say how far pictures are from each other", kFooter);
  verb.add_option("PICTURE", options->pictures, "pictures or videos of one size")
      ->required()
      ->option_text(" ");
  verb.add_option("--truth", options->truth, "the picture that all others should be")
      ->option_text("PICTURE");
  verb.add_flag("--chart", options->chart,
                "the truth is the chart that 'vorel chart' draws: also noise and colour of its "
                "patches and how far colours run at its edges");
  add_areas(verb, "--patch", options->patches,
            "a field of one colour: noise that is left there, how far its colour moved; may be "
            "given again");
  add_areas(verb, "--edge", options->edges,
            "two colours that meet upright or level in the middle: pixels in which the chroma of "
            "one becomes that of the other; may be given again");
  verb.add_option("-o,--output", options->output, "write the pictures side by side")
      ->option_text("PICTURE");
  add_crop(verb, options->crop, "part that the side-by-side picture and the page show");
  verb.add_option("--zoom", options->zoom, "enlarge the side-by-side picture by repeating pixels")
      ->option_text("1-32")
      ->check(whole_number(1, kMaxZoom));
  verb.add_flag("--json", options->json, "print the figures for programs");
  add_page(verb, options->page);
  add_read_options(verb, options->read);
  add_force(verb, options->force);
  return {&verb, [options] {
            run_compare(*options);
            return kDone;
          }};
}

}  // namespace tool
