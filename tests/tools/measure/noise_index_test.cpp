#include "tools/measure/noise_index.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>

#include "tests/support/source_path.h"
#include "tests/tools/run_command.h"
#include "tools/measure/frame_view.h"
#include "tools/measure/noise_verdict.h"
#include "tools/measure/partial_removal.h"
#include "tools/measure/patch_noise.h"
#include "tools/pictures/noise_model.h"
#include "tools/verbs/trial_run.h"

namespace {

using tool::ChromaNoise;
using tool::NoiseCalibration;
using tool::Nv21Frame;
using tool::Strength;

constexpr int kWidth = 512;
constexpr int kHeight = 384;

double noise(uint64_t seed, int x, int y) {
  return tool::photosite_noise(seed, 0,
                               static_cast<uint64_t>(y) * 65536 + static_cast<uint64_t>(x));
}

using Painter = std::function<double(int x, int y)>;

// Luma, U and V as functions of the sample's place.
Nv21Frame paint(const Painter& luma, const Painter& u, const Painter& v) {
  const auto sample = [](double value) {
    return static_cast<uint8_t>(std::clamp(std::lround(value), 0L, 255L));
  };
  Nv21Frame frame(kWidth, kHeight);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) frame.y()[y * kWidth + x] = sample(luma(x, y));
  }
  for (int y = 0; y < kHeight / 2; ++y) {
    for (int x = 0; x < kWidth / 2; ++x) {
      frame.vu()[y * kWidth + 2 * x] = sample(v(x, y));
      frame.vu()[y * kWidth + 2 * x + 1] = sample(u(x, y));
    }
  }
  return frame;
}

double grey(int x, int y) { return 120 + 3 * noise(1, x, y); }
Painter noisy(uint64_t seed, double deviation, const Painter& clean = nullptr) {
  return [=](int x, int y) { return (clean ? clean(x, y) : 128) + deviation * noise(seed, x, y); };
}

double estimate(const Nv21Frame& frame) {
  const std::optional<ChromaNoise> measured = tool::measure_chroma_noise(view_of(frame));
  return measured ? measured->estimate : -1;
}

TEST(ChromaNoise, FindsTheDeviationOfEachPlaneAndScale) {
  const auto measured = tool::measure_chroma_noise(view_of(paint(grey, noisy(2, 4), noisy(3, 8))));
  ASSERT_TRUE(measured);
  for (int scale = 0; scale < tool::kNoiseScales; ++scale) {
    // The mean of n samples of white noise has its deviation over the root of n; the quiet quarter
    // lies below the middle, more so where a block has few means.
    const double expected = 8.0 / (1 << scale);
    const auto i = static_cast<size_t>(scale);
    EXPECT_NEAR(measured->first[i], expected, 0.15 * expected) << scale;
    EXPECT_NEAR(measured->second[i], expected / 2, 0.15 * expected / 2) << scale;
  }
  // A board of single samples differs by four of its steps along both diagonals, and means do not.
  const Painter board = [](int x, int y) { return 128 + ((x + y) % 2 == 0 ? 5 : -5); };
  const auto exact = tool::measure_chroma_noise(view_of(paint(grey, board, board)));
  ASSERT_TRUE(exact);
  EXPECT_EQ(exact->first, (tool::NoiseByScale{10, 0, 0}));
  EXPECT_EQ(exact->estimate, 0);
}

