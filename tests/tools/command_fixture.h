// The built command from outside, in a folder of its own with two small pictures.
#ifndef VOREL_TESTS_TOOLS_COMMAND_FIXTURE_H_
#define VOREL_TESTS_TOOLS_COMMAND_FIXTURE_H_

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/tools/run_command.h"
#include "tests/tools/test_pictures.h"

class Command : public testing::Test {
 protected:
  Command() {
    save(picture, gradient_picture(64, 48));
    save(raw, patterned_frame(64, 48));
  }

  // One line on standard error that names what is wrong, the status, and no new file.
  void expect_refused(const std::vector<std::string>& arguments, int status,
                      const std::string& reason) {
    const std::vector<std::string> before = directory.names();
    const CommandResult run = run_vorel(arguments);
    const std::string line = testing::PrintToString(arguments);
    EXPECT_EQ(run.status, status) << line << run.err;
    EXPECT_THAT(run.err, testing::StartsWith("vorel: ")) << line;
    EXPECT_THAT(run.err, testing::HasSubstr(reason)) << line;
    EXPECT_THAT(run.out, testing::IsEmpty()) << line;
    EXPECT_EQ(directory.names(), before) << line;
  }

  TestDirectory directory;
  std::string picture = directory / "a.png";
  std::string raw = directory / "a_64x48.nv21";
  std::string out = directory / "out.png";
};

#endif  // VOREL_TESTS_TOOLS_COMMAND_FIXTURE_H_
