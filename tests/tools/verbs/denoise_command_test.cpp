// What the command asks of the library, and tells about it.
#include <gmock/gmock.h>
#include <jansson.h>

#include <map>
#include <set>

#include "tests/tools/command_fixture.h"
#include "tools/pictures/picture_io.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST_F(Command, DenoiseRunsTheRealLibraryAndSaysWhatItDid) {
  ASSERT_EQ(run_vorel({"noise", picture, "-o", directory / "noisy.png", "-g", "32"}).status, 0);
  const CommandResult run = run_vorel({"denoise", directory / "noisy.png", "-o", out, "--truth",
                                       picture, "--compare", directory / "side.png", "-n", "3200"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.err, IsEmpty());
  EXPECT_THAT(run.out, HasSubstr("sample tuning"));
  EXPECT_THAT(run.out, HasSubstr("noise index  3200\n"));
  EXPECT_THAT(run.out, testing::ContainsRegex("changed +chroma [0-9.]+ % of samples"));
  EXPECT_THAT(run.out, testing::ContainsRegex("CIEDE2000, mean .* better"));
  EXPECT_EQ(tool::read_picture(directory / "side.png", {}).size(), (tool::Size{3 * 64 + 16, 48}));
  EXPECT_THAT(directory.names(),
              ElementsAre("a.png", "a_64x48.nv21", "noisy.png", "out.png", "side.png"));
}

