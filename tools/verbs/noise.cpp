#include "tools/verbs/noise.h"

#include <cstdio>

#include "tools/files/failure.h"
#include "tools/files/input_file.h"
#include "tools/files/printable.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/noise_model.h"

namespace tool {

void run_noise(const NoiseOptions& options) {
  check_outputs({options.output}, {options.input}, options.force);
  const std::unique_ptr<PictureInput> input = PictureInput::open(options.input, options.read);
  const std::unique_ptr<PictureOutput> output =
      PictureOutput::open(options.output, {options.quality, input->layout(), input->kind()});
  const bool keeps_rgb =
      (options.output == kStandardStream ? input->kind() : kind_of_name(options.output)) ==
      FileKind::kPng;
  NoiseSettings settings{options.gain, options.seed, 0};
  Size size{};
  // Why a video gives no more frames after its first ones.
  std::string trouble;
  const auto next = [&]() -> std::optional<Picture> {
    try {
      return input->next();
    } catch (const Failure& failure) {
      if (settings.frame == 0 || failure.status() != kBadInput) throw;
      trouble = failure.what();
      return std::nullopt;
    }
  };
  while (std::optional<Picture> picture = next()) {
    size = picture->size();
    const RgbImage noisy = add_camera_noise(as_rgb(*picture), settings);
    if (keeps_rgb) {
      picture->pixels = noisy;
    } else {
      picture->pixels = rgb_to_nv21(noisy, input->colour());
    }
    output->write(*picture);
    ++settings.frame;
  }
  if (settings.frame == 0) throw input_error(options.input, "holds no frame");
  output->finish();
  FILE* out = options.output == kStandardStream ? stderr : stdout;
  std::fprintf(out, "%s\n", printable(options.input + " -> " + options.output).c_str());
  std::fprintf(
      out, "  size         %s%s\n", size_text(size).c_str(),
      settings.frame > 1 ? (", " + std::to_string(settings.frame) + " frames").c_str() : "");
  std::fprintf(out, "  gain         %d, seed %llu\n", options.gain,
               static_cast<unsigned long long>(options.seed));
  std::fprintf(out, "  noise index  %d (100 x gain; for vorel denoise --noise-index)\n",
               kNoiseIndexPerGain * options.gain);
  if (!trouble.empty()) {
    throw Failure(kBadInput,
                  trouble + "; what came before it is in " +
                      (options.output == kStandardStream ? "standard output" : options.output));
  }
}

}  // namespace tool
