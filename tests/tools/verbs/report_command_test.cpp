// Verbs that tell about pictures and tunings.
#include <gmock/gmock.h>

#include "tests/support/source_path.h"
#include "tests/tools/command_fixture.h"
#include "tools/pictures/picture_io.h"

namespace {

using testing::HasSubstr;

TEST_F(Command, NoiseIsReproducibleAndNamesItsIndex) {
  const CommandResult run = run_vorel({"noise", picture, "-o", out, "--gain", "8", "--seed", "5"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.out, HasSubstr("noise index  800"));
  const std::string first = read_text(out);
  run_vorel({"noise", picture, "-o", out, "--gain", "8", "--seed", "5"});
  EXPECT_EQ(read_text(out), first);
  run_vorel({"noise", picture, "-o", out, "--gain", "8", "--seed", "6"});
  EXPECT_NE(read_text(out), first);
}

TEST_F(Command, CompareSpeaksToPeopleAndPrograms) {
  ASSERT_EQ(run_vorel({"noise", picture, "-o", out, "-g", "4"}).status, 0);
  const CommandResult text = run_vorel({"compare", out, picture, "--truth", picture});
  EXPECT_EQ(text.status, 0);
  EXPECT_THAT(text.out, testing::ContainsRegex("PSNR U, dB .*equal \\(better\\)"));
  const CommandResult json = run_vorel({"compare", picture, out, "--json"});
  EXPECT_EQ(json.status, 0);
  EXPECT_THAT(json.out, testing::StartsWith("{"));
  EXPECT_THAT(json.out, HasSubstr("\"ciede2000\": "));
  const CommandResult side = run_vorel({"compare", picture, out, out, "-o", directory / "side.jpg",
                                        "--crop", "8,8,20,10", "--zoom", "3"});
  EXPECT_EQ(side.status, 0) << side.err;
  EXPECT_EQ(tool::read_picture(directory / "side.jpg", {}).size(), (tool::Size{3 * 60 + 16, 30}));
}

TEST_F(Command, SweepDenoisesOnceForEachValue) {
  const std::vector<std::string> same = {"-n", "1600", "--truth", picture};
  std::vector<std::string> denoise = {"denoise", raw, "-o", out, "--no-wavelet"};
  denoise.insert(denoise.end(), same.begin(), same.end());
  const CommandResult expected = run_vorel(denoise);
  std::vector<std::string> sweep = {"sweep",    raw,
                                    "-k",       "MFD_UV_tuning.enable",
                                    "--values", "0",
                                    "--csv",    directory / "figures.csv",
                                    "-o",       directory / "sheet.png",
                                    "--crop",   "2,4,6,8",
                                    "--zoom",   "2",
                                    "--page",   directory / "page.html"};
  sweep.insert(sweep.end(), same.begin(), same.end());
  const CommandResult run = run_vorel(sweep);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("1, as tuned"));
  const std::string csv = read_text(directory / "figures.csv");
  const std::string row = csv.substr(csv.find("\n0,") + 3);
  // The table of denoise: the figures of before and of after.
  for (const char* plane : {"Y", "U", "V"}) {
    const size_t line = expected.out.find(std::string("PSNR ") + plane);
    double before = 0;
    double after = 0;
    ASSERT_EQ(std::sscanf(expected.out.c_str() + line + 10, "%lf %lf", &before, &after), 2);
    double value[3] = {};
    ASSERT_EQ(std::sscanf(row.c_str(), "%lf,%lf,%lf", value, value + 1, value + 2), 3);
    EXPECT_EQ(value[*plane == 'Y' ? 0 : *plane == 'U' ? 1 : 2], after) << plane;
  }
  const tool::Size sheet = tool::read_picture(directory / "sheet.png", {}).size();
  EXPECT_GE(sheet.height, 2 * 8 * 2);
  EXPECT_THAT(read_text(directory / "page.html"), testing::EndsWith("</html>\n"));
}

TEST_F(Command, CompareWalksThroughVideos) {
  const auto video = [&](const std::string& name, int frames) {
    const auto output = tool::PictureOutput::open(directory / name);
    for (int i = 0; i < frames; ++i) output->write({patterned_frame(16, 8), {}});
    output->finish();
    return directory / name;
  };
  const std::string two = video("two.y4m", 2);
  const CommandResult same = run_vorel({"compare", two, video("also.y4m", 2)});
  EXPECT_EQ(same.status, 0);
  EXPECT_THAT(same.out, HasSubstr("2 frames"));
  EXPECT_EQ(run_vorel({"compare", two, video("three.y4m", 3)}).status, 2);
  EXPECT_EQ(run_vorel({"compare", directory / "three.y4m", two}).status, 2);
}

TEST_F(Command, MeasureSpeaksToPeopleAndPrograms) {
  const std::string large = directory / "large.png";
  const std::string noisy = directory / "noisy.jpg";
  save(large, gradient_picture(320, 256));
  ASSERT_EQ(run_vorel({"noise", large, "-o", noisy, "-g", "16"}).status, 0);
  const CommandResult text = run_vorel({"measure", noisy, picture, "--patch", "8,8,32,33"});
  EXPECT_EQ(text.status, 0) << text.err;
  EXPECT_THAT(text.out, testing::ContainsRegex("noisy.jpg \\(320 x 256\\)\n +noise"));
  EXPECT_THAT(text.out, testing::ContainsRegex("noise index +[1-9][0-9]+( at [0-9]+ %)?\n"));
  EXPECT_THAT(text.out, HasSubstr("too little")) << "the second picture has no 64 x 64 blocks";
  EXPECT_THAT(text.out, testing::ContainsRegex("below 1/16\n +Y +[0-9.]+ +[0-9.]+ +[0-9.]+ %"));
  const CommandResult json = run_vorel({"measure", noisy, picture, "--json"});
  EXPECT_EQ(json.status, 0);
  EXPECT_THAT(json.out, HasSubstr("\"noise_index\": null"));
  expect_refused({"measure", picture, "--patch", "40,8,32,8"}, 1, "64 x 48");
  expect_refused({"measure", directory / "none.png"}, 2, "No such file");
}

TEST_F(Command, CheckReportsFindingsPerFile) {
  const std::string good = source_path("tuning/samples/vorel_NOTHING.json");
  const CommandResult clean = run_vorel({"check", good});
  EXPECT_EQ(clean.status, 0);
  EXPECT_EQ(clean.out, good + ": ok\n");
  write_text(directory / "odd.json", R"([{"CNRTuningSetfile": {"Date": "d"}, "enabel": 1}])");
  const CommandResult odd = run_vorel({"check", directory / "odd.json"});
  EXPECT_EQ(odd.status, 0) << "a warning alone is no failure";
  EXPECT_THAT(odd.out, HasSubstr("odd.json:1:38: warning: enabel"));
  EXPECT_EQ(run_vorel({"check", "--strict", directory / "odd.json"}).status, 2);
  write_text(directory / "bad.json", "[{]");
  const CommandResult bad =
      run_vorel({"check", directory / "none.json", directory / "bad.json", good});
  EXPECT_EQ(bad.status, 2);
  EXPECT_THAT(bad.out, HasSubstr("none.json: error: No such file"));
  EXPECT_THAT(bad.out, HasSubstr("bad.json:1:3: error: "));
  EXPECT_THAT(bad.out, HasSubstr(good + ": ok")) << "the others are checked all the same";
  EXPECT_THAT(bad.out, HasSubstr("2 errors, 0 warnings"));
}

}  // namespace
