// Runs the built command as its users do.
#ifndef VOREL_TESTS_TOOLS_RUN_COMMAND_H_
#define VOREL_TESTS_TOOLS_RUN_COMMAND_H_

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct CommandResult {
  int status = -1;  // exit status; -1 when a signal ended the program
  int signal = 0;
  std::string out;
  std::string err;
};

struct CommandSetup {
  // Set (or, with an empty value, removed) in the command's environment.
  std::vector<std::pair<std::string, std::string>> environment;
  // File behind standard input; as the test's own when empty.
  std::string standard_input;
  // Longest file that the command may write, as a file size limit of the process.
  std::optional<size_t> file_limit;
  // Called with the process id while the command runs.
  std::function<void(int)> meanwhile;
};

// Arguments without the program's name. VOREL_FIRMWARE_DIR is removed from the environment.
CommandResult run_vorel(const std::vector<std::string>& arguments, const CommandSetup& setup = {});

// The built command; empty where an emulator has to start it.
std::string command_path();

// A directory of its own for a test; it goes with everything in it.
class TestDirectory {
 public:
  TestDirectory();
  ~TestDirectory();
  TestDirectory(const TestDirectory&) = delete;
  TestDirectory& operator=(const TestDirectory&) = delete;

  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }
  // Names of all entries, hidden ones too, in order.
  std::vector<std::string> names() const;

 private:
  std::string path_;
};

void write_text(const std::string& path, const std::string& content);
std::string read_text(const std::string& path);

#endif  // VOREL_TESTS_TOOLS_RUN_COMMAND_H_
