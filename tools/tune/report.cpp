#include "tools/tune/report.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <set>

#include "tools/tune/trial_means.h"
#include "tools/tuning/json.h"

namespace tool {
namespace {

__attribute__((format(printf, 2, 3))) void append(std::string& text, const char* format, ...) {
  char line[256];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof(line), format, arguments);
  va_end(arguments);
  text += line;
}

void append_gains(std::string& text, const TrialMeans& means) {
  append(text, "%8.2f", means.noisy.chroma());
  for (const Score& score : means.columns) {
    append(text, "  %+8.2f", score.chroma() - means.noisy.chroma());
  }
  if (means.held_out_count > 0.0) {
    append(text, "  %+8.2f", means.held_out.chroma() - means.noisy.chroma());
  } else {
    text += "         -";
  }
}

std::string heading(const char* first) {
  std::string text;
  append(text, "%-20s%8s", first, "noisy");
  for (const auto& column : kTrialColumns) append(text, "  %8s", column.title);
  return text + "  held out";
}

std::string level_table(const TuneResult& result) {
  std::string text = "Chroma PSNR of the noisy pictures, and the gain of each tuning in dB:\n" +
                     heading("noise index") + "   CIEDE2000 noisy -> tuned\n";
  for (const int index : noise_indices(result.trials)) {
    const TrialMeans means = means_at(result.trials, index);
    append(text, "%-20d", index);
    append_gains(text, means);
    append(text, "   %.2f -> %.2f\n", means.noisy.ciede2000, means.columns[3].ciede2000);
  }
  return text;
}

std::string scene_table(const TuneResult& result) {
  std::set<std::string> scenes;
  for (const Trial& trial : result.trials) scenes.insert(trial.scene);
  if (scenes.size() < 2) return "";
  std::string text = "\nThe same by scene, mean of all noise indices:\n" + heading("scene") + "\n";
  for (const std::string& scene : scenes) {
    append(text, "%-20.20s", scene.c_str());
    append_gains(text, means_of(result.trials,
                                [&scene](const Trial& trial) { return trial.scene == scene; }));
    text += "\n";
  }
  return text + "held out: tuned on all the other scenes\n";
}

std::string value_table(const TuningValues& values) {
  std::string text =
      "\nnoise index   denoiseThrChroma0 to 4                   d_UV   cs       d_Y    chroma "
      "noise\n";
  for (const LevelValues& level : values.levels) {
    append(text, "%-12d", level.noise_index);
    for (const double threshold : level.thresholds) append(text, "  %6.4g", threshold);
    const SpatialValues& spatial = level.spatial;
    append(text, "   %4d  %3d,%3d  %2d,%d", spatial.d_uv, spatial.cs_upper, spatial.cs_lower,
           spatial.d_y_upper, spatial.d_y_lower);
    if (level.chroma_noise) append(text, "    %.3g", *level.chroma_noise);
    text += level.interpolated ? "   (between its neighbours: nothing was captured here)\n" : "\n";
  }
  if (!values.spatial_path) {
    text += "spatial path: off; it gains nothing here that is worth its time\n";
  }
  if (!values.wavelet_path) text += "wavelet path: off; its thresholds are for switching it on\n";
  if (!values.levels.front().chroma_noise) {
    text += "no chromaNoise_values: the captures' noise could not be estimated, or does not rise\n";
  }
  append(text, "frames below noise index %d are left as they are\n", values.enable_noise_index);
  return text;
}

// Four decimals: more would be noise, and differ between machines.
json_t* number(double value) { return json_real(std::round(value * 1e4) / 1e4); }

json_t* score_json(const Score& score) {
  return json_pack("{s:o,s:o,s:o,s:o,s:o}", "chroma_psnr", number(score.chroma()), "psnr_y",
                   number(score.psnr_y), "psnr_u", number(score.psnr_u), "psnr_v",
                   number(score.psnr_v), "ciede2000", number(score.ciede2000));
}

json_t* trial_json(const Trial& trial) {
  json_t* object = json_pack("{s:s,s:i,s:o}", "scene", trial.scene.c_str(), "noise_index",
                             trial.noise_index, "noisy", score_json(trial.noisy));
  for (const auto& column : kTrialColumns) {
    json_object_set_new(object, column.key, score_json(trial.*column.score));
  }
  if (trial.held_out) json_object_set_new(object, "held_out", score_json(*trial.held_out));
  return object;
}

json_t* level_json(const LevelValues& level) {
  json_t* thresholds = json_array();
  for (const double threshold : level.thresholds) {
    json_array_append_new(thresholds, json_real(threshold));
  }
  json_t* object = json_pack(
      "{s:i,s:o,s:i,s:i,s:i,s:i,s:i,s:b}", "noise_index", level.noise_index, "thresholds",
      thresholds, "d_UV_thresh", level.spatial.d_uv, "cs_upper_thresh", level.spatial.cs_upper,
      "cs_lower_thresh", level.spatial.cs_lower, "d_Y_upper_thresh", level.spatial.d_y_upper,
      "d_Y_lower_thresh", level.spatial.d_y_lower, "interpolated", level.interpolated ? 1 : 0);
  if (level.chroma_noise) json_object_set_new(object, "chroma_noise", number(*level.chroma_noise));
  return object;
}

}  // namespace

std::string report_text(const TuneResult& result) {
  std::string text;
  if (!result.trials.empty()) text += level_table(result) + scene_table(result);
  text += value_table(result.values);
  append(text, "%.0f s\n", result.seconds);
  if (result.interrupted) text += "interrupted: this is the best so far\n";
  return text;
}

std::string report_json(const TuneResult& result) {
  json_t* levels = json_array();
  for (const LevelValues& level : result.values.levels) {
    json_array_append_new(levels, level_json(level));
  }
  json_t* trials = json_array();
  for (const Trial& trial : result.trials) json_array_append_new(trials, trial_json(trial));
  const Json root(json_pack("{s:s,s:b,s:b,s:i,s:o,s:o}", "date", result.values.date.c_str(),
                            "interrupted", result.interrupted ? 1 : 0, "spatial_path",
                            result.values.spatial_path ? 1 : 0, "enable_noise_index",
                            result.values.enable_noise_index, "levels", levels, "trials", trials));
  return json_text(root.get(), JSON_INDENT(2) | JSON_REAL_PRECISION(10)) + "\n";
}

}  // namespace tool
