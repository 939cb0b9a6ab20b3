// Frames of one libvorel.so, or of two in turn, as percentiles and costs per frame.
#include <android/log.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "bench/bench_picture.h"
#include "bench/busy_loops.h"
#include "bench/pair/frame_cost.h"
#include "bench/pair/loaded_library.h"

namespace {

struct Settings {
  std::vector<std::string> libraries;
  std::vector<std::string> paths{"spatial", "wavelet", "both"};
  std::vector<std::string> sizes{"1920x1080", "4000x3000"};
  int frames = 300;
  bool load = false;
};

// A folder with a tuning file for sensor 0 that takes one path or both for every noise index.
class TuningFolder {
 public:
  explicit TuningFolder(const std::string& path) {
    char name[] = "/tmp/vorel_pair_XXXXXX";
    if (mkdtemp(name) == nullptr) throw std::runtime_error("cannot make a folder below /tmp");
    folder_ = name;
    std::ofstream(folder_ / "vorel_NOTHING.json")
        << R"([{"enableNoiseIndex": 0, "enable": )" << (path != "wavelet")
        << R"(, "MFD_UV_tuning": {"enable": )" << (path != "spatial") << "}}]";
    setenv("VOREL_FIRMWARE_DIR", name, 1);
  }
  ~TuningFolder() { std::filesystem::remove_all(folder_); }
  TuningFolder(const TuningFolder&) = delete;
  TuningFolder& operator=(const TuningFolder&) = delete;

 private:
  std::filesystem::path folder_;
};

// One library with a handle, and what its frames have cost.
class Runner {
 public:
  Runner(const LoadedLibrary& library, int width, int height)
      : library_(library), width_(width), height_(height) {
    handle_ = library_.init(width, height, VOREL_SCENARIO_CAPTURE, 0);
    if (handle_ == nullptr) throw std::runtime_error("the library refuses this size");
  }
  ~Runner() { library_.deinit(handle_); }
  Runner(const Runner&) = delete;
  Runner& operator=(const Runner&) = delete;

  void run(const std::vector<uint8_t>& picture, std::vector<uint8_t>& frame, bool counts) {
    frame = picture;
    uint8_t* chroma = frame.data() + static_cast<size_t>(width_) * static_cast<size_t>(height_);
    const FrameCost before = cost_until_now();
    library_.run(handle_, frame.data(), chroma, width_, height_, VOREL_FMT_NV21, 640);
    library_.release_frame_buffers(handle_);
    if (counts) costs_.push_back(cost_until_now() - before);
  }

  [[nodiscard]] std::vector<double> values(double FrameCost::* field) const {
    std::vector<double> all;
    for (const FrameCost& cost : costs_) all.push_back(cost.*field);
    return all;
  }
  [[nodiscard]] double mean(double FrameCost::* field) const {
    double sum = 0;
    for (const FrameCost& cost : costs_) sum += cost.*field;
    return sum / static_cast<double>(costs_.size());
  }

