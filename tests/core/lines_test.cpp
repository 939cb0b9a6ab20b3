// Every line of the log that calls leave, in order and with their results: data/lines holds scripts
// of calls, each followed by what is expected of it. data/lines/README.md tells the commands.
// After a wanted change: VOREL_PRINT_LINES=1 core_test --gtest_filter='Lines*' writes the scripts
// with what the calls leave now.
#include <android/log.h>
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <sstream>
#include <utility>

#include "core/run_thread.h"
#include "tests/core/handle_fixture.h"
#include "tests/support/faults.h"
#include "tests/support/source_path.h"
#include "tests/support/system_watch.h"

namespace {

class LinesTest : public HandleTest {
 protected:
  // Runs the commands of a script and returns it with what they leave.
  std::string replay(const std::string& script) {
    unsetenv(kDebugVariable);
    for (const auto& entry : std::filesystem::directory_iterator(firmware_.path())) {
      std::filesystem::remove(entry);
    }
    std::istringstream lines(script);
    std::string all;
    std::string line;
    while (std::getline(lines, line)) {
      if (line.empty() || line[0] == '#') all += line + "\n";
      if (line.rfind("> ", 0) == 0) all += line + "\n" + obey(line.substr(2));
    }
    if (handle_ != nullptr) vorel_deinit(handle_);
    handle_ = nullptr;
    return all;
  }

 private:
  std::string obey(const std::string& command) {
    std::istringstream words(command);
    std::string verb;
    words >> verb;
    if (verb == "level") {
      std::string value;
      words >> value;
      setenv(kDebugVariable, value.c_str(), 1);
      return "";
    }
    if (verb == "file") {
      std::string name;
      words >> name;
      std::string text;
      std::getline(words, text);
      firmware_.write(name, text);
      return "";
    }
    std::string wanted;
    if (verb == "errors" || verb == "ordered") {
      wanted = verb;
      words >> verb;
    }
    int nth = 0;
    auto kind = FaultScope::Kind::kAllocation;
    void* (*thread)(void*) = nullptr;
    if (verb == "fail") {
      words >> verb >> nth;
      if (verb != "allocation") {
        kind = FaultScope::Kind::kThreadCreate;
        thread = verb == "starter"  ? vorel_preinit_thread_func
                 : verb == "driver" ? vorel_run_thread
                                    : ThreadPool::thread_do;
      }
      words >> verb;
    }
    log_.clear();
    const FaultScope fault(kind, nth, thread);
    const SystemWatch watch(&log_);
    const std::string result = call(verb, words);
    return left_lines(wanted) + "= " + result + "\n";
  }

  std::string call(const std::string& verb, std::istream& words) {
    std::map<std::string, int> with{{"width", 64},
                                    {"height", 64},
                                    {"scenario", 0},
                                    {"sensor", 0},
                                    {"index", 640},
                                    {"workers", 6},
                                    {"format", VOREL_FMT_NM21},
                                    {"planes", 3},
                                    {"nice", -8},
                                    {"mask", 0xFF},
                                    {"layout", VOREL_LAYOUT_NV21},
                                    {"luma", 0},
                                    {"chroma", 0},
                                    {"size", 0}};
    std::string word;
    while (words >> word) {
      const size_t equal = word.find('=');
      with.at(word.substr(0, equal)) = std::stoi(word.substr(equal + 1), nullptr, 0);
    }
    const int width = with["width"];
    const int height = with["height"];
    if (verb == "init") {
      handle_ = vorel_init(width, height, with["scenario"], static_cast<unsigned>(with["sensor"]));
      if (with["scenario"] > 1) std::free(std::exchange(handle_, nullptr));  // made, but unusable
      return name_of(handle_);
    }
    if (verb == "open") {
      vorel_options options = vorel_default_options(width, height);
      options.scenario = with["scenario"];
      options.sensor_id = static_cast<uint32_t>(with["sensor"]);
      options.workers = with["workers"];
      options.nice = with["nice"];
      options.cpu_mask = static_cast<uint32_t>(with["mask"]);
      options.size += static_cast<size_t>(with["size"]);
      options.thread_name = "camera";
      vorel_status status = VOREL_DONE;
      handle_ = vorel_open(&options, &status);
      return std::to_string(status) + " " + name_of(handle_);
    }
    if (verb == "deinit") {
      return std::to_string(vorel_deinit(std::exchange(handle_, nullptr)));
    }
    // Large enough for any frame that is not refused.
    TestFrame frame(64, 128);
    uint8_t* y = (with["planes"] & 1) != 0 ? frame.y.data() : nullptr;
    uint8_t* uv = (with["planes"] & 2) != 0 ? frame.uv.data() : nullptr;
    const std::vector<uint8_t> before = frame.bytes();
    std::string result;
    if (verb == "run") {
      result = name_of(vorel_run(handle_, y, uv, width, height, with["format"], with["index"]));
    } else {
      const vorel_frame given{sizeof(vorel_frame) + static_cast<size_t>(with["size"]),
                              y,
                              uv,
                              with["luma"] != 0 ? with["luma"] : width,
                              with["chroma"] != 0 ? with["chroma"] : width,
                              width,
                              height,
                              with["layout"],
                              with["index"]};
      result = std::to_string(vorel_denoise_frame(handle_, &given, nullptr));
    }
    result += frame.bytes() == before ? ", untouched" : ", changed";
    if (handle_ == nullptr) return result;
    if (pthread_mutex_trylock(&handle_->slot_mutex[0]) != 0) return result + ", slot kept";
    pthread_mutex_unlock(&handle_->slot_mutex[0]);
    vorel_release_frame_buffers(handle_);
    return result;
  }

