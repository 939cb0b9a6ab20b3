// Of the shared library, LESS times fewer of everything; 1 for the whole:
//   harden_soak LIBRARY kept LESS       many frames, handles and loads: memory, threads and
//                                       descriptors must stay what they are
//   harden_soak LIBRARY latency LESS    how much longer than the median frame the slowest takes
//                                       while the processors are busy with something else
#include <android/log.h>
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/busy_loops.h"
#include "tests/support/guarded_plane.h"
#include "vorel/frame.h"

namespace {

namespace fs = std::filesystem;

constexpr char kTuning[] = R"([{"enableNoiseIndex": 100}])";
// Of resident memory after the first tenth. A byte a frame would be more.
constexpr long kMostGrowthKib = 512;
constexpr double kMostLatency = 5;

int g_wrong = 0;
std::string g_result;

void tell(const char* text) {
  if (!g_result.empty()) g_result += "; ";
  g_result += text;
}

struct Library {
  void* loaded;
  decltype(&vorel_open) open;
  decltype(&vorel_denoise_frame) denoise;
  decltype(&vorel_deinit) deinit;

  explicit Library(const char* path) : loaded(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
    if (loaded == nullptr) {
      std::fprintf(stderr, "%s\n", dlerror());
      std::exit(2);
    }
    open = reinterpret_cast<decltype(open)>(dlsym(loaded, "vorel_open"));
    denoise = reinterpret_cast<decltype(denoise)>(dlsym(loaded, "vorel_denoise_frame"));
    deinit = reinterpret_cast<decltype(deinit)>(dlsym(loaded, "vorel_deinit"));
  }
  ~Library() { dlclose(loaded); }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  vorel* make(int width, int height) const {
    vorel_options options = vorel_default_options(width, height);
    options.tuning_text = kTuning;
    options.tuning_text_bytes = sizeof(kTuning) - 1;
    return open(&options, nullptr);
  }
};

// A handle with a frame, which `denoise` fills anew when asked for.
class Camera {
 public:
  Camera(const Library& library, int width, int height)
      : library_(library),
        handle_(library.make(width, height)),
        fresh_(static_cast<size_t>(width * height * 3 / 2)),
        width_(width),
        height_(height) {
    std::mt19937 random(7);
    fill_pattern(fresh_.data(), fresh_.size(), Pattern::kPicture, random);
    bytes_ = fresh_;
  }
  ~Camera() { library_.deinit(handle_); }
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;

  void denoise() {
    uint8_t* luma = bytes_.data();
    const vorel_frame frame{sizeof(frame), luma,    luma + width_ * height_, width_, width_,
                            width_,        height_, VOREL_LAYOUT_NV21,       640};
    if (library_.denoise(handle_, &frame, nullptr) != VOREL_DONE) ++g_wrong;
  }
  std::vector<uint8_t> denoise_fresh() {
    bytes_ = fresh_;
    denoise();
    return bytes_;
  }