 private:
  const LoadedLibrary& library_;
  int width_;
  int height_;
  vorel* handle_;
  std::vector<FrameCost> costs_;
};

void print_row(const std::string& name, const Runner& runner) {
  const std::vector<double> wall = runner.values(&FrameCost::wall_ms);
  std::printf("| %-28s | %8.3f | %8.3f | %8.3f | %8.3f | %8.1f | %8.1f |\n", name.c_str(),
              percentile(wall, 0.5), percentile(wall, 0.95), percentile(wall, 1),
              runner.mean(&FrameCost::cpu_ms), runner.mean(&FrameCost::switches),
              runner.mean(&FrameCost::allocations));
}

// Times of one library over the other's, frame by frame: the median of the ratios of neighbours
// moves less than the ratio of two medians when the machine does.
void print_ratio(const std::string& name, const Runner& old_runner, const Runner& new_runner) {
  const std::vector<double> old_wall = old_runner.values(&FrameCost::wall_ms);
  const std::vector<double> new_wall = new_runner.values(&FrameCost::wall_ms);
  std::vector<double> ratios;
  for (size_t i = 0; i < old_wall.size(); ++i) ratios.push_back(old_wall[i] / new_wall[i]);
  std::printf("| %-28s | %7.3fx | %8s | %8s | %7.3fx | %8s | %8s |\n", name.c_str(),
              percentile(ratios, 0.5), "", "",
              old_runner.mean(&FrameCost::cpu_ms) / new_runner.mean(&FrameCost::cpu_ms), "", "");
}

void compare(const Settings& settings, const std::vector<std::unique_ptr<LoadedLibrary>>& libraries,
             const std::string& path, const std::string& size) {
  int width = 0;
  int height = 0;
  if (std::sscanf(size.c_str(), "%dx%d", &width, &height) != 2) {
    throw std::runtime_error(size + " is no size such as 1920x1080");
  }
  const TuningFolder tuning(path);
  const std::vector<uint8_t> picture =
      make_bench_plane(static_cast<size_t>(width) * static_cast<size_t>(height) / 2 * 3, 5);
  std::vector<uint8_t> frame;
  std::vector<std::unique_ptr<Runner>> runners;
  for (const auto& library : libraries) {
    runners.push_back(std::make_unique<Runner>(*library, width, height));
  }
  constexpr int kWarmUp = 3;
  for (int i = 0; i < settings.frames + kWarmUp; ++i) {
    // Who goes first changes: the second finds warmer caches.
    for (size_t k = 0; k < runners.size(); ++k) {
      runners[(k + static_cast<size_t>(i)) % runners.size()]->run(picture, frame, i >= kWarmUp);
    }
  }
  const std::string name = path + "/" + size;
  const bool pair = runners.size() == 2;
  print_row(name + (pair ? " new" : ""), *runners[0]);
  if (!pair) return;
  print_row(name + " old", *runners[1]);
  print_ratio(name + " old/new", *runners[1], *runners[0]);
}

void drop_line(const __android_logger_data*, const char*) {}

}  // namespace

int main(int argc, char** argv) try {
  Settings settings;
  CLI::App app("Runs frames of one library, or of two in turn, and tells what they cost.");
  app.add_option("library", settings.libraries,
                 "libvorel.so to measure, and an older one to compare")
      ->required()
      ->expected(1, 2)
      ->check(CLI::ExistingFile);
  app.add_option("--path", settings.paths, "spatial, wavelet, both (all three)")
      ->check(CLI::IsMember({"spatial", "wavelet", "both"}));
  app.add_option("--size", settings.sizes, "sizes of the frames (1920x1080, 4000x3000)");
  app.add_option("--frames", settings.frames, "frames of each (300)")
      ->check(CLI::Range(1, 1000000));
  app.add_flag("--load", settings.load, "beside one busy loop per processor");
  CLI11_PARSE(app, argc, argv);

  __android_log_set_logger(drop_line);
  const BusyLoops busy(settings.load ? std::thread::hardware_concurrency() : 0);
  std::vector<std::unique_ptr<LoadedLibrary>> libraries;
  for (const std::string& path : settings.libraries) {
    libraries.push_back(std::make_unique<LoadedLibrary>(path));
  }
  std::printf("%d frames each%s\n\n", settings.frames,
              settings.load ? ", one busy loop per processor" : "");
  std::printf("| %-28s | %8s | %8s | %8s | %8s | %8s | %8s |\n", "path/size", "median", "95th",
              "largest", "cpu", "switches", "allocs");
  std::printf(
      "|:-----------------------------|---------:|---------:|---------:|---------:|---------:|-----"
      "----:|\n");
  for (const std::string& path : settings.paths) {
    for (const std::string& size : settings.sizes) {
      compare(settings, libraries, path, size);
      std::fflush(stdout);
    }
  }
  return 0;
} catch (const std::exception& trouble) {
  std::fprintf(stderr, "vorel_pair: %s\n", trouble.what());
  return 1;
}