TEST(ChromaNoise, IsNotFooledByWhatIsNoNoise) {
  const Painter weave = [](int x, int y) {
    return 128 + 20 * std::sin(x * 0.6) * std::sin(y * 0.6);
  };
  const Painter stripes = [](int x, int) { return x / 5 % 2 == 0 ? 90.0 : 160.0; };
  const Painter ramp = [](int x, int y) { return 60 + x * 0.3 + y * 0.2; };
  const Painter half_weave = [&](int x, int y) { return x < 100 ? 128 : weave(x, y); };
  const Painter bars = [](int x, int y) { return y < 250 ? 16 : grey(x, y); };
  const Painter bars_chroma = [](int x, int y) { return y < 125 ? 128 : noisy(2, 6)(x, y); };
  const Painter black_edge = [](int x, int y) { return x < 250 ? 3 * noise(9, x, y) : grey(x, y); };
  const double plain = estimate(paint(grey, noisy(2, 6), noisy(3, 6)));
  EXPECT_GT(plain, 0.5);
  const struct {
    const char* what;
    Nv21Frame frame;
    double least;
    double most;
  } kCases[] = {
      {"flat", paint(grey, noisy(2, 0), noisy(3, 0)), 0, 0},
      {"ramp", paint(grey, ramp, ramp), 0, 0.05 * plain},
      {"stripes", paint(grey, stripes, stripes), 0, 0.05 * plain},
      {"texture in both planes", paint(grey, weave, weave), 0, 0.05 * plain},
      {"texture and a little noise", paint(grey, noisy(2, 1, weave), noisy(3, 1, weave)), 0,
       0.1 * plain},
      {"noise, most of it under texture",
       paint(grey, noisy(2, 6, half_weave), noisy(3, 6, half_weave)), 0, 0.7 * plain},
      {"noise on a ramp", paint(grey, noisy(2, 6, ramp), noisy(3, 6, ramp)), 0.8 * plain,
       1.2 * plain},
      {"bars above", paint(bars, bars_chroma, bars_chroma), 0, 1.2 * plain},
      {"clipped black beside", paint(black_edge, noisy(2, 6), noisy(3, 6)), 0.9 * plain,
       1.1 * plain},
  };
  for (const auto& test : kCases) {
    const double found = estimate(test.frame);
    EXPECT_GE(found, test.least) << test.what;
    EXPECT_LE(found, test.most) << test.what;
  }
  const Painter black = [](int, int) { return 2.0; };
  EXPECT_EQ(estimate(paint(black, noisy(2, 6), noisy(3, 6))), -1) << "nothing but clipped blocks";
}

TEST(ChromaNoise, ReadsStridesAndEitherOrderAndNothingElse) {
  const Nv21Frame frame = paint(grey, noisy(2, 4), noisy(3, 8));
  const auto expected = tool::measure_chroma_noise(view_of(frame));
  constexpr size_t kStride = kWidth + 24;
  std::vector<uint8_t> luma(kStride * kHeight, 77);
  std::vector<uint8_t> swapped(kStride * kHeight / 2, 77);
  for (size_t y = 0; y < kHeight; ++y) {
    std::copy_n(frame.y() + y * kWidth, kWidth, &luma[y * kStride]);
    for (size_t x = 0; y < kHeight / 2 && x < kWidth; ++x) {
      swapped[y * kStride + x] = frame.vu()[y * kWidth + (x ^ 1)];
    }
  }
  const auto measured = tool::measure_chroma_noise(
      {luma.data(), kStride, swapped.data(), kStride, kWidth + 11, kHeight});
  ASSERT_TRUE(expected && measured);
  EXPECT_EQ(measured->first, expected->second);
  EXPECT_EQ(measured->second, expected->first);
  EXPECT_EQ(measured->estimate, expected->estimate);
  EXPECT_EQ(tool::estimate_chroma_noise(view_of(frame)), expected->estimate);
}

TEST(NoiseIndex, IsInterpolatedByLogarithms) {
  const NoiseCalibration levels{{100, 0.5}, {400, 1}, {1600, 4}};
  const struct {
    double noise;
    int index;
  } kCases[] = {{0, 0},   {0.25, 25}, {0.5, 100}, {std::sqrt(0.5), 200},
                {1, 400}, {2, 800},   {4, 1600},  {50, 1600}};
  for (const auto& test : kCases) {
    EXPECT_NEAR(tool::noise_index_for(test.noise, levels), test.index, 1) << test.noise;
  }
  EXPECT_EQ(tool::noise_index_for(1, {{800, 2}}), 400);
  EXPECT_EQ(tool::noise_index_for(3, {{800, 2}}), 800);
}

TEST(NoiseIndex, CalibrationIsTheTuningsOwn) {
  const auto levels = [](const char* indices, const char* noise) {
    const auto found = tool::calibration_of(std::string(R"([{}, {"noiseIndex_values": )") +
                                            indices + R"(, "chromaNoise_values": )" + noise + "}]");
    return found ? static_cast<int>(found->size()) : 0;
  };
  EXPECT_EQ(levels("[100, 200]", "[0.5, 1.5]"), 2);
  EXPECT_EQ(levels("[100, 200, 300]", "[0.5, 1.5]"), 2) << "as far as both say something";
  for (const char* bad : {"[]", "[1.0, 0.5]", "[0.0, 0.5]", "[1, 2]", "7", "[\"a\", 1.0]"}) {
    EXPECT_EQ(levels("[100, 200]", bad), 0) << bad;
  }
  EXPECT_EQ(levels("[200, 100]", "[0.5, 1.5]"), 0);
  for (const char* text : {"", "{}", "[]", "[1]", "[{}]"}) EXPECT_FALSE(tool::calibration_of(text));
}

