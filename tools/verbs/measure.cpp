#include "tools/verbs/measure.h"

#include <jansson.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "tools/files/failure.h"
#include "tools/library/library_log.h"
#include "tools/measure/frame_view.h"
#include "tools/measure/noise_index.h"
#include "tools/measure/noise_verdict.h"
#include "tools/measure/patch_noise.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/exif_iso.h"
#include "tools/tuning/json.h"
#include "tools/verbs/noise_index_choice.h"
#include "tools/verbs/trial_run.h"

namespace tool {
namespace {

// What the noise index was chosen by.
struct IndexTrial {
  int noise_index;
  Removal removal;
  double doubt;
};

struct Measured {
  Size size;
  std::optional<NoiseByScale> luma;
  std::optional<ChromaNoise> chroma;  // first is V: frames are NV21
  std::optional<Strength> strength;
  std::optional<IndexTrial> trial;
  std::optional<int> iso;
  std::optional<PatchPlanes> patch;
};

Measured measure(const std::string& path, const MeasureOptions& options,
                 const NoiseCalibration& calibration, const EngineSettings& settings) {
  const std::unique_ptr<PictureInput> input = PictureInput::open(path, options.read);
  const std::optional<Picture> picture = input->next();
  if (!picture) throw input_error(path, "holds no frame");
  const Nv21Frame frame = as_nv21(*picture, input->colour());
  const FrameView view = view_of(frame);
  Measured measured{
      picture->size(), measure_luma_noise(view), measure_chroma_noise(view), {}, {}, {}, {}};
  if (measured.chroma) {
    const double estimate = measured.chroma->estimate;
    measured.strength = Strength{noise_index_for(estimate, calibration)};
    if (const std::optional<int> tried = index_to_try(estimate, calibration)) {
      const Removal removal = try_noise_index(frame, *tried, settings);
      measured.trial = IndexTrial{*tried, removal, doubt(*measured.chroma, removal)};
      measured.strength = strength_after_trial(*tried, measured.trial->doubt);
    }
  }
  measured.iso = exif_iso(picture->metadata.exif);
  if (options.patch) {
    check_area("--patch", *options.patch, measured.size, path);
    measured.patch = measure_patch(frame, *options.patch);
  }
  return measured;
}

void print_scales(const char* plane, const NoiseByScale& noise) {
  std::printf("  %-14s%8.2f%8.2f%8.2f\n", plane, noise[0], noise[1], noise[2]);
}

void print_trial(const ChromaNoise& noise, const IndexTrial& trial) {
  const Removal& removal = trial.removal;
  std::printf("  %-14s%8d%s\n", "tried index", trial.noise_index,
              percent_to_take(trial.doubt) > 0 ? "" : ": could remove texture");
  std::printf("    %-12s%8.2f  (below 0 noise, above 0 rather texture)\n", "doubt", trial.doubt);
  std::printf(
      "    %-12s%8.2f  mean square; %.0f %% follows luma, %.0f %% of the chroma untouched\n",
      "removed", removal.energy, 100 * removal.along_luma, 100 * removal.untouched);
  std::printf("    %-12s%8.2f  of its strength with the texture that stays\n", "correlation",
              removal.along_chroma);
  std::printf("    %-12s%8.2f  forms lines; %.2f repeats itself\n", "pattern",
              removal.pattern.directed, removal.pattern.repeated);
  std::printf("    %-12s%8.2f  quiet noise of the middle block's; %.0f %% each plane's own\n",
              "purity", noise.purity, 100 * noise.own_share);
  std::printf("    %-12s%8.2f  8 x 8 to 4 x 4; bend %.2f; %.2f chroma to luma (logarithms)\n",
              "noise ratio", noise.coarseness, noise.bend, noise.to_luma);
  std::printf("    %-12s%8.2f  quietest tenth to quietest quarter (logarithm)\n", "evenness",
              noise.evenness);
}

json_t* trial_json(const ChromaNoise& noise, const std::optional<IndexTrial>& trial) {
  if (!trial) return json_null();
  const Removal& removal = trial->removal;
  return json_pack("{s:i,s:f,s:f,s:f,s:f,s:f,s:f,s:f,s:f,s:f,s:f,s:f,s:f,s:f,s:f}", "noise_index",
                   trial->noise_index, "doubt", trial->doubt, "removed", removal.energy,
                   "untouched", removal.untouched, "along_luma", removal.along_luma, "along_chroma",
                   removal.along_chroma, "directed", removal.pattern.directed, "repeated",
                   removal.pattern.repeated, "quiet", noise.quiet, "purity", noise.purity,
                   "own_share", noise.own_share, "coarseness", noise.coarseness, "to_luma",
                   noise.to_luma, "evenness", noise.evenness, "bend", noise.bend);
}

void print_patch(const char* plane, const PatchNoise& noise) {
  std::printf("  %-14s%8.2f%11.2f%16.1f %%\n", plane, noise.mean, noise.deviation,
              100 * noise.coarse_share);
}

void print(const std::string& path, const Measured& measured) {
  std::printf("%s (%s)\n", path.c_str(), size_text(measured.size).c_str());
  const std::string iso = measured.iso ? "Exif says ISO " + std::to_string(*measured.iso) : "";
  if (measured.chroma) {
    std::printf("  %-14s%8s%8s%8s\n", "noise", "1 x 1", "2 x 2", "4 x 4");
    print_scales("Y", *measured.luma);
    print_scales("U", measured.chroma->second);
    print_scales("V", measured.chroma->first);
    std::printf("  %-14s%8.2f\n", "estimate", measured.chroma->estimate);
    const Strength strength = *measured.strength;
    std::printf(
        "  %-14s%8d%s%s\n", "noise index", strength.noise_index,
        strength.percent < 100 ? (" at " + std::to_string(strength.percent) + " %").c_str() : "",
        iso.empty() ? "" : (" (" + iso + ")").c_str());
    if (measured.trial) print_trial(*measured.chroma, *measured.trial);
  } else {
    std::printf(
        "  too little that is neither clipped nor flat to measure noise in: %d blocks of "
        "64 x 64 pixels are needed%s\n",
        kLeastNoiseBlocks, iso.empty() ? "" : ("; " + iso).c_str());
  }
  if (!measured.patch) return;
  std::printf("  %-14s%8s%11s%18s\n", "patch", "mean", "deviation", "below 1/16");
  print_patch("Y", measured.patch->y);
  print_patch("U", measured.patch->u);
  print_patch("V", measured.patch->v);
}

json_t* scales_json(const std::optional<NoiseByScale>& noise) {
  if (!noise) return json_null();
  return json_pack("[f,f,f]", (*noise)[0], (*noise)[1], (*noise)[2]);
}

json_t* patch_json(const PatchNoise& noise) {
  return json_pack("{s:f,s:f,s:f}", "mean", noise.mean, "deviation", noise.deviation,
                   "coarse_share", noise.coarse_share);
}

json_t* picture_json(const std::string& path, const Measured& measured) {
  const std::optional<ChromaNoise>& chroma = measured.chroma;
  const std::optional<Strength>& strength = measured.strength;
  const auto whole = [](const std::optional<int>& number) {
    return number ? json_integer(*number) : json_null();
  };
  json_t* json = json_pack(
      "{s:s%,s:i,s:i,s:o,s:o,s:o,s:o,s:o,s:o,s:o}", "file", path.data(), path.size(), "width",
      measured.size.width, "height", measured.size.height, "y", scales_json(measured.luma), "u",
      scales_json(chroma ? std::optional(chroma->second) : std::nullopt), "v",
      scales_json(chroma ? std::optional(chroma->first) : std::nullopt), "estimate",
      chroma ? json_real(chroma->estimate) : json_null(), "noise_index",
      whole(strength ? std::optional(strength->noise_index) : std::nullopt), "percent",
      whole(strength ? std::optional(strength->percent) : std::nullopt), "exif_iso",
      whole(measured.iso));
  json_object_set_new(json, "trial", chroma ? trial_json(*chroma, measured.trial) : json_null());
  if (measured.patch) {
    json_object_set_new(
        json, "patch",
        json_pack("{s:o,s:o,s:o}", "y", patch_json(measured.patch->y), "u",
                  patch_json(measured.patch->u), "v", patch_json(measured.patch->v)));
  }
  return json;
}

}  // namespace

void run_measure(const MeasureOptions& options) {
  const LibraryLog log(LogLevel::kWarning);
  const EngineSettings settings{{}, options.tuning.sensor, choose_tuning(options.tuning).text, {}};
  const NoiseCalibration calibration = calibration_for(settings.tuning);
  const Json root(json_object());
  json_t* pictures = json_array();
  json_object_set_new(root.get(), "pictures", pictures);
  for (const std::string& path : options.inputs) {
    const Measured measured = measure(path, options, calibration, settings);
    if (options.json) {
      json_array_append_new(pictures, picture_json(path, measured));
    } else {
      print(path, measured);
    }
  }
  if (options.json) {
    json_dumpf(root.get(), stdout, JSON_INDENT(2) | JSON_REAL_PRECISION(6));
    std::fputs("\n", stdout);
  }
}

}  // namespace tool