  std::string name_of(const void* result) const {
    if (result == nullptr) return "null";
    if (result == handle_) return "handle";
    return result == &handle_->run_thread[0] ? "slot" : "other";
  }

  // The lines of the last call without what differs from run to run.
  std::string left_lines(const std::string& wanted) const {
    const std::pair<std::regex, std::string> masks[] = {
        {std::regex(dumps_.path().string()), "DUMPS"},
        {std::regex(firmware_.path().string()), "FIRMWARE"},
        {std::regex("_[0-9]{8}_[0-9]{6}"), "_TIME"},
        {std::regex("\\(nil\\)|0x0\\b"), "NULL"},  // as the C library writes it
        {std::regex("0x[0-9a-f]+"), "ADDRESS"},
        {std::regex("CommitID .* Build Date .*"), "CommitID ID Build Date DATE"},
        {std::regex("\n"), "\\n"},
    };
    std::string ordered;
    std::vector<std::string> started;
    for (const LogLine& line : log_.lines()) {
      if (wanted == "errors" && line.priority != ANDROID_LOG_ERROR) continue;
      std::string text = line.text;
      for (const auto& [what, mask] : masks) text = std::regex_replace(text, what, mask);
      text = "??VDIWEF"[line.priority] + (" " + text + "\n");
      if (is_from_start(line)) {
        if (wanted.empty()) started.push_back(text);
      } else {
        ordered += text;
      }
    }
    std::sort(started.begin(), started.end());
    for (const std::string& text : started) ordered += text;
    return ordered;
  }

  vorel* handle_ = nullptr;
  TempDir dumps_;
  ScopedEnv dump_variable_{"VOREL_DUMP_DIR", dumps_.path().c_str()};
};

// The first line that is not as expected, with its number; empty when there is none.
std::string first_difference(const std::string& actual, const std::string& expected) {
  if (actual == expected) return "";
  std::istringstream lines[] = {std::istringstream(actual), std::istringstream(expected)};
  for (int number = 1;; ++number) {
    std::string line[2];
    for (int i = 0; i < 2; ++i) std::getline(lines[i], line[i]);
    if (line[0] == line[1] && !lines[0].eof()) continue;
    return std::to_string(number) + ": " + line[0] + "\ninstead of: " + line[1];
  }
}

TEST_F(LinesTest, EveryCallLeavesTheListedLines) {
  int scripts = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(source_path("tests/core/data/lines"))) {
    if (entry.path().extension() != ".txt") continue;
    ++scripts;
    const std::string script = read_file(entry.path());
    const std::string left = replay(script);
    if (std::getenv("VOREL_PRINT_LINES") != nullptr) {
      std::ofstream(entry.path()) << left;
    } else {
      EXPECT_EQ(first_difference(left, script), "") << entry.path().filename();
    }
  }
  EXPECT_GE(scripts, 5);
}

}  // namespace
