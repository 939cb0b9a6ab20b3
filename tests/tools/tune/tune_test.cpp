// The file that tuning ends in, and the verb as its users run it.
#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "tests/tools/run_command.h"
#include "tests/tools/test_pictures.h"
#include "tools/tune/tuning_values.h"
#include "tools/tuning/check.h"

namespace {

using namespace tool;
using testing::HasSubstr;
using testing::IsEmpty;

LevelValues level_of(int noise_index, double threshold) {
  LevelValues level;
  level.noise_index = noise_index;
  level.thresholds.fill(threshold);
  return level;
}

TEST(TuningValues, MakeACompleteFile) {
  TuningValues values;
  values.date = "a \"quoted\" date";
  values.levels = {level_of(100, 0.3125), level_of(200, 7), level_of(400, 1280)};
  values.levels[2].thresholds[0] = kThresholdCaps[0];
  const std::string text = tuning_text(values);
  EXPECT_THAT(check_tuning_text(text), IsEmpty()) << text;
  EXPECT_THAT(text, HasSubstr("\"denoiseThrChroma4Table\": [0.312, 7.0, 1280.0]"));
}

TEST(TuningValues, LieInEqualRatiosInWideGaps) {
  std::vector<LevelValues> levels = {level_of(100, 2), level_of(1600, 32), level_of(3200, 40)};
  fill_wide_gaps(levels);
  std::vector<int> indices;
  for (const LevelValues& level : levels) indices.push_back(level.noise_index);
  EXPECT_THAT(indices, testing::ElementsAre(100, 200, 400, 800, 1600, 3200));
  EXPECT_EQ(levels[2].thresholds[0], 8.0);
  EXPECT_TRUE(levels[2].interpolated);
  EXPECT_FALSE(levels[4].interpolated);

  levels = {level_of(1, 1), level_of(1 << 20, 2)};
  fill_wide_gaps(levels);
  EXPECT_EQ(levels.size(), kMaxLevels);
}

class TuneVerb : public testing::Test {
 protected:
  TuneVerb() {
    for (int i = 0; i < 3; ++i) {
      const std::string path = directory / ("scene" + std::to_string(i) + ".png");
      save(path, gradient_picture(128 + 32 * i, 96));
      arguments.push_back(path);
    }
  }
  std::vector<std::string> with(const std::vector<std::string>& more) const {
    std::vector<std::string> all = arguments;
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }

