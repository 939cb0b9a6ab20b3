// The search: its picture of what thresholds do, and what it makes of it.
#include <gmock/gmock.h>

#include <cmath>

#include "tests/tools/run_command.h"
#include "tests/tools/test_pictures.h"
#include "tools/tune/frame_trial.h"
#include "tools/tune/minimise.h"
#include "tools/tune/score.h"
#include "tools/tune/value_fit.h"

namespace {

using namespace tool;

class TuneSearch : public testing::Test {
 protected:
  TuneSearch() {
    const std::string clean = directory / "scene.png";
    save(clean, gradient_picture(320, 240));
    for (const int noise_index : {400, 1600, 6400}) {
      measured.emplace_back(load_captures({"scene", noise_index, {}, clean}, {}, noise_index)[0]);
      measure_blend(measured.back(), 0);
    }
  }

  std::vector<const MeasuredCapture*> all() const {
    return {&measured[0], &measured[1], &measured[2]};
  }
  LevelCurves curves(size_t level) const { return {measured[level].curves[0].get()}; }

  static std::string text_of(const Thresholds& thresholds) {
    TuningValues values;
    values.levels.resize(1);
    values.levels[0].thresholds = thresholds;
    return tuning_text(values);
  }

  TestDirectory directory;
  std::vector<MeasuredCapture> measured;
};

TEST_F(TuneSearch, CurvesTellWhatWholeFramesGive) {
  const Thresholds kCases[] = {{0.3125, 0.3125, 0.3125, 0.3125, 0.3125},
                               {20, 40, 80, 160, 320},
                               {5, 600, 7, 90, 1000},
                               {450, 1280, 1280, 1280, 1280}};
  for (size_t level = 0; level < measured.size(); ++level) {
    for (const Thresholds& thresholds : kCases) {
      const Capture& capture = measured[level].capture;
      const Score real = score_of(capture, denoise_with(text_of(thresholds), capture.noisy, 0));
      const double told = 20 * std::log10(255) - level_cost(curves(level), thresholds, kNoPrices);
      EXPECT_NEAR(told, real.chroma(), 0.25) << level << " " << testing::PrintToString(thresholds);
    }
  }
}

// Steps of a quarter octave in every direction through whole frames: nothing is left to gain.
TEST_F(TuneSearch, NoNeighbourOfTheResultIsBetter) {
  FitSettings settings;
  settings.prices = kNoPrices;
  const TuningValues values = fit_values(all(), settings);
  ASSERT_EQ(values.levels.size(), 3u);
  const Capture& capture = measured[1].capture;
  const auto psnr = [&](const Thresholds& thresholds) {
    return score_of(capture, denoise_with(text_of(thresholds), capture.noisy, 0)).chroma();
  };
  const Thresholds found = values.levels[1].thresholds;
  for (size_t i = 0; i < found.size(); ++i) {
    for (const double factor : {0.5, 2.0}) {
      Thresholds neighbour = found;
      neighbour[i] = std::min(neighbour[i] * factor, kThresholdCaps[i]);
      EXPECT_LT(psnr(neighbour), psnr(found) + 0.05) << i << " times " << factor;
    }
  }
}

TEST_F(TuneSearch, LevelsRiseWhateverTheOrderOfTheirNoise) {
  // The noisiest capture claims to be the cleanest: on its own it would ask for the highest values.
  std::swap(measured[0].capture.noise_index, measured[2].capture.noise_index);
  const TuningValues values = fit_values(all(), {});
  for (size_t level = 1; level < values.levels.size(); ++level) {
    for (size_t i = 0; i < kThresholds; ++i) {
      EXPECT_LE(values.levels[level - 1].thresholds[i], values.levels[level].thresholds[i]);
    }
  }
  EXPECT_EQ(tuning_text(values),
            tuning_text(fit_values({&measured[2], &measured[1], &measured[0]}, {})))
      << "the order of the captures shows";
}

TEST_F(TuneSearch, PricesBuyWeakerThresholds) {
  FitSettings dear;
  dear.prices.harm = 5.0;
  const TuningValues cheap = fit_values(all(), {});
  const TuningValues weak = fit_values(all(), dear);
  double cheap_sum = 0;
  double weak_sum = 0;
  for (size_t i = 0; i < kThresholds; ++i) {
    cheap_sum += std::log2(cheap.levels[0].thresholds[i]);
    weak_sum += std::log2(weak.levels[0].thresholds[i]);
  }
  EXPECT_LT(weak_sum, cheap_sum - 1.0);
}

TEST(Minimise, FindsAValleyInsideTheBoundsAndStopsAtThem) {
  const auto valley = [](const std::vector<double>& p) {
    return std::pow(p[0] - 1.5, 2) + 3 * std::pow(p[1] + p[0] - 9.0, 2);
  };
  std::vector<double> point{0.0, 0.0};
  minimise(valley, {{0, 5}, {0, 10}}, 1.0, 1e-4, 300, point);
  EXPECT_NEAR(point[0], 1.5, 1e-2);
  EXPECT_NEAR(point[1], 7.5, 1e-2);
  point = {0.0, 0.0};
  minimise(valley, {{0, 1}, {0, 10}}, 1.0, 1e-4, 300, point);
  EXPECT_NEAR(point[0], 1.0, 1e-2);
  EXPECT_NEAR(point[1], 8.0, 1e-2);
  point = {2.0, 0.0};
  minimise(valley, {{2, 2}, {0, 10}}, 1.0, 1e-4, 300, point);
  EXPECT_EQ(point[0], 2.0) << "no room";
  EXPECT_NEAR(point[1], 7.0, 1e-2);
}

}  // namespace