TEST(NoiseIndex, SampleTuningHoldsTheCalibrationOfTheProgram) {
  const auto levels =
      tool::calibration_of(read_text(source_path("tuning/samples/vorel_NOTHING.json")));
  const NoiseCalibration built_in = tool::sample_calibration();
  ASSERT_TRUE(levels);
  ASSERT_EQ(levels->size(), built_in.size());
  for (size_t i = 0; i < built_in.size(); ++i) {
    EXPECT_EQ((*levels)[i].noise_index, built_in[i].noise_index);
    EXPECT_EQ((*levels)[i].chroma_noise, built_in[i].chroma_noise);
  }
}

constexpr tool::Removal kNoiseWent{1, 0.1, 0.05, 0.1, {0.24, 0.01}};
constexpr tool::Removal kTextureWent{1, 0.1, 0.9, 0.95, {0.5, 0.05}};

TEST(NoiseIndex, FollowsAVideoSmoothly) {
  const auto trial = [](int) { return kNoiseWent; };
  const Nv21Frame weak = paint(grey, noisy(2, 4), noisy(3, 4));
  const Nv21Frame strong = paint(grey, noisy(4, 16), noisy(5, 16));
  const Nv21Frame black = paint([](int, int) { return 0.0; }, noisy(2, 6), noisy(3, 6));
  tool::NoiseIndexTracker alone(tool::sample_calibration());
  tool::NoiseIndexTracker tracker(tool::sample_calibration());
  EXPECT_EQ(tracker.next(view_of(black), trial), std::nullopt);
  const std::optional<Strength> first = tracker.next(view_of(weak), trial);
  const std::optional<Strength> end = alone.next(view_of(strong), trial);
  ASSERT_TRUE(first && end);
  EXPECT_EQ(tracker.next(view_of(black), trial), first) << "holds where nothing can be measured";
  int before = first->noise_index;
  for (int frame = 0; frame < 40; ++frame) {
    const int index = tracker.next(view_of(strong), trial)->noise_index;
    EXPECT_GT(index, before - 1);
    EXPECT_LT(index, before * 1.6) << "no jump";
    before = index;
  }
  EXPECT_NEAR(before, end->noise_index, 0.05 * end->noise_index);
}

TEST(NoiseIndex, IsTriedNowAndThenAndGivenUpOnlyWhenTextureKeepsGoing) {
  const Nv21Frame frame = paint(grey, noisy(2, 6), noisy(3, 6));
  tool::NoiseIndexTracker tracker(tool::sample_calibration());
  int trials = 0;
  std::optional<tool::Removal> removal = kNoiseWent;
  const auto next_second = [&] {
    for (int i = 0; i < 31; ++i) static_cast<void>(tracker.next(view_of(frame), {}));
    return *tracker.next(view_of(frame), [&](int) { return ++trials, removal; });
  };
  const Strength first = *tracker.next(view_of(frame), [&](int) { return removal; });
  EXPECT_GT(first.noise_index, 100);
  EXPECT_EQ(first.percent, 100);
  removal = kTextureWent;
  EXPECT_EQ(next_second(), first) << "once is no proof";
  int kept = 100;
  for (int i = 0; i < 8; ++i) {
    const Strength strength = next_second();
    const int now = strength.noise_index == 0 ? 0 : strength.percent;
    EXPECT_LE(now, kept);
    kept = now;
  }
  EXPECT_EQ(kept, 0);
  EXPECT_EQ(tracker.refused(), first.noise_index);
  EXPECT_EQ(trials, 9);
  removal = std::nullopt;
  EXPECT_EQ(next_second(), Strength{}) << "a trial that failed says nothing";
}