  TestDirectory directory;
  std::string out = directory / "tuned.json";
  std::vector<std::string> arguments{"tune"};
};

TEST_F(TuneVerb, MakesTheSameFileInEveryRun) {
  const std::vector<std::string> run = with({"--clean", "-n", "1600,400", "-o", out, "--date", "d",
                                             "--report", directory / "report.json"});
  const CommandResult first = run_vorel(run);
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_THAT(first.out, HasSubstr("held out"));
  EXPECT_THAT(first.out, HasSubstr("nothing was captured here"));
  const std::string tuned = read_text(out);
  const std::string report = read_text(directory / "report.json");
  EXPECT_THAT(tuned, HasSubstr("\"noiseIndex_values\": [400, 800, 1600]"));
  EXPECT_EQ(run_vorel({"check", "--strict", out}).status, 0) << tuned;
  EXPECT_THAT(report, HasSubstr("\"held_out\": {"));
  ASSERT_EQ(run_vorel(run).status, 0);
  EXPECT_EQ(read_text(out), tuned);
  EXPECT_EQ(read_text(directory / "report.json"), report);
}

TEST_F(TuneVerb, InterruptedItLeavesAWholeFileOrNone) {
  const std::string scene = directory / "large.png";
  save(scene, gradient_picture(512, 384));
  for (const int milliseconds : {50, 300, 900}) {
    CommandSetup setup;
    setup.meanwhile = [milliseconds](int process) {
      usleep(static_cast<useconds_t>(milliseconds) * 1000);
      kill(process, SIGINT);
    };
    const CommandResult run = run_vorel(
        {"tune", scene, "--clean", "-n", "100,200,400,800,1600,3200,6400", "-o", out, "--force"},
        setup);
    const std::vector<std::string> names = directory.names();
    const bool written = std::count(names.begin(), names.end(), "tuned.json") == 1;
    if (run.status == 0) {
      EXPECT_TRUE(written);
      EXPECT_EQ(run_vorel({"check", "--strict", out}).status, 0);
    } else {
      EXPECT_TRUE(run.signal == SIGINT || run.status == 3) << run.status << run.err;
      EXPECT_FALSE(written) << milliseconds;
    }
    EXPECT_EQ(names.size(), written ? 5u : 4u) << "something is left behind";
    std::filesystem::remove(out);
  }
}

TEST_F(TuneVerb, OtherObjectivesAndKeysOnRequest) {
  const CommandResult run = run_vorel(with({"--clean", "-n", "3200", "-o", out, "--objective",
                                            "ciede2000", "--luma", "--spatial", "on", "-q"}));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(read_text(out), HasSubstr("\"enable\": 1,\n    \"noiseIndex_values\": [3200]"));
}

TEST_F(TuneVerb, TunesTheSpatialPathAlone) {
  const CommandResult run =
      run_vorel(with({"--clean", "-n", "100,6400", "-o", out, "--no-wavelet"}));
  ASSERT_EQ(run.status, 0) << run.err;
  const std::string tuned = read_text(out);
  EXPECT_THAT(tuned, HasSubstr("\"MFD_UV_tuning\": {\n      \"enable\": 0,"));
  EXPECT_EQ(run_vorel({"check", "--strict", out}).status, 0) << tuned;
  // Strong noise asks for more than weak noise.
  std::vector<int> cs_upper(7);
  const size_t table = tuned.find("\"cs_upper_thresh_table\"");
  ASSERT_EQ(
      std::sscanf(tuned.c_str() + table, "\"cs_upper_thresh_table\": [%d, %d, %d, %d, %d, %d, %d]",
                  &cs_upper[0], &cs_upper[1], &cs_upper[2], &cs_upper[3], &cs_upper[4],
                  &cs_upper[5], &cs_upper[6]),
      7)
      << tuned;
  EXPECT_TRUE(std::is_sorted(cs_upper.begin(), cs_upper.end())) << tuned;
  EXPECT_LT(cs_upper.front(), cs_upper.back()) << tuned;
}

TEST_F(TuneVerb, DryRunAndBadUsageWriteNothing) {
  const CommandResult dry = run_vorel(with({"--clean", "-n", "100,200", "--dry-run"}));
  EXPECT_EQ(dry.status, 0) << dry.err;
  EXPECT_THAT(dry.out, HasSubstr("6 captures at 2 noise indices"));
  const struct {
    std::vector<std::string> options;
    int status;
    const char* reason;
  } kCases[] = {
      {{"--clean", "-n", "100"}, 1, "--output is required"},
      {{"-o", out}, 1, "does not say what it is"},
      {{"--clean", "-o", out}, 1, "--clean needs --noise-index"},
      {{"--clean", "--burst", "-n", "100", "-o", out}, 1, "exclude each other"},
      {{"-n", "100", "-o", out}, 1, "needs --truth, --burst or --clean"},
      {{"--clean", "-n", "150", "-o", out}, 1, "multiples of 100"},
      {{"--truth", directory / "none.png", "-n", "1", "-o", out}, 2, "none.png: does not exist"},
      {{"--truth", arguments[1], "-n", "100", "-o", out}, 2, "differs in size"},
      {{"--burst", "-n", "100", "-o", out}, 2, "differs in size"},
      {{"--clean", "-n", "100", "-o", arguments[1]}, 1, "is the input"},
  };
  for (const auto& test : kCases) {
    const CommandResult run = run_vorel(with(test.options));
    EXPECT_EQ(run.status, test.status) << test.reason << ": " << run.err;
    EXPECT_THAT(run.err, HasSubstr(test.reason));
    EXPECT_THAT(directory.names(), testing::SizeIs(3)) << test.reason;
  }
}

}  // namespace
