#include "tools/verbs/tune_page.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "tools/files/print_text.h"
#include "tools/pictures/colour.h"
#include "tools/tune/frame_trial.h"
#include "tools/tune/trial_means.h"
#include "tools/verbs/result_page.h"

namespace tool {
namespace {

// Gains in dB of each tuning in turn, the held-out ones last; not a number where there is none.
std::vector<double> gains_of(const TrialMeans& means) {
  std::vector<double> gains;
  for (const Score& score : means.columns) gains.push_back(score.chroma() - means.noisy.chroma());
  gains.push_back(means.held_out_count > 0 ? means.held_out.chroma() - means.noisy.chroma()
                                           : std::nan(""));
  return gains;
}

std::vector<std::string> gain_titles() {
  std::vector<std::string> titles;
  for (const TrialColumn& column : kTrialColumns) titles.emplace_back(column.title);
  titles.emplace_back("held out");
  return titles;
}

Table gain_table(const std::string& title, const std::string& first) {
  Table table{title, {first, "noisy, dB"}, {}};
  for (const std::string& column : gain_titles()) table.headings.push_back(column);
  return table;
}

void add_gains(Table& table, const std::string& name, const TrialMeans& means) {
  table.rows.push_back({name, print_text("%.2f", means.noisy.chroma())});
  for (const double gain : gains_of(means))
    table.rows.back().push_back(std::isnan(gain) ? "-" : print_text("%+.2f", gain));
}

Table level_table(const std::vector<Trial>& trials) {
  Table table =
      gain_table("Chroma PSNR and the gain of each tuning, by noise index", "noise index");
  for (const int index : noise_indices(trials)) {
    add_gains(table, std::to_string(index), means_at(trials, index));
  }
  return table;
}

Table scene_table(const std::vector<Trial>& trials) {
  Table table = gain_table("The same by scene; held out: tuned on all the others", "scene");
  std::set<std::string> scenes;
  for (const Trial& trial : trials) scenes.insert(trial.scene);
  for (const std::string& scene : scenes) {
    add_gains(table, scene,
              means_of(trials, [&scene](const Trial& trial) { return trial.scene == scene; }));
  }
  return table;
}

Table value_table(const TuningValues& values) {
  Table table{"Values of the file", {"noise index"}, {}};
  for (size_t i = 0; i < kThresholds; ++i) {
    table.headings.push_back("threshold " + std::to_string(i));
  }
  table.headings.insert(table.headings.end(), {"d_UV", "chroma noise", "captured"});
  for (const LevelValues& level : values.levels) {
    table.rows.push_back({std::to_string(level.noise_index)});
    std::vector<std::string>& row = table.rows.back();
    for (const double threshold : level.thresholds) row.push_back(print_text("%.4g", threshold));
    row.push_back(std::to_string(level.spatial.d_uv));
    row.push_back(level.chroma_noise ? print_text("%.3g", *level.chroma_noise) : "-");
    row.emplace_back(level.interpolated ? "no" : "yes");
  }
  return table;
}

PageCurves gain_curves(const std::vector<Trial>& trials) {
  PageCurves curves{"Gain over the noisy pictures", "noise index", "dB", true, false, {}, {}};
  for (const std::string& title : gain_titles()) curves.lines.push_back({title, {}});
  for (const int index : noise_indices(trials)) {
    curves.x.push_back(index);
    const std::vector<double> gains = gains_of(means_at(trials, index));
    for (size_t i = 0; i < gains.size(); ++i) curves.lines[i].values.push_back(gains[i]);
  }
  if (std::isnan(curves.lines.back().values.front())) curves.lines.pop_back();
  return curves;
}

// Of the captures that have the middle noise index the first.
size_t shown_source(const std::vector<CaptureSource>& sources) {
  std::vector<int> indices;
  for (const CaptureSource& source : sources) indices.push_back(source.noise_index);
  std::sort(indices.begin(), indices.end());
  const int middle = indices[(indices.size() - 1) / 2];
  const auto shown = std::find_if(sources.begin(), sources.end(),
                                  [&](const auto& source) { return source.noise_index == middle; });
  return static_cast<size_t>(shown - sources.begin());
}

void add_pictures(Page& page, const TuneResult& result, const std::vector<CaptureSource>& sources,
                  const CaptureSettings& settings) {
  const size_t shown = shown_source(sources);
  const std::vector<Capture> captures =
      load_captures(sources[shown], settings, static_cast<int>(shown));
  const Capture& capture = captures.front();
  TuningValues open = result.values;
  open.enable_noise_index = 0;
  const auto add = [&page](const char* name, const Nv21Frame& frame) {
    page.pictures.push_back({name, nv21_to_rgb(frame)});
  };
  add("noisy", capture.noisy);
  add("tuned", denoise_with(tuning_text(open), capture.noisy, capture.noise_index));
  add("truth", capture.truth);
  page.reference = 2;
  page.facts.push_back(
      {"shown", capture.scene + " at noise index " + std::to_string(capture.noise_index)});
}

}  // namespace

Page tune_page(const std::string& name, const TuneResult& result,
               const std::vector<CaptureSource>& sources, const CaptureSettings& captures) {
  Page page;
  page.title = name + " tuned";
  page.facts = {
      {"date", result.values.date},
      {"captures", std::to_string(result.trials.size())},
      {"gate", "noise index " + std::to_string(result.values.enable_noise_index)},
      {"spatial path", result.values.spatial_path ? "on" : "off"},
      {"time", print_text("%.0f s", result.seconds)},
  };
  if (result.interrupted) page.facts.push_back({"interrupted", "the best so far"});
  add_pictures(page, result, sources, captures);
  if (!result.trials.empty()) {
    page.tables = {level_table(result.trials), scene_table(result.trials)};
  }
  page.tables.push_back(value_table(result.values));
  page.curves = {strength_curves(tuning_text(result.values))};
  if (!result.trials.empty()) page.curves.push_back(gain_curves(result.trials));
  return page;
}

}  // namespace tool
