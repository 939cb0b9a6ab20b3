#include "tools/verbs/verb_options.h"

#include <charconv>
#include <cstdio>
#include <map>
#include <optional>

#include "tools/pictures/raw_layout.h"

namespace tool {
namespace {

constexpr uint64_t kMaxStride = 1 << 20;

std::optional<uint64_t> parse_whole(const std::string& text) {
  uint64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

std::optional<Crop> read_crop(const std::string& text) {
  Crop crop{};
  int length = 0;
  const int found = std::sscanf(text.c_str(), "%6d,%6d,%6d,%6d%n", &crop.x, &crop.y, &crop.width,
                                &crop.height, &length);
  if (found != 4 || static_cast<size_t>(length) != text.size()) return std::nullopt;
  if (crop.x < 0 || crop.y < 0 || crop.width < 1 || crop.height < 1) return std::nullopt;
  return crop;
}

}  // namespace

CLI::Validator whole_number(uint64_t first, uint64_t last) {
  return {[first, last](const std::string& text) {
            const std::optional<uint64_t> value = parse_whole(text);
            if (value && *value >= first && *value <= last) return std::string();
            return "'" + text + "' is no whole number from " + std::to_string(first) + " to " +
                   std::to_string(last);
          },
          ""};
}

CLI::Validator picture_size() {
  return {[](const std::string& text) {
            if (parse_size(text)) return std::string();
            return "'" + text + "' is no size such as 1920x1080 (at most " +
                   std::to_string(kMaxSide) + " a side and " + std::to_string(kMaxPixels) +
                   " pixels)";
          },
          ""};
}

CLI::Validator crop_rectangle() {
  return {[](const std::string& text) {
            return read_crop(text) ? std::string()
                                   : "'" + text + "' is no rectangle such as 100,200,640,480";
          },
          ""};
}

Crop parse_crop(const std::string& text) { return read_crop(text).value_or(Crop{}); }

std::string crop_text(const Crop& crop) {
  return std::to_string(crop.x) + "," + std::to_string(crop.y) + "," + std::to_string(crop.width) +
         "," + std::to_string(crop.height);
}

CLI::App& add_verb(CLI::App& app, const char* name, const char* description, const char* footer) {
  CLI::App& verb = *app.add_subcommand(name, description);
  verb.footer(footer);
  verb.group("Verbs");
  return verb;
}

void add_noise_index(CLI::App& verb, NoiseIndexRequest& request) {
  using Source = NoiseIndexRequest::Source;
  const CLI::Validator number = whole_number(0, kMaxInt);
  verb.add_option_function<std::string>(
          "-n,--noise-index",
          [&request](const std::string& text) {
            request.source = text == "auto"   ? Source::kEstimate
                             : text == "exif" ? Source::kExif
                                              : Source::kNumber;
            if (request.source == Source::kNumber) {
              request.number = static_cast<int>(parse_whole(text).value_or(0));
            }
          },
          "how noisy the frame is: a number on the tuning's scale; exif for the ISO sensitivity "
          "that "
          "the picture names; auto to estimate it from the frame (the default)")
      ->option_text("N|auto|exif")
      ->check(CLI::Validator(
          [number](std::string& text) {
            if (text == "auto" || text == "exif") return std::string();
            const std::string trouble = number(text);
            return trouble.empty() ? trouble : trouble + ", nor auto or exif";
          },
          ""));
}

void add_tuning(CLI::App& verb, TuningRequest& request) {
  verb.add_option("--sensor", request.sensor, "id of the sensor (0 is the default)")
      ->option_text("ID")
      ->check(whole_number(0, kMaxInt));
  verb.add_option("--tuning", request.name,
                  "tuning file of any name; or a folder with vorel_<model>.json files; or none for "
                  "the library's built-in values. Default: the folder VOREL_FIRMWARE_DIR, else a "
                  "sample tuning in this program")
      ->option_text("FILE|DIR|none");
}

void add_output(CLI::App& verb, std::string& output, const char* description) {
  verb.add_option("-o,--output", output, description)->required()->option_text("OUTPUT");
}

void add_quality(CLI::App& verb, std::optional<int>& quality) {
  verb.add_option("--quality", quality,
                  "of JPEG output (default: as the JPEG that comes in, else 95)")
      ->option_text("1-100")
      ->check(whole_number(1, 100));
}

void add_force(CLI::App& verb, bool& force) {
  verb.add_flag(
      "--force", force,
      "let the output replace an input, as a whole and at the end; of several pictures also "
      "results that exist");
}

void add_crop(CLI::App& verb, std::optional<Crop>& crop, const char* description) {
  verb.add_option_function<std::string>(
          "--crop", [&crop](const std::string& text) { crop = parse_crop(text); }, description)
      ->option_text("X,Y,WIDTH,HEIGHT")
      ->check(crop_rectangle());
}

void add_page(CLI::App& verb, std::optional<std::string>& page) {
  verb.add_option("--page", page,
                  "write a page for a browser: pictures behind a divider, figures, curves")
      ->option_text("FILE.html")
      ->check(CLI::Validator(
          [](const std::string& text) {
            return text == "-" ? "a page needs a file, not standard output" : "";
          },
          ""));
}

void add_read_options(CLI::App& app, ReadOptions& read) {
  static const std::map<std::string, Range> kRanges{{"full", Range::kFull},
                                                    {"limited", Range::kLimited}};
  static const std::map<std::string, Matrix> kMatrices{{"601", Matrix::kBt601},
                                                       {"709", Matrix::kBt709}};
  app.add_option_function<std::string>(
         "--size", [&read](const std::string& text) { read.size = parse_size(text); },
         "size of a raw frame, when its name does not say it")
      ->option_text("WIDTHxHEIGHT")
      ->check(picture_size());
  app.add_option_function<std::string>(
         "--layout", [&read](const std::string& text) { read.layout = parse_layout(text); },
         "order of the samples in raw frames (default: by extension; nv21 for .raw, i420 for .yuv)")
      ->option_text("nv21|nv12|i420|yv12")
      ->check(CLI::IsMember({"nv21", "nv12", "i420", "yv12"}));
  app.add_option("--stride", read.stride, "bytes from one luma row of a raw frame to the next")
      ->option_text("BYTES")
      ->check(whole_number(2, kMaxStride));
  app.add_option_function<std::string>(
         "--frames",
         [&read](const std::string& text) {
           read.frames = text == "all" ? kAllFrames : std::stoi(text);
         },
         "frames in a raw file (default: one; of a pipe all that come)")
      ->option_text("N|all")
      ->check(whole_number(1, kMaxInt) | CLI::IsMember({"all"}));
  app.add_option_function<std::string>(
         "--range", [&read](const std::string& text) { read.range = kRanges.at(text); },
         "range of YUV samples (full: 0-255, what phones deliver, is the default)")
      ->option_text("full|limited")
      ->check(CLI::IsMember({"full", "limited"}));
  app.add_option_function<std::string>(
         "--matrix", [&read](const std::string& text) { read.matrix = kMatrices.at(text); },
         "YUV matrix: BT.601 (the default), or BT.709 for raw and y4m input")
      ->option_text("601|709")
      ->check(CLI::IsMember({"601", "709"}));
}

}  // namespace tool
