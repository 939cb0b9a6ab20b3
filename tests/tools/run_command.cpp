#include "tests/tools/run_command.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

void redirect(int descriptor, const std::string& path) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(file, descriptor);
  close(file);
}

// Runs in the child until the command takes over.
[[noreturn]] void become_command(const std::vector<std::string>& words, const CommandSetup& setup,
                                 const std::string& out, const std::string& err) {
  redirect(STDOUT_FILENO, out);
  redirect(STDERR_FILENO, err);
  if (!setup.standard_input.empty()) {
    const int file = open(setup.standard_input.c_str(), O_RDONLY);
    dup2(file, STDIN_FILENO);
    close(file);
  }
  unsetenv("VOREL_FIRMWARE_DIR");
  for (const auto& [name, value] : setup.environment) {
    if (value.empty()) {
      unsetenv(name.c_str());
    } else {
      setenv(name.c_str(), value.c_str(), 1);
    }
  }
  if (setup.file_limit) {
    const rlimit limit{*setup.file_limit, *setup.file_limit};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

std::vector<std::string> command_words(const std::vector<std::string>& arguments) {
  std::vector<std::string> words;
  std::istringstream emulator(VOREL_EMULATOR);  // words separated by '|'
  for (std::string word; std::getline(emulator, word, '|');) words.push_back(word);
  words.push_back(VOREL_COMMAND);
  words.insert(words.end(), arguments.begin(), arguments.end());
  return words;
}

}  // namespace

CommandResult run_vorel(const std::vector<std::string>& arguments, const CommandSetup& setup) {
  const TestDirectory logs;
  const std::string out = logs / "out";
  const std::string err = logs / "err";
  const std::vector<std::string> words = command_words(arguments);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) become_command(words, setup, out, err);
  if (setup.meanwhile) setup.meanwhile(child);
  int status = 0;
  waitpid(child, &status, 0);
  CommandResult result;
  if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  result.out = read_text(out);
  result.err = read_text(err);
  return result;
}

std::string command_path() {
  return command_words({}).size() == 1 ? command_words({}).front() : "";
}

TestDirectory::TestDirectory()
    : path_(std::filesystem::temp_directory_path() / "vorel-test-XXXXXX") {
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary directory");
}

TestDirectory::~TestDirectory() {
  std::error_code error;
  std::filesystem::remove_all(path_, error);
}

std::vector<std::string> TestDirectory::names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void write_text(const std::string& path, const std::string& content) {
  std::ofstream(path, std::ios::binary) << content;
}

std::string read_text(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}