TEST(NoiseIndex, TexturedPictureIsLeftAndANoisyOneDenoised) {
  // Blotches of about three samples as a picture has them that was scaled down, in luma too.
  const auto grain = [](uint64_t seed, int x, int y) {
    return noise(seed, x, y) + noise(seed, x + 1, y) + noise(seed, x, y + 1) +
           noise(seed, x + 1, y + 1);
  };
  const auto cloth = [&](int x, int y) { return grain(7, x / 2, y / 2) * (y % 96 < 32 ? 1 : 3); };
  const Painter luma = [&](int x, int y) { return 120 + 6 * cloth(x / 2, y / 2); };
  const auto plane = [&](double along, double own, uint64_t seed) -> Painter {
    return [=](int x, int y) { return 128 + along * cloth(x, y) + own * grain(seed, x, y); };
  };
  // Noise everywhere, on coarser blotches of each plane's own.
  const auto blotched = [&](uint64_t seed) {
    return noisy(seed, 2, [=](int x, int y) { return 128 + 3 * grain(seed + 50, x / 8, y / 8); });
  };
  const struct {
    const char* what;
    Nv21Frame frame;
    bool is_noise;
  } kCases[] = {
      {"noise on blotches", paint(grey, blotched(2), blotched(3)), false},
      {"texture", paint(luma, plane(1.5, 0.5, 8), plane(-1, 0.5, 9)), false},
      {"texture and a little noise", paint(luma, plane(1.5, 1, 8), plane(-1, 1, 9)), false},
      {"flat and noisy", paint(grey, noisy(2, 6), noisy(3, 6)), true},
      {"flat and very noisy", paint(grey, noisy(2, 20), noisy(3, 20)), true},
  };
  const std::string tuning = read_text(source_path("tuning/samples/vorel_NOTHING.json"));
  for (const auto& test : kCases) {
    const auto measured = tool::measure_chroma_noise(view_of(test.frame));
    ASSERT_TRUE(measured) << test.what;
    for (const int index : {100, 200, 800}) {
      const tool::Removal removal = tool::try_noise_index(test.frame, index, {{}, 0, tuning, {}});
      const double found = tool::doubt(*measured, removal);
      EXPECT_EQ(found < 0, test.is_noise) << test.what << ", " << index << ": " << found;
    }
  }
}

TEST(NoiseVerdict, RefusesWhatNoNoiseIs) {
  const tool::Removal removal{5, 0.1, 0.05, 0.1, {0.24, 0.01}};
  const ChromaNoise noise{{}, {}, 0.3, 1, 0.8, 0.95, -0.7, 0, -0.1, -0.3};
  EXPECT_LT(tool::doubt(noise, removal), 0);
  const struct {
    const char* what;
    std::function<void(ChromaNoise&, tool::Removal&)> change;
  } kCases[] = {
      {"luma's texture", [](auto&, auto& r) { r.along_luma = 0.9; }},
      {"lines", [](auto&, auto& r) { r.pattern.directed = 0.8; }},
      {"a woven pattern", [](auto&, auto& r) { r.pattern.repeated = 0.2; }},
      {"coarse blotches", [](auto& n, auto&) { n.bend = 0.7; }},
  };
  for (const auto& test : kCases) {
    ChromaNoise changed_noise = noise;
    tool::Removal changed_removal = removal;
    test.change(changed_noise, changed_removal);
    EXPECT_GE(tool::doubt(changed_noise, changed_removal), 0) << test.what;
  }
}

TEST(NoiseVerdict, TakesTheLessTheGreaterTheDoubt) {
  const struct {
    double doubt;
    Strength strength;
  } kCases[] = {{-20, {3200, 100}}, {-3, {3200, 90}}, {0.25, {3200, 50}}, {2, {3200, 24}}, {3, {}}};
  for (const auto& test : kCases) {
    EXPECT_EQ(tool::strength_after_trial(3200, test.doubt), test.strength) << test.doubt;
  }
}

TEST(PartialRemoval, KeepsRoundedPartsAndNothingBetweenRows) {
  const std::vector<uint8_t> before{100, 100, 100, 0, 255, 7};
  std::vector<uint8_t> rows{101, 97, 104, 9, 255, 0, 7, 9};
  tool::keep_part_of_change(before.data(), 3, 50, {rows.data(), 4, 3, 2});
  EXPECT_EQ(rows, (std::vector<uint8_t>{101, 98, 102, 9, 128, 127, 7, 9}));
  tool::keep_part_of_change(before.data(), 3, 0, {rows.data(), 4, 3, 2});
  EXPECT_EQ(rows, (std::vector<uint8_t>{100, 100, 100, 9, 0, 255, 7, 9}));
}

