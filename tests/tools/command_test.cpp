// Exit statuses, messages, files and streams of the command.
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

#include "tests/support/source_path.h"
#include "tests/tools/command_fixture.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/picture_io.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

TEST_F(Command, HelpAndVersionAreEverywhere) {
  const CommandResult main = run_vorel({"--help"});
  EXPECT_EQ(main.status, 0);
  EXPECT_THAT(main.err, IsEmpty());
  for (const char* verb : {"denoise", "measure", "noise", "compare", "sweep", "tune", "check",
                           "show", "schema", "dump"}) {
    EXPECT_THAT(main.out, HasSubstr(verb));
    const CommandResult help = run_vorel({verb, "--help"});
    EXPECT_EQ(help.status, 0) << verb;
    EXPECT_THAT(help.out, HasSubstr("Usage: vorel " + std::string(verb)));
    EXPECT_THAT(help.out, HasSubstr("Example"));
    EXPECT_THAT(help.out, HasSubstr("  vorel " + std::string(verb))) << "an example line";
  }
  const CommandResult version = run_vorel({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_THAT(version.out, testing::MatchesRegex("vorel [0-9.]+ \\(commit [^ ]+, [^ ]+\\)\n"));
}

TEST_F(Command, BadUsageIsStatus1) {
  const std::string in = picture;
  expect_refused({}, 1, "a verb is needed");
  expect_refused({"remove", in}, 1, "'remove' is no verb");
  expect_refused({"denois", in}, 1, "did you mean denoise?");
  expect_refused({"denoise"}, 1, "INPUT is required");
  expect_refused({"denoise", in}, 1, "--output is required");
  expect_refused({"denoise", in, "-o", out, "--strength", "5"}, 1, "--strength");
  expect_refused({"denoise", in, "-o", out, "--nosie-index=5"}, 1, "did you mean --noise-index?");
  for (const char* bad : {"abc", "-5", "1.5", "99999999999", "", "12x"}) {
    expect_refused({"denoise", in, "-o", out, "--noise-index", bad}, 1, "no whole number");
  }
  expect_refused({"denoise", in, "-o", out, "--sensor", "-1"}, 1, "no whole number");
  for (const char* bad : {"0x0", "70000x70000", "64", "64x", "x"}) {
    expect_refused({"denoise", raw, "-o", out, "--size", bad}, 1, "no size such as 1920x1080");
  }
  expect_refused({"denoise", in, "-o", out, "--format", "yuyv"}, 1, "--format");
  expect_refused({"denoise", in, "-o", directory / "out.tif"}, 1, "unknown extension");
  expect_refused({"denoise", in, "-o", in}, 1, "is the input");
  expect_refused({"denoise", directory.path(), "-o", out}, 1, "several pictures need a folder");
  expect_refused({"denoise", in, "-o", out, "--compare", out}, 1, "two results");
  expect_refused({"denoise", in, "-o", out, "--matrix", "709"}, 1, "--matrix 709");
  expect_refused({"noise", in, "-o", out, "--gain", "0"}, 1, "no whole number from 1 to 1024");
  expect_refused({"noise", in, "-o", out, "--gain", "1025"}, 1, "no whole number");
  expect_refused({"compare", in}, 1, "two pictures");
  expect_refused({"compare", in, in, "--crop", "1,2,3"}, 1, "no rectangle");
  expect_refused({"compare", in, in, "-o", out, "--crop", "60,0,5,5"}, 1, "64 x 48");
  expect_refused({"compare", in, in, "--page", "-"}, 1, "a page needs a file");
  expect_refused({"sweep", in, "--key", "enabel", "--values", "1"}, 1, "did you mean enable?");
  expect_refused({"sweep", in, "--key", "enable", "--values", "0,2"}, 1, "outside 0 to 1");
  expect_refused({"sweep", in, "--key", "enable", "--values", "0", "--page", in}, 1,
                 "is the input");
  expect_refused({"check"}, 1, "TUNING is required");
}

TEST_F(Command, BadInputIsStatus2) {
  expect_refused({"denoise", directory / "none.png", "-o", out}, 2, "none.png: No such file");
  expect_refused({"denoise", directory / "a.txt", "-o", out}, 2, "unknown extension");
  expect_refused({"denoise", directory / "\x1b[2J\xc2\x9b\xff\n\u00fc.png", "-o", out}, 2,
                 "/\\x1b[2J\\xc2\\x9b\\xff\\n\u00fc.png: No such file");
  expect_refused({"denoise", directory / "a.heic", "-o", out}, 2, "heif-convert");
  write_text(directory / "b.jpg", std::string("RIFF\1\2\3\4WEBPVP8 ", 16));
  expect_refused({"denoise", directory / "b.jpg", "-o", out}, 2, "dwebp " + (directory / "b.jpg"));
  write_text(directory / "cut.png", read_text(picture).substr(0, 100));
  expect_refused({"denoise", directory / "cut.png", "-o", out}, 2, "cut short");
  expect_refused({"denoise", raw, "-o", out, "--size", "64x50"}, 2, "64 x 50 has 4800");
  write_text(directory / "plain.raw", "x");
  expect_refused({"denoise", directory / "plain.raw", "-o", out}, 2, "give --size");
  expect_refused({"denoise", picture, "-o", out, "--tuning", directory / "none.json"}, 2,
                 "none.json: no such tuning");
  write_text(directory / "broken.json", "[{\n\"enable\": 1,\n}]");
  expect_refused({"denoise", picture, "-o", out, "--tuning", directory / "broken.json"}, 2,
                 "broken.json:2:12: a comma stands here");
  save(directory / "small.png", gradient_picture(8, 8));
  expect_refused({"compare", picture, directory / "small.png"}, 2, "is 8 x 8");
}

TEST_F(Command, OutputThatCannotBeWrittenIsStatus3) {
  expect_refused({"denoise", picture, "-o", directory / "none/out.png"}, 3, "No such file");
  std::filesystem::create_directory(directory / "folder.png");
  expect_refused({"denoise", picture, "-o", directory / "folder.png"}, 3, "Is a directory");
  std::filesystem::create_symlink("/dev/full", directory / "full.nv21");
  for (const char* verb : {"denoise", "noise"}) {
    expect_refused({verb, raw, "-o", directory / "full.nv21"}, 3, "No space left on device");
  }
}

TEST_F(Command, WriteThatFailsHalfWayLeavesNothing) {
  CommandSetup setup;
  setup.file_limit = 4096;
  write_text(directory / "out_64x48.nv21", "old");
  const std::vector<std::string> before = directory.names();
  const CommandResult run = run_vorel({"denoise", raw, "-o", directory / "out_64x48.nv21"}, setup);
  EXPECT_EQ(run.status, 3) << run.err;
  EXPECT_THAT(run.err, HasSubstr("File too large"));
  EXPECT_EQ(directory.names(), before);
  EXPECT_EQ(read_text(directory / "out_64x48.nv21"), "old");
}

// A file would get the number of the closed stream, and the library's log lines with it.
TEST_F(Command, ClosedStreamsDoNotPrintIntoFiles) {
  if (command_path().empty()) GTEST_SKIP() << "the shell starts no emulator";
  const std::string trace = directory / "trace.json";
  const std::string line = command_path() + " denoise " + raw + " -n 3200 --log info -o " +
                           (directory / "out_64x48.nv21") + " --trace " + trace;
  EXPECT_EQ(WEXITSTATUS(std::system((line + " <&- >&- 2>&-").c_str())), 3) << "no summary";
  EXPECT_EQ(WEXITSTATUS(std::system((line + " --force >/dev/null 2>&-").c_str())), 0);
  EXPECT_THAT(read_text(trace), testing::StartsWith("{\"displayTimeUnit\""));
}

TEST_F(Command, InputIsReplacedOnlyWithForce) {
  const std::string before = read_text(raw);
  EXPECT_EQ(run_vorel({"denoise", raw, "-o", raw, "-n", "6400"}).status, 1);
  EXPECT_EQ(read_text(raw), before);
  EXPECT_EQ(run_vorel({"denoise", raw, "-o", raw, "-n", "6400", "--force"}).status, 0);
  EXPECT_NE(read_text(raw), before);
  EXPECT_EQ(read_text(raw).size(), before.size());
}

TEST_F(Command, CompletionKnowsVerbsOptionsAndTheirValues) {
  if (command_path().empty()) GTEST_SKIP() << "the shell cannot start an emulated program";
  const auto complete = [&](const std::string& words) {
    write_text(directory / "script",
               "source '" + source_path("tools/completion/vorel.bash") + "'\nCOMP_WORDS=(vorel " +
                   words + ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_vorel '" + command_path() +
                   "'\necho \"${COMPREPLY[*]}\" > '" + (directory / "words") + "'\n");
    EXPECT_EQ(std::system(("bash '" + (directory / "script") + "'").c_str()), 0);
    return read_text(directory / "words");
  };
  EXPECT_EQ(complete("den"), "denoise\n");
  EXPECT_EQ(complete("denoise --no-s"), "--no-spatial\n");
  EXPECT_EQ(complete("denoise --layout y"), "yv12\n");
  EXPECT_EQ(complete("denoise -n e"), "exif\n");
  EXPECT_EQ(complete("denoise pict"), "\n") << "file names are readline's";
}

TEST_F(Command, ManyPicturesGoThroughAndBadOnesDoNotStopThem) {
  std::filesystem::create_directory(directory / "in");
  save(directory / "in/one.png", gradient_picture(32, 32));
  save(directory / "in/two.jpg", tool::rgb_to_nv21(gradient_picture(40, 24), {}));
  write_text(directory / "in/three.png", "no picture");
  write_text(directory / "in/notes.txt", "not asked for");
  const std::string in = directory / "in";
  const std::string results = directory / "new/results/";
  const CommandResult run = run_vorel({"denoise", in, "-o", results, "-j", "3", "-n", "800"});
  EXPECT_EQ(run.status, 2) << run.err;
  EXPECT_THAT(run.err, HasSubstr("three.png: is neither"));
  EXPECT_THAT(run.out, HasSubstr("one.png -> " + results + "one.png: noise index 800"));
  EXPECT_THAT(run.out, HasSubstr("2 pictures done, 1 of 3 not\n"));
  EXPECT_EQ(tool::read_picture(results + "two.jpg", {}).size(), (tool::Size{40, 24}));

  // Results that exist are kept; what is missing is made.
  write_text(results + "one.png", "mine");
  std::filesystem::remove(results + "two.jpg");
  const std::vector<std::string> again{"denoise", in + "/one.png", in + "/two.jpg", "-o", results};
  const CommandResult second = run_vorel(again);
  EXPECT_EQ(second.status, 1);
  EXPECT_THAT(second.err, HasSubstr("one.png: exists and is kept; --force"));
  EXPECT_EQ(read_text(results + "one.png"), "mine");
  EXPECT_TRUE(std::filesystem::exists(results + "two.jpg"));

  const CommandResult json = run_vorel({"denoise", in + "/one.png", in + "/three.png", "-o",
                                        directory / "{name}_{ext}.nv12", "--json", "-n", "50"});
  EXPECT_EQ(json.status, 2);
  EXPECT_THAT(json.out, HasSubstr("\"noise_index\": 50"));
  EXPECT_THAT(json.out, HasSubstr("\"error\": \"" + in + "/three.png: is neither"));
  EXPECT_TRUE(std::filesystem::exists(directory / "one_png.nv12"));
  expect_refused({"denoise", in + "/one.png", in + "/two.jpg", "-o", directory / "{x}.png"}, 1,
                 "{x} is unknown");
  expect_refused({"denoise", in + "/one.png", in + "/two.jpg", "-o", directory / "{name"}, 1,
                 "{name is unknown");
  expect_refused({"denoise", in + "/one.png", in + "/../in/one.png", "-o", results}, 1,
                 "would be the result of");
}

TEST_F(Command, StreamsAreToldByTheirContents) {
  save(directory / "a.jpg", tool::rgb_to_nv21(gradient_picture(64, 48), {}));
  save(directory / "a.y4m", patterned_frame(64, 48));
  for (const std::string& file : {picture, directory / "a.jpg", directory / "a.y4m", raw}) {
    CommandSetup setup;
    setup.standard_input = file;
    const std::vector<std::string> arguments{"denoise", "-", "-n", "6400", "--size", "64x48", "-o"};
    std::vector<std::string> piped = arguments;
    piped.push_back("-");
    const CommandResult stream = run_vorel(piped, setup);
    ASSERT_EQ(stream.status, 0) << stream.err;
    EXPECT_THAT(stream.err, HasSubstr("changed")) << "the summary goes to standard error";
    const std::string result = directory / ("result" + file.substr(file.rfind('.')));
    ASSERT_EQ(run_vorel({"denoise", file, "-n", "6400", "-o", result}).status, 0);
    EXPECT_EQ(digest({stream.out.begin(), stream.out.end()}), digest([&] {
                const std::string bytes = read_text(result);
                return std::vector<uint8_t>(bytes.begin(), bytes.end());
              }()))
        << file;
  }
}

TEST_F(Command, GoodFramesOfACutVideoAreKept) {
  const std::string video = directory / "cut.y4m";
  const auto output = tool::PictureOutput::open(video);
  for (int i = 0; i < 3; ++i) output->write({patterned_frame(64, 48), {}});
  output->finish();
  const std::string whole = read_text(video);
  write_text(video, whole.substr(0, whole.size() - 10));
  const CommandResult run = run_vorel({"denoise", video, "-o", directory / "o.y4m", "-n", "0"});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.err, HasSubstr("frame 3 is cut short; what came before it is in"));
  const std::string kept = read_text(directory / "o.y4m");
  EXPECT_EQ(kept, whole.substr(0, kept.size())) << "untouched frames, byte for byte";
  EXPECT_GT(kept.size(), whole.size() / 2);

  const CommandResult noise = run_vorel({"noise", video, "-o", directory / "n.y4m"});
  EXPECT_EQ(noise.status, 2);
  EXPECT_THAT(noise.out, HasSubstr("64 x 48, 2 frames"));
  EXPECT_THAT(noise.err, HasSubstr("frame 3 is cut short; what came before it is in"));
  EXPECT_EQ(read_text(directory / "n.y4m").size(), kept.size());
}

TEST_F(Command, StandardOutputHoldsNothingButThePicture) {
  ASSERT_EQ(run_vorel({"noise", picture, "-o", out}).status, 0);
  const CommandResult noise = run_vorel({"noise", picture, "-o", "-"});
  EXPECT_EQ(noise.out, read_text(out));
  EXPECT_THAT(noise.err, HasSubstr("gain"));
  expect_refused({"compare", picture, picture, "-o", "-"}, 1, "figures go to standard output");
}

}  // namespace
