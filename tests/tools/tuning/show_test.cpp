// What the command tells of a tuning that is in order: values of a frame, curves, schema.
#include <gmock/gmock.h>
#include <jansson.h>

#include "tests/support/source_path.h"
#include "tests/tools/run_command.h"
#include "tests/tools/tuning/broken_cases.h"
#include "tools/tuning/curves.h"
#include "tools/tuning/frame_values.h"
#include "tools/tuning/schema.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class Show : public testing::Test {
 protected:
  Show() {
    // Of the wavelet tables thresholds 4 keep a single value; the rest of the file is whole.
    std::string text = read_cases().second.front().text;
    const std::string table = "[23.0, 32.0, 46.0, 180.0]";
    text.replace(text.find(table), table.size(), "[23.0]");
    write_text(directory / "vorel_WT1200.json", text);
  }

  std::string show(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"show", directory.path(), "--sensor", "120"});
    const CommandResult run = run_vorel(arguments);
    EXPECT_EQ(run.status, 0) << run.err;
    return run.out;
  }

  TestDirectory directory;
};

TEST_F(Show, TellsTheValuesOfAFrameAndWhereTheyComeFrom) {
  const std::string between = show({"-n", "1000"});
  EXPECT_THAT(between, HasSubstr("vorel_WT1200.json, dated 2026-11-21"));
  EXPECT_THAT(between, HasSubstr("50.0 % of the way from level 400 to level 1600"));
  EXPECT_THAT(between, HasSubstr(" 26.0  file: 7.0 at 400, 45.0 at 1600"));
  EXPECT_THAT(between, HasSubstr(" 60.0  built in: 60.0 at 400, 60.0 at 1600"));
  EXPECT_THAT(show({"-n", "250"}), HasSubstr(" 41.5  file: 23.0 at 100, built in: 60.0 at 400"));
  EXPECT_THAT(show({"-n", "90"}), HasSubstr("below level 100; the frame is left as it is"));
  const std::string levels = show({});
  EXPECT_THAT(levels, HasSubstr(" 23.0   60.0*   60.0*   60.0*"));

  json_t* report = json_loads(show({"-n", "1000", "--json"}).c_str(), 0, nullptr);
  ASSERT_NE(report, nullptr);
  EXPECT_TRUE(json_is_true(json_object_get(report, "processed")));
  size_t index = 0;
  json_t* value = nullptr;
  json_array_foreach(json_object_get(report, "values"), index, value) {
    const std::string key = json_string_value(json_object_get(value, "key"));
    if (key != "interleaving_tuning.cs_upper_thresh_table") continue;
    EXPECT_EQ(json_integer_value(json_object_get(value, "value")), 56);
    EXPECT_EQ(json_array_size(json_object_get(value, "from")), 2u);
  }
  json_decref(report);
}

TEST_F(Show, NamesLevelsThatNoFrameReaches) {
  std::string text = read_text(directory / "vorel_WT1200.json");
  const std::string gate = "\"enableNoiseIndex\": 100";
  text.replace(text.find(gate), gate.size(), "\"enableNoiseIndex\": 1600");
  write_text(directory / "vorel_WT1200.json", text);
  EXPECT_THAT(show({}), HasSubstr("out of reach levels 100, 400: no frame uses them"));
}

TEST_F(Show, HasNoNumberForInfinity) {
  for (const BrokenCase& one : read_cases().second) {
    if (one.name == "infinite_threshold") write_text(directory / "vorel_WT1200.json", one.text);
  }
  json_t* report = json_loads(show({"-n", "6400", "--json"}).c_str(), 0, nullptr);
  EXPECT_GT(json_array_size(json_object_get(report, "values")), 20u);
  json_decref(report);
}

TEST_F(Show, DrawsEveryTableOfAnyTuning) {
  show({"--plot", directory / "curves.svg"});
  const std::string drawn = read_text(directory / "curves.svg");
  for (const tool::KnownKey& known : tool::known_keys()) {
    if (known.per_level && !known.for_command) {
      EXPECT_THAT(drawn, HasSubstr("<title>" + known.path()));
    }
  }
  for (const BrokenCase& one : read_cases().second) {
    const std::string svg = tool::curves_svg(tool::LoadedTuning(one.text), "<&>");
    EXPECT_THAT(svg, testing::EndsWith("</svg>\n")) << one.name;
    EXPECT_THAT(svg, Not(testing::AnyOf(HasSubstr("nan"), HasSubstr("inf"), HasSubstr("<&>"))))
        << one.name;
  }
}

TEST(TuningSchema, IsTheOneThatIsCheckedIn) {
  const std::string path = source_path("tuning/vorel_tuning.schema.json");
  EXPECT_EQ(run_vorel({"schema"}).out, tool::tuning_schema());
  EXPECT_EQ(read_text(path), tool::tuning_schema()) << "vorel schema > " << path;
}

}  // namespace