TEST_F(Command, FramesBelowTheTuningsThresholdStayAsTheyAre) {
  const std::string result = directory / "out_64x48.nv21";
  const CommandResult run = run_vorel({"denoise", raw, "-o", result, "-n", "0"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.out, HasSubstr("nothing: noise index 0 is below the tuning's enableNoiseIndex"));
  EXPECT_EQ(read_text(result), read_text(raw));
  EXPECT_EQ(run_vorel({"denoise", raw, "-o", result, "-n", "40000", "--tuning", "none", "-q"}).out,
            "");
}

TEST_F(Command, PathSwitchesReachTheLibrary) {
  // Built-in values for every frame: both paths are on.
  write_text(directory / "t.json",
             R"([{"CNRTuningSetfile": {"Date": "d"}, "enableNoiseIndex": 0}])");
  const std::string noisy = directory / "noisy_64x48.nv21";
  ASSERT_EQ(run_vorel({"noise", picture, "-o", noisy, "--gain", "2"}).status, 0);
  const auto denoised = [&](const std::vector<std::string>& switches) {
    std::vector<std::string> arguments{
        "denoise", noisy, "-o", directory / "x_64x48.nv21", "--tuning", directory / "t.json"};
    arguments.insert(arguments.end(), switches.begin(), switches.end());
    EXPECT_EQ(run_vorel(arguments).status, 0);
    const std::string bytes = read_text(directory / "x_64x48.nv21");
    return digest({bytes.begin(), bytes.end()});
  };
  const std::string before = read_text(noisy);
  const uint64_t both = denoised({});
  const uint64_t wavelet = denoised({"--no-spatial"});
  const uint64_t spatial = denoised({"--no-wavelet"});
  EXPECT_NE(both, wavelet);
  EXPECT_NE(both, spatial);
  EXPECT_NE(wavelet, spatial);
  EXPECT_EQ(denoised({"--no-spatial", "--no-wavelet"}), digest({before.begin(), before.end()}));
  EXPECT_EQ(denoised({"--format", "nm21"}), both);
}

TEST_F(Command, UnknownSensorIsAWarningAndTheBuiltInValuesServe) {
  const CommandResult run =
      run_vorel({"denoise", raw, "-o", directory / "x.nv21", "--sensor", "99", "-n", "50000"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.err, HasSubstr("warning: sensor 99 is not known"));
  EXPECT_THAT(run.err, HasSubstr("120, 124"));
  EXPECT_THAT(run.out, HasSubstr("built-in values"));
}

TEST_F(Command, FindingsInTheTuningAreShownBeforeTheRun) {
  write_text(directory / "t.json",
             R"([{"CNRTuningSetfile": {"Date": "d"}, "enabel": 1, "enableNoiseIndex": 0}])");
  const CommandResult run =
      run_vorel({"denoise", raw, "-o", directory / "x.nv21", "--tuning", directory / "t.json"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.err, HasSubstr("vorel: warning: " + (directory / "t.json") + ":1:38: enabel"));
  EXPECT_THAT(run.out, HasSubstr("dated d"));
}

TEST_F(Command, FolderWithoutTheSensorsTuningIsToldAndTheBuiltInValuesServe) {
  const CommandResult run = run_vorel({"denoise", raw, "-o", directory / "x.nv21", "--tuning",
                                       directory.path(), "--sensor", "120"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.err, HasSubstr("warning: " + directory.path() + " has no vorel_WT1200.json"));
  EXPECT_THAT(run.out, HasSubstr("built-in values"));
}

TEST_F(Command, LogLevelShowsTheLibrarysLines) {
  const std::vector<std::string> arguments{"denoise", raw, "-o", directory / "x.nv21", "--log"};
  std::vector<std::string> debug = arguments;
  debug.push_back("debug");
  const CommandResult run = run_vorel(debug);
  EXPECT_THAT(run.err, HasSubstr("vorel: vorel_denoise_frame - X\n"));
  EXPECT_THAT(run.out, Not(HasSubstr("vorel_denoise")));
}

TEST_F(Command, DumpsThatCannotBeWrittenAreAWarning) {
  // The four half-precision planes with their border exceed the limit.
  const std::string dumps = directory / "dumps";
  CommandSetup setup;
  setup.file_limit = 8000;
  const CommandResult run = run_vorel(
      {"denoise", raw, "-o", directory / "out_64x48.nv21", "-n", "1600", "--dump", dumps}, setup);
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.err, HasSubstr("warning: 4 of a frame's 52 dumps could not be written to " +
                                 dumps + "/0_"));
  EXPECT_THAT(run.err, HasSubstr(": File too large\n"));
}

// Read as a viewer reads it: slices of a thread are nested, and stages, jobs and counters are
// there.
TEST_F(Command, TraceShowsStagesAndJobs) {
  const std::string trace = directory / "trace.json";
  const CommandResult run = run_vorel({"denoise", raw, "-o", out, "-n", "800", "--trace", trace});
  ASSERT_EQ(run.status, 0) << run.err;
  json_t* root = json_loads(read_text(trace).c_str(), 0, nullptr);
  ASSERT_NE(root, nullptr);
  std::map<std::string, int> counts;
  std::map<json_int_t, std::vector<double>> open;
  std::set<std::string> threads;
  size_t index = 0;
  json_t* event = nullptr;
  json_array_foreach(json_object_get(root, "traceEvents"), index, event) {
    const std::string phase = json_string_value(json_object_get(event, "ph"));
    const char* name = json_string_value(json_object_get(event, "name"));
    const double time = json_number_value(json_object_get(event, "ts"));
    std::vector<double>& slices = open[json_integer_value(json_object_get(event, "tid"))];
    const json_t* arguments = json_object_get(event, "args");
    if (phase == "M") threads.insert(json_string_value(json_object_get(arguments, "name")));
    if (phase == "B") slices.push_back(time);
    if (phase == "E") {
      ASSERT_FALSE(slices.empty());
      EXPECT_LE(slices.back(), time);
      slices.pop_back();
    }
    if (phase == "C" && std::string(name) == "vorel noise index") {
      EXPECT_EQ(json_integer_value(json_object_get(arguments, "value")), 800);
    }
    if (phase != "E") ++counts[name];
  }
  json_decref(root);
  for (const auto& [thread, slices] : open) EXPECT_THAT(slices, IsEmpty()) << thread;
  for (const char* stage :
       {"vorel_deinterleave", "vorel_box_filter", "vorel_yuv", "vorel_interleave", "MFD_UV",
        "vorel noise index", "vorel noise level"}) {
    EXPECT_EQ(counts[stage], 1) << stage;
  }
  EXPECT_GT(counts["box filter strip"], 1);
  EXPECT_THAT(threads, testing::Contains(testing::StartsWith("vorel-0-")));
}

}  // namespace
