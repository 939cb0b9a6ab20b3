#include "tools/tune/tuner.h"

#include <algorithm>
#include <chrono>
#include <set>

#include "tools/files/failure.h"
#include "tools/library/tuning_choice.h"
#include "tools/tune/colour_fit.h"
#include "tools/tune/frame_trial.h"
#include "tools/tune/luma_fit.h"
#include "tools/tune/parallel.h"
#include "tools/tune/progress.h"
#include "tools/tune/spatial_fit.h"

namespace tool {
namespace {

// Held-out scenes need two others to tune on.
constexpr size_t kScenesToHoldOut = 3;
// What opens the gate of the built-in values.
constexpr char kBuiltIn[] = R"([{"CNRTuningSetfile": {"Date": ""}, "enableNoiseIndex": 0}])";

// Rough times of the steps against each other, for the time that is left.
constexpr double kLoadWork = 3.0;
constexpr double kMeasureWork = 2.0;
constexpr double kSpatialWork = 12.0;
constexpr double kTrialWork = 1.0;

std::string open_gate(TuningValues values) {
  values.enable_noise_index = 0;
  return tuning_text(values);
}

class Tuner {
 public:
  Tuner(const std::vector<CaptureSource>& sources, const TuneSettings& settings)
      : sources_(sources),
        settings_(settings),
        progress_(expected_work(sources.size(), settings)),
        start_(std::chrono::steady_clock::now()) {}

  TuneResult run() {
    load();
    measure({0});
    if (stopped() && !all_measured()) Interruption::give_up();
    start_values_ = start_values(everything());
    if (settings_.fit.spatial != SpatialChoice::kOff) search_blends();
    result_.values = fit(everything());
    if (settings_.goal == Goal::kCiede2000 && !stopped()) refine_colours();
    if (!settings_.wavelet) fit_spatial_alone();
    if (settings_.luma && !stopped()) fit_luma(measured_, result_.values);
    try_tunings();
    if (!stopped()) hold_out_scenes();
    fill_wide_gaps(result_.values.levels);
    result_.values.date = settings_.date;
    result_.interrupted = stopped();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    result_.seconds = elapsed.count();
    return std::move(result_);
  }

 private:
  using Captures = std::vector<const MeasuredCapture*>;

  static double expected_work(size_t count, const TuneSettings& settings) {
    const double blends = settings.fit.spatial == SpatialChoice::kOff ? 1.0 : 3.0;
    const double alone = settings.wavelet ? 0.0 : kSpatialWork;
    return static_cast<double>(count) *
           (kLoadWork + blends * kMeasureWork + alone + 6.0 * kTrialWork);
  }

  [[nodiscard]] bool stopped() const { return Interruption::requested(); }

  void load() {
    std::vector<std::vector<Capture>> loaded(sources_.size());
    for_each_in_parallel(sources_.size(), [&](size_t i) {
      if (stopped()) return;
      loaded[i] = load_captures(sources_[i], settings_.captures, static_cast<int>(i));
      progress_.done("reading", kLoadWork);
    });
    if (stopped()) Interruption::give_up();
    std::vector<std::pair<int, size_t>> order;
    for (size_t i = 0; i < sources_.size(); ++i) order.emplace_back(sources_[i].noise_index, i);
    std::sort(order.begin(), order.end());
    for (const auto& [noise_index, i] : order) {
      for (Capture& capture : loaded[i]) {
        measured_.emplace_back(std::move(capture));
      }
    }
  }

  void measure(const std::vector<size_t>& blends) {
    for_each_in_parallel(measured_.size() * blends.size(), [&](size_t i) {
      if (stopped()) return;
      measure_blend(measured_[i / blends.size()], blends[i % blends.size()]);
      progress_.done("measuring", kMeasureWork);
    });
  }

  [[nodiscard]] bool all_measured() const {
    return std::all_of(measured_.begin(), measured_.end(),
                       [](const MeasuredCapture& m) { return m.curves[0] != nullptr; });
  }