 private:
  const Library& library_;
  vorel* handle_;
  std::vector<uint8_t> fresh_;
  std::vector<uint8_t> bytes_;
  int width_;
  int height_;
};

struct Held {
  long resident_kib;
  long threads;
  long descriptors;
};

// What the process has, once workers that were told to end have ended.
Held held() {
  Held now{};
  for (int turn = 0; turn < 1000; ++turn) {
    struct stat tasks;  // has a link of each thread's folder besides two of its own
    stat("/proc/self/task", &tasks);
    now.threads = static_cast<long>(tasks.st_nlink) - 2;
    if (now.threads == 1) break;
    usleep(1000);
  }
  long all = 0;
  std::ifstream("/proc/self/statm") >> all >> now.resident_kib;
  now.resident_kib *= sysconf(_SC_PAGESIZE) / 1024;
  const fs::directory_iterator files("/proc/self/fd");
  now.descriptors = std::distance(begin(files), end(files));
  return now;
}

// Calls `step` so many times, in ten parts.
template <typename Step>
void soak(const char* what, int times, Step step) {
  Held warm{};
  Held now{};
  for (int part = 1; part <= 10; ++part) {
    for (int i = times / 10 * (part - 1); i < times / 10 * part; ++i) step();
    now = held();
    if (part == 1) warm = now;
    std::printf("%-22s %8d  %7ld KiB  %ld threads  %ld descriptors\n", what, times / 10 * part,
                now.resident_kib, now.threads, now.descriptors);
    std::fflush(stdout);
  }
  const long grown = now.resident_kib - warm.resident_kib;
  const bool flat = grown <= kMostGrowthKib && now.threads == warm.threads && now.threads == 1 &&
                    now.descriptors == warm.descriptors;
  if (!flat) {
    ++g_wrong;
    std::printf("WRONG: %s is not flat\n", what);
  }
  char text[160];
  std::snprintf(text, sizeof(text), "%d %s: %+ld KiB of %ld, %ld threads, %ld descriptors", times,
                what, grown, now.resident_kib, now.threads, now.descriptors);
  tell(text);
}

void soak_frames(const Library& library, const char* what, int width, int height, int times) {
  Camera camera(library, width, height);
  const std::vector<uint8_t> first = camera.denoise_fresh();
  soak(what, times, [&] { camera.denoise(); });
  if (camera.denoise_fresh() == first) return;
  ++g_wrong;
  std::printf("WRONG: the last of %s has other bytes than the first\n", what);
}

void soak_everything(const char* path, int less) {
  soak("loads", 1000 / less, [&] {
    const Library library(path);
    Camera(library, 64, 48).denoise();
  });
  const Library library(path);
  soak("handles", 100000 / less, [&] { library.deinit(library.make(64, 48)); });
  soak_frames(library, "frames of 64x48", 64, 48, 1000000 / less);
  soak_frames(library, "frames of 1080p", 1920, 1080, 10000 / less);
}

void try_latency(const Library& library, int frames, bool judged) {
  using clock = std::chrono::steady_clock;
  std::vector<double> msec;
  {
    Camera camera(library, 1920, 1080);
    const BusyLoops loops(2);
    for (int i = 0; i < frames; ++i) {
      const clock::time_point start = clock::now();
      camera.denoise();
      msec.push_back(std::chrono::duration<double, std::milli>(clock::now() - start).count());
    }
  }
  std::sort(msec.begin(), msec.end());
  const auto at = [&](double part) {
    return msec[static_cast<size_t>(part * static_cast<double>(msec.size() - 1))];
  };
  const double ratio = at(1) / at(0.5);
  char text[160];
  std::snprintf(text, sizeof(text),
                "%d frames of 1080p under two busy loops: median %.1f ms, 99 %% within %.1f, "
                "slowest %.1f (%.1f times the median)",
                frames, at(0.5), at(0.99), at(1), ratio);
  tell(text);
  if (judged && ratio >= kMostLatency) {
    ++g_wrong;
    std::printf("WRONG: the slowest frame\n");
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::string what = argc == 4 ? argv[2] : "";
  const int less = argc == 4 ? std::atoi(argv[3]) : 0;
  if ((what != "kept" && what != "latency") || less < 1 || less > 100) {
    std::fprintf(stderr, "harden_soak LIBRARY kept|latency LESS, 1 to 100\n");
    return 2;
  }
  __android_log_set_minimum_priority(ANDROID_LOG_SILENT);
  unsetenv("PERSIST_VENDOR_LIBVOREL_DEBUG");
  if (what == "latency") {
    // Of fewer frames it is told but not judged.
    try_latency(Library(argv[1]), 10000 / less, less == 1);
  } else {
    soak_everything(argv[1], less);
  }
  std::printf("result: %s\n", g_result.c_str());
  return g_wrong == 0 ? 0 : 1;
}
