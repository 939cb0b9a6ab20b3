#include "tools/files/atomic_file.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/tools/run_command.h"
#include "tests/tools/test_pictures.h"
#include "tools/files/failure.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using tool::AtomicFile;

TEST(AtomicFileTest, AppearsOnlyWhenComplete) {
  const TestDirectory directory;
  {
    AtomicFile file(directory / "a");
    file.write("new");
    EXPECT_FALSE(std::filesystem::exists(directory / "a"));
    file.commit();
  }
  EXPECT_EQ(read_text(directory / "a"), "new");
  EXPECT_THAT(directory.names(), ElementsAre("a"));
}

TEST(AtomicFileTest, WithoutCommitNothingIsLeftAndTheOldFileStays) {
  const TestDirectory directory;
  write_text(directory / "a", "old");
  {
    AtomicFile file(directory / "a");
    AtomicFile other(directory / "b");
    file.write("new");
  }
  EXPECT_EQ(read_text(directory / "a"), "old");
  EXPECT_THAT(directory.names(), ElementsAre("a"));
}

TEST(AtomicFileTest, ReplacedFilesKeepPermissionsAndLinks) {
  const TestDirectory directory;
  write_text(directory / "a", "old");
  chmod((directory / "a").c_str(), 0640);
  std::filesystem::create_symlink("a", directory / "link");
  tool::write_file(directory / "link", std::vector<uint8_t>{'n', 'e', 'w'});
  EXPECT_EQ(read_text(directory / "a"), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(directory / "link"));
  struct stat status{};
  ASSERT_EQ(stat((directory / "a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST(AtomicFileTest, DevicesAreWrittenDirectlyAndTheirErrorsSeen) {
  AtomicFile file("/dev/full");
  const std::vector<uint8_t> bytes(10);
  try {
    file.write(bytes);
    file.commit();
    FAIL() << "a full device took bytes";
  } catch (const tool::Failure& failure) {
    EXPECT_EQ(failure.status(), tool::kFailed);
    EXPECT_THAT(failure.what(), HasSubstr("/dev/full: cannot be written: No space left"));
  }
}

TEST(AtomicFileTest, PlacesThatCannotBeWrittenSayWhy) {
  const TestDirectory directory;
  EXPECT_THROW(AtomicFile(directory.path()), tool::Failure);
  EXPECT_THROW(AtomicFile(directory / "none/a"), tool::Failure);
  EXPECT_THROW(AtomicFile(std::string(5000, 'a')), tool::Failure);
}

// A command that reads a pipe waits with its output begun; then the signal comes.
class Interrupted : public testing::TestWithParam<int> {};

TEST_P(Interrupted, NothingIsLeftBehind) {
  const TestDirectory directory;
  const std::string pipe = directory / "pipe.y4m";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  CommandSetup setup;
  setup.meanwhile = [&](int child) {
    FILE* file = fopen(pipe.c_str(), "wb");  // returns when the command opens its end
    const std::string header = "YUV4MPEG2 W16 H16\nFRAME\n";
    fwrite(header.data(), 1, header.size(), file);
    fflush(file);
    for (int i = 0; i < 1000; ++i) {
      if (directory.names().size() > 1) break;
      usleep(10000);
    }
    EXPECT_EQ(directory.names().size(), 2u) << "the hidden file beside the output";
    kill(child, GetParam());
    usleep(10000);
    fclose(file);
  };
  const CommandResult run =
      run_vorel({"denoise", pipe, "-o", directory / "out.y4m", "-n", "800"}, setup);
  EXPECT_EQ(run.signal, GetParam()) << run.status << run.err;
  EXPECT_THAT(directory.names(), ElementsAre("pipe.y4m"));
}

INSTANTIATE_TEST_SUITE_P(Signals, Interrupted,
                         testing::Values(SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE));

}  // namespace