TEST(RemovalPattern, TellsLinesAndRepetitionFromNoise) {
  const Painter flat = [](int, int) { return 128.0; };
  const Nv21Frame denoised = paint(grey, flat, flat);
  const Painter shifted = [](int, int) { return 130.0; };
  const Painter stripes = [](int x, int y) { return 128 + 2 * std::abs((x + y) % 24 - 12); };
  const Painter line = [](int x, int) { return x == 40 ? 160.0 : 128.0; };
  const Painter board = [](int x, int y) { return (x / 4 + y / 4) % 2 == 0 ? 120.0 : 136.0; };
  const struct {
    const char* what;
    Painter painter[2];
    double directed;
    double repeated;
    double tolerance;
  } kCases[] = {
      {"nothing", {flat, flat}, 0, 0, 0},
      {"a shift of colour", {shifted, shifted}, 0, 0, 0},
      {"white noise", {noisy(2, 6), noisy(3, 6)}, 0.24, 0.01, 0.02},
      {"slanted stripes", {stripes, stripes}, 1, 0.7, 0.05},
      // In one of 15 columns of blocks; alike only straight below, at 11 of 358 places.
      {"a line", {line, flat}, 1.0 / 15, std::sqrt(11.0 / 358), 0.001},
      {"a board without direction", {board, board}, 0, 0.368, 0.005},
  };
  for (const auto& test : kCases) {
    const tool::RemovalPattern found = tool::measure_removal_pattern(
        view_of(paint(grey, test.painter[0], test.painter[1])), view_of(denoised));
    EXPECT_NEAR(found.directed, test.directed, test.tolerance) << test.what;
    EXPECT_NEAR(found.repeated, test.repeated, test.tolerance) << test.what;
  }
}

TEST(PatchNoise, TellsCoarseFromFine) {
  constexpr int kSide = 64;
  const auto measure = [](const Painter& painter) {
    std::vector<uint8_t> samples;
    for (int y = 0; y < kSide; ++y) {
      for (int x = 0; x < kSide; ++x) {
        samples.push_back(static_cast<uint8_t>(std::lround(painter(x, y))));
        samples.push_back(255);  // the other plane of the pairs
      }
    }
    return tool::measure_patch({samples.data(), 2 * kSide, 2, kSide, kSide});
  };
  const double turn = 2 * M_PI / kSide;
  const struct {
    const char* what;
    Painter painter;
    double deviation;
    double share;
    double tolerance;
  } kCases[] = {
      {"flat", [](int, int) { return 100.0; }, 0, 0, 0},
      {"board", [](int x, int y) { return 100 + ((x + y) % 2 == 0 ? 6 : -6); }, 6, 0, 1e-9},
      {"two waves along", [&](int x, int) { return 100 + 40 * std::sin(2 * turn * x); },
       40 / std::sqrt(2), 1, 0.01},
      {"three waves down", [&](int, int y) { return 100 + 40 * std::sin(3 * turn * y); },
       40 / std::sqrt(2), 1, 0.01},
      {"four waves are fine", [&](int x, int) { return 100 + 40 * std::sin(4 * turn * x); },
       40 / std::sqrt(2), 0, 0.01},
      {"slanted, together too fine",
       [&](int x, int y) { return 100 + 40 * std::sin(3 * turn * (x - y)); }, 40 / std::sqrt(2), 0,
       0.01},
      {"slanted", [&](int x, int y) { return 100 + 40 * std::sin(2 * turn * (x - y)); },
       40 / std::sqrt(2), 1, 0.01},
      {"white", [](int x, int y) { return 100 + 10 * noise(7, x, y); }, 10, 0.012, 0.008},
  };
  for (const auto& test : kCases) {
    const tool::PatchNoise found = measure(test.painter);
    EXPECT_NEAR(found.mean, 100, 0.5) << test.what;
    EXPECT_NEAR(found.deviation, test.deviation, 0.03 * test.deviation) << test.what;
    EXPECT_NEAR(found.coarse_share, test.share, test.tolerance) << test.what;
  }
}

}  // namespace