  // From coarse to fine: a weak and a middle blend first, the others only where these pay.
  void search_blends() {
    measure({1, 3});
    if (stopped()) return;
    const TuningValues coarse = fit(everything());
    const bool pays = std::any_of(
        coarse.levels.begin(), coarse.levels.end(),
        [](const auto& level) { return level.spatial.d_uv >= spatial_candidates()[3].d_uv; });
    if (pays || (coarse.spatial_path && settings_.fit.spatial == SpatialChoice::kAuto)) {
      measure({2, 4, 5});
    }
  }

  [[nodiscard]] Captures everything() const {
    Captures captures;
    for (const MeasuredCapture& measured : measured_) captures.push_back(&measured);
    return captures;
  }

  [[nodiscard]] TuningValues fit(const Captures& captures) const {
    return fit_values(captures, settings_.fit);
  }

  void refine_colours() {
    refine_for_colour_difference(everything(), settings_.fit.prices, result_.values);
  }

  void fit_spatial_alone() {
    for_each_in_parallel(measured_.size(), [&](size_t i) {
      if (stopped()) return;
      measure_spatial_path(measured_[i]);
      progress_.done("measuring the spatial path", kSpatialWork);
    });
    fit_spatial_path(everything(), result_.values);
  }

  void try_tunings() {
    const std::string texts[] = {kBuiltIn, kSampleTuning, open_gate(start_values_),
                                 open_gate(result_.values)};
    Score Trial::* const scores[] = {&Trial::built_in, &Trial::sample, &Trial::start,
                                     &Trial::tuned};
    std::vector<std::optional<Trial>> trials(measured_.size());
    for_each_in_parallel(measured_.size(), [&](size_t i) {
      if (stopped()) return;
      const Capture& capture = measured_[i].capture;
      Trial trial{
          capture.scene, capture.noise_index, score_of(capture, capture.noisy), {}, {}, {}, {},
          std::nullopt};
      for (size_t k = 0; k < std::size(texts); ++k) {
        trial.*scores[k] =
            score_of(capture, denoise_with(texts[k], capture.noisy, capture.noise_index));
        progress_.done("trying", kTrialWork);
      }
      trials[i] = trial;
    });
    for (const std::optional<Trial>& trial : trials) {
      if (trial) result_.trials.push_back(*trial);
    }
  }

  void hold_out_scenes() {
    std::set<std::string> names;
    for (const MeasuredCapture& measured : measured_) names.insert(measured.capture.scene);
    if (names.size() < kScenesToHoldOut) return;
    const std::vector<std::string> scenes(names.begin(), names.end());
    for_each_in_parallel(scenes.size(), [&](size_t i) { hold_out(scenes[i]); });
  }

  void hold_out(const std::string& scene) {
    Captures others;
    for (const MeasuredCapture& measured : measured_) {
      if (measured.capture.scene != scene) others.push_back(&measured);
    }
    TuningValues values = fit(others);
    if (settings_.goal == Goal::kCiede2000) {
      refine_for_colour_difference(others, settings_.fit.prices, values);
    }
    if (!settings_.wavelet) fit_spatial_path(others, values);
    const std::string text = open_gate(values);
    for (size_t i = 0; i < measured_.size(); ++i) {
      const Capture& capture = measured_[i].capture;
      if (capture.scene != scene || stopped()) continue;
      result_.trials[i].held_out =
          score_of(capture, denoise_with(text, capture.noisy, capture.noise_index));
      progress_.done("holding scenes out", kTrialWork);
    }
  }

  const std::vector<CaptureSource>& sources_;
  const TuneSettings& settings_;
  Progress progress_;
  std::chrono::steady_clock::time_point start_;
  std::vector<MeasuredCapture> measured_;
  TuningValues start_values_;
  TuneResult result_;
};

}  // namespace

TuneResult run_tuning(const std::vector<CaptureSource>& sources, const TuneSettings& settings) {
  const Interruption interruption;
  return Tuner(sources, settings).run();
}

}  // namespace tool
