// One folder per case below data/: input.json goes through the loader. expected.txt holds what came
// of it: log lines with their level, and the values that differ from the built-in ones. A new case
// is a new folder; VOREL_WRITE_EXPECTED=1 writes its expected.txt.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/log_capture.h"
#include "tests/support/source_path.h"
#include "tests/support/temp_dir.h"
#include "tests/tuning/expected_file.h"
#include "tests/tuning/tuning_fields.h"
#include "tuning/sensors.h"
#include "tuning/tuning.h"

namespace {

namespace fs = std::filesystem;

void replace(std::string& text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  if (at != text.npos) text.replace(at, from.size(), to);
}

// Lines of the load, free of what differs between machines.
std::string load_lines(const std::string& input, cnr_tuning* tuning) {
  const TempDir directory;
  const ScopedEnv firmware("VOREL_FIRMWARE_DIR", directory.path().c_str());
  directory.write("vorel_CASE.json", input);
  const LogCapture log;
  load_tuning_file("CASE", tuning);
  std::string lines;
  for (const LogLine& line : log.lines()) {
    EXPECT_EQ(line.tag, "VOREL");
    std::string text = line.text;
    replace(text, directory.path().string(), "<dir>");
    replace(text, "fileSize=" + std::to_string(input.size()), "fileSize=<size>");
    const char level = line.priority == 6 ? 'E' : line.priority == 4 ? 'I' : 'D';
    lines += std::string(1, level) + " " + text + "\n";
  }
  return lines;
}

std::string outcome(const std::string& input) {
  cnr_tuning defaults{};
  set_default_tuning(&defaults);
  cnr_tuning tuning = defaults;
  std::string text = "== log\n" + load_lines(input, &tuning) + "== changed\n";
  for (const std::string& line : changed_fields(defaults, tuning)) text += line + "\n";
  return text;
}

std::vector<fs::path> folders() {
  std::vector<fs::path> found;
  for (const auto& entry : fs::directory_iterator(source_path("tests/tuning/data"))) {
    if (entry.path().filename() != "built_in") found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

class TuningCase : public testing::TestWithParam<fs::path> {};

TEST_P(TuningCase, ComesOutAsExpected) {
  ASSERT_TRUE(fs::exists(GetParam() / "input.json"));
  const std::string actual = outcome(read_file(GetParam() / "input.json"));
  const fs::path expected = GetParam() / "expected.txt";
  expect_file(actual, expected);
}

INSTANTIATE_TEST_SUITE_P(Data, TuningCase, testing::ValuesIn(folders()),
                         [](const testing::TestParamInfo<fs::path>& info) {
                           return info.param.filename().string();
                         });

TEST(TuningSamples, BelongToKnownSensors) {
  int samples = 0;
  for (const auto& entry : fs::directory_iterator(source_path("tuning/samples"))) {
    SCOPED_TRACE(entry.path());
    if (entry.path().extension() != ".json") continue;
    ++samples;
    // The name must be a known sensor's, or nobody would ever load it.
    const std::string name = entry.path().stem().string();
    ASSERT_EQ(name.rfind("vorel_", 0), 0u);
    const auto sensors = known_sensors();
    const auto named = std::find_if(sensors.begin(), sensors.end(), [&](const sensor& row) {
      return name == std::string("vorel_") + row.model;
    });
    ASSERT_NE(named, sensors.end());

    const ScopedEnv firmware("VOREL_FIRMWARE_DIR", entry.path().parent_path().c_str());
    const LogCapture log;
    cnr_tuning tuning{};
    set_default_tuning(&tuning);
    load_tuning_file(named->model, &tuning);
    EXPECT_EQ(log.errors(), 0);
    EXPECT_EQ(tuning.NILevelNum, 12);
    EXPECT_EQ(tuning.enable, 1);
    EXPECT_LT(tuning.enableNoiseIndex, 40960);
  }
  EXPECT_GE(samples, 2);
}

}  // namespace
