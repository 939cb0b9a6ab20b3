// Runs the benchmarks and prints a Markdown table; the other output formats and all options of the
// benchmark library (--benchmark_filter, --benchmark_format=json, ...) work as they do everywhere.
#include <benchmark/benchmark.h>
#include <sys/utsname.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

// The processor's name as the kernel tells it; empty where it tells none (most Arm machines).
std::string processor_name() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    if (line.rfind("model name", 0) != 0) continue;
    const size_t colon = line.find(": ");
    if (colon != std::string::npos) return line.substr(colon + 2) + ", ";
  }
  return "";
}

std::string machine() {
  utsname names{};
  uname(&names);
  return processor_name() + std::to_string(std::thread::hardware_concurrency()) + " cores, " +
         names.machine + ", " + names.sysname;
}

std::string today() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[16];
  std::strftime(text, sizeof(text), "%Y-%m-%d", &local);
  return text;
}

// One row per benchmark: its time, and that time in copies of the frame.
class MarkdownReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override {
    std::printf("%s  \n%s  \n%s\n\n", machine().c_str(), "clang " __clang_version__,
                today().c_str());
#if !defined(__OPTIMIZE__)
    std::printf("Built without optimisation: the figures mean nothing.\n\n");
#endif
    std::printf("| %-*s | %10s | %17s |\n", kNameWidth, "name", "ms", "copies of a frame");
    std::printf("|:%s|%s:|%s:|\n", std::string(kNameWidth + 1, '-').c_str(),
                std::string(11, '-').c_str(), std::string(18, '-').c_str());
    return true;
  }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.aggregate_unit == benchmark::kPercentage) continue;
      if (run.error_occurred) {
        std::printf("| %-*s | %s |\n", kNameWidth, run.benchmark_name().c_str(),
                    run.error_message.c_str());
        continue;
      }
      std::printf("| %-*s | %10.3f | %17s |\n", kNameWidth, name(run).c_str(),
                  run.GetAdjustedRealTime() * to_milliseconds(run.time_unit), copies(run).c_str());
    }
    std::fflush(stdout);
  }

 private:
  static constexpr int kNameWidth = 58;

  // "/iterations:1" and "/real_time" behind a name tell nothing here.
  static std::string name(const Run& run) {
    std::string name = run.benchmark_name();
    for (const char* suffix : {"/iterations:", "/real_time", "/manual_time"}) {
      const size_t at = name.find(suffix);
      if (at != std::string::npos) name.erase(at);
    }
    return name;
  }

  static double to_milliseconds(benchmark::TimeUnit unit) {
    return 1e3 / benchmark::GetTimeUnitMultiplier(unit);
  }

  static std::string copies(const Run& run) {
    const auto found = run.counters.find("x_copy");
    if (found == run.counters.end()) return "";
    char text[32];
    std::snprintf(text, sizeof(text), "%.2f", found->second.value);
    return text;
  }
};

// Another format was asked for, on the command line or in the environment.
bool wants_other_format(int argc, char** argv) {
  static constexpr char kOption[] = "--benchmark_format";
  return std::getenv("BENCHMARK_FORMAT") != nullptr ||
         std::any_of(argv + 1, argv + argc, [](const char* argument) {
           return std::strncmp(argument, kOption, sizeof(kOption) - 1) == 0;
         });
}

}  // namespace

int main(int argc, char** argv) {
  const bool other_format = wants_other_format(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  MarkdownReporter markdown;
  const size_t count = other_format ? benchmark::RunSpecifiedBenchmarks()
                                    : benchmark::RunSpecifiedBenchmarks(&markdown);
  benchmark::Shutdown();
  return count == 0 ? 1 : 0;
}
