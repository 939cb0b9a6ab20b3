#include "harden/fault_scenes.h"

#include <android/log.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "tests/support/log_sink.h"
#include "tests/support/source_path.h"

namespace {

namespace fs = std::filesystem;

// Above the threshold of the built-in tuning too.
constexpr int kNoiseIndex = 50000;
constexpr char kFileName[] = "vorel_NOTHING.json";

std::atomic<int> g_errors{0};
char g_last_error[256];
const std::string* g_text;  // of the tuning, and its file
const std::string* g_path;

void collect(int priority, const char*, const char* text) {
  if (priority != ANDROID_LOG_ERROR) return;
  ++g_errors;
  std::snprintf(g_last_error, sizeof(g_last_error), "%s", text);
}

void init(Trial& trial) { trial.handle = vorel_init(Trial::kWidth, Trial::kHeight, 0, 0); }

void open_with(Trial& trial, const char* path, const std::string* text) {
  vorel_options options = vorel_default_options(Trial::kWidth, Trial::kHeight);
  options.tuning_path = path;
  if (text != nullptr) {
    options.tuning_text = text->data();
    options.tuning_text_bytes = text->size();
  }
  trial.handle = vorel_open(&options, &trial.status);
}
void open_file(Trial& trial) { open_with(trial, g_path->c_str(), nullptr); }
void open_text(Trial& trial) { open_with(trial, nullptr, g_text); }

void run(Trial& trial) {
  vorel_run(trial.handle, trial.luma.data(), trial.chroma.data(), Trial::kWidth, Trial::kHeight,
            VOREL_FMT_NM21, kNoiseIndex);
}
void release(Trial& trial) { vorel_release_frame_buffers(trial.handle); }

void denoise(Trial& trial) {
  const vorel_frame frame = trial.frame();
  trial.info.size = sizeof(trial.info);
  trial.status = vorel_denoise_frame(trial.handle, &frame, &trial.info);
}

void deinit(Trial& trial) {
  if (trial.handle != nullptr) vorel_deinit(trial.handle);
  trial.handle = nullptr;
}

void nothing(Trial&) {}

void run_once(Trial& trial) {
  init(trial);
  run(trial);
}

// Returns when the calling thread is the only one. A worker gives its blocks back after the call
// that has stopped it; those of a frame whose driver could not be created stay until the next one.
void wait_for_workers() {
  constexpr int kTurns = 3000;
  for (int turn = 0; turn < kTurns; ++turn) {
    struct stat tasks;  // has a link of each thread's folder besides two of its own
    if (stat("/proc/self/task", &tasks) == 0 && tasks.st_nlink == 3) return;
    usleep(100);
  }
}

// Blocks that the library has got and not given back during `body`, which has no others.
template <typename Body>
int blocks_of(Body body) {
  const int before = FaultScope::live_blocks();
  body();
  wait_for_workers();
  return FaultScope::live_blocks() - before;
}

void set_debug_level(int level) {
  setenv("PERSIST_VENDOR_LIBVOREL_DEBUG", std::to_string(level).c_str(), 1);
}

bool makes_handle(const Scene& scene) { return scene.before == nothing; }

// Calls of the system without which a frame is processed all the same.
bool can_be_missed(FaultScope::Kind kind) {
  using Kind = FaultScope::Kind;
  return kind == Kind::kAffinity || kind == Kind::kPriority || kind == Kind::kThreadName ||
         kind == Kind::kClock;
}

bool denoises(const Scene& scene) { return scene.call == run || scene.call == denoise; }

vorel_handle_info info_of(const vorel* handle) {
  vorel_handle_info info{};
  info.size = sizeof(info);
  vorel_get_handle_info(handle, &info);
  return info;
}

std::vector<uint8_t> bytes_of(const Trial& trial) {
  std::vector<uint8_t> bytes = trial.luma;
  bytes.insert(bytes.end(), trial.chroma.begin(), trial.chroma.end());
  return bytes;
}

std::map<std::string, uintmax_t> files_in(const std::string& folder) {
  std::map<std::string, uintmax_t> found;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(folder, none)) {
    found[entry.path().filename()] = entry.file_size();
  }
  return found;
}

}  // namespace

const std::vector<Scene> kScenes = {
    {"init", 0, false, nothing, init, 0},
    {"init, tuning listed", 2, false, nothing, init, 0},
    {"init, dump folder", 3, false, nothing, init, 0},
    {"open, text", 0, false, nothing, open_text, 0},
    {"open, file", 0, false, nothing, open_file, 0},
    {"run", 0, false, init, run, 0},
    {"run, last not released", 0, false, run_once, run, 2},
    {"run, dumps", 4, false, init, run, 0},
    {"frame call", 0, false, open_text, denoise, 0},
    {"frame call, strided", 0, true, open_text, denoise, 0},
    {"frame call, timed", 1, false, open_text, denoise, 0},
    {"frame call, frame dumps", 4, false, open_text, denoise, 0},
    {"frame call, all dumps", 5, true, open_text, denoise, 0},
    {"release", 0, false, run_once, release, 0},
    {"deinit", 0, false, run_once, deinit, 0},
};

Trial::Trial(bool is_strided)
    : strided(is_strided), luma(kPitch * kHeight), chroma(kPitch * kHeight / 2) {
  fill();
}

void Trial::fill() {
  std::mt19937 random(3);
  for (uint8_t& byte : luma) byte = static_cast<uint8_t>(90 + random() % 40);
  for (uint8_t& byte : chroma) byte = static_cast<uint8_t>(100 + random() % 50);
}

vorel_frame Trial::frame() {
  const int less = strided ? 1 : 0;
  const int pitch = strided ? kPitch : kWidth;
  return {sizeof(vorel_frame), luma.data(),    chroma.data(),     pitch,      pitch,
          kWidth - less,       kHeight - less, VOREL_LAYOUT_NV21, kNoiseIndex};
}

Stage::Stage() {
  std::string name = (fs::temp_directory_path() / "vorel_faults_XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) std::abort();
  folder_ = name;
  const fs::path sample = source_path(std::string("tuning/samples/") + kFileName);
  fs::copy_file(sample, fs::path(folder_) / kFileName);
  std::ifstream file(sample, std::ios::binary);
  tuning_text_.assign(std::istreambuf_iterator<char>(file), {});
  static const std::string path = folder_ + "/" + kFileName;
  g_path = &path;
  g_text = &tuning_text_;
  setenv("VOREL_DUMP_DIR", (folder_ + "/dumps").c_str(), 1);
  set_log_sink<collect>();
  for (const bool strided : {false, true}) {
    for (const bool tuned : {false, true}) expected_[strided][tuned] = denoised(strided, tuned);
  }
  setenv("VOREL_FIRMWARE_DIR", folder_.c_str(), 1);
}

Stage::~Stage() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

Stage::Bytes Stage::denoised(bool strided, bool tuned) const {
  setenv("VOREL_FIRMWARE_DIR", tuned ? folder_.c_str() : "/nowhere", 1);
  Trial trial(strided);
  init(trial);
  denoise(trial);
  deinit(trial);
  wait_for_workers();
  if (trial.status != VOREL_DONE || bytes_of(trial) == bytes_of(Trial(strided))) std::abort();
  return bytes_of(trial);
}

// A handle that the call has made or not, and what it was made with.
std::string Stage::judge_handle(const Scene& scene, const Trial& trial) const {
  const bool named = scene.call != init;
  if (trial.handle == nullptr) {
    if (named && trial.status != VOREL_NO_MEMORY && trial.status != VOREL_BAD_TUNING) {
      return "no handle with status " + std::to_string(trial.status);
    }
    return g_errors > 0 ? "" : "no handle without an error line";
  }
  const vorel_handle_info info = info_of(trial.handle);
  const bool folder = info.dump_path[0] != '\0' || scene.debug_level < 3;
  if (named && (info.tuning_loaded == 0 || trial.status != VOREL_DONE)) {
    return "a handle without the named tuning";
  }
  if ((info.tuning_loaded == 0 || !folder) && g_errors == 0) {
    return "no tuning file or no dump folder without an error line";
  }
  return "";
}

std::string Stage::judge_frame(const Trial& trial) const {
  const bool tuned = info_of(trial.handle).tuning_loaded != 0;
  const bool exact = bytes_of(trial) == expected_[trial.strided][tuned];
  const bool untouched = bytes_of(trial) == bytes_of(Trial(trial.strided));
  const std::string said = "status " + std::to_string(trial.status);
  if (!exact && g_errors == 0) return said + ", other bytes without an error line";
  if (trial.info.size == 0) return "";  // of vorel_run, which tells no status
  switch (trial.status) {
    case VOREL_DONE:
      return exact ? "" : "done with other bytes";
    case VOREL_STAGE_SKIPPED:
      return trial.info.skipped != 0 ? "" : "no stage named that was skipped";
    case VOREL_NO_MEMORY:
    case VOREL_NO_THREADS:
      return untouched ? "" : said + " with a touched frame";
    default:
      return said;
  }
}

// Files are whole or not there, and those that are not are told.
std::string Stage::judge_dumps(const Scene& scene, const Trial& trial) {
  const auto found = files_in(info_of(trial.handle).dump_path);
  const int written = trial.info.dumps_written;
  // The first run of a scene is without a fault.
  const Dumps& whole = dumps_.try_emplace(scene.name, Dumps{found, written}).first->second;
  if (whole.files.empty()) return "no dumps";
  for (const auto& [name, size] : found) {
    const auto listed = whole.files.find(name);
    if (listed == whole.files.end() || listed->second != size) return "half-written " + name;
  }
  if (found != whole.files && g_errors == 0) return "missing dumps without an error line";
  if (trial.info.size == 0) return "";
  const int failed = trial.info.dumps_failed;
  if (trial.status == VOREL_DONE && written + failed != whole.written) {
    return std::to_string(written) + " dumps written, " + std::to_string(failed) + " failed of " +
           std::to_string(whole.written);
  }
  return (failed > 0) == (trial.info.dumps_error != 0) ? "" : "failed dumps without a reason";
}

int Stage::run(const Scene& scene, FaultScope::Kind kind, int nth, FaultScope::Span span,
               std::string* wrong) {
  set_debug_level(scene.debug_level);
  Trial trial(scene.strided);
  int blocks = blocks_of([&] { scene.before(trial); });
  trial.fill();
  const bool dumps = denoises(scene) && scene.debug_level >= 3;
  if (dumps) {
    for (const auto& file : fs::directory_iterator(info_of(trial.handle).dump_path)) {
      fs::remove(file);
    }
  }
  g_errors = 0;
  int calls = 0;
  bool failed = false;
  blocks += blocks_of([&] {
    const FaultScope fault(kind, nth, nullptr, span);
    scene.call(trial);
    calls = fault.calls();
    failed = fault.fired() && !can_be_missed(kind);
  });
  if (makes_handle(scene)) *wrong = judge_handle(scene, trial);
  if (denoises(scene)) *wrong = judge_frame(trial);
  if (wrong->empty() && dumps) *wrong = judge_dumps(scene, trial);
  if (wrong->empty() && g_errors > 0 && !failed) *wrong = "an error line without need";

  // Whatever has failed, the next frame is exact and nothing is left.
  if (trial.handle == nullptr) blocks += blocks_of([&] { open_text(trial); });
  trial.fill();
  blocks += blocks_of([&] { denoise(trial); });
  if (wrong->empty() && trial.status != VOREL_DONE) *wrong = "the next frame was not denoised";
  if (wrong->empty()) *wrong = judge_frame(trial);
  blocks += blocks_of([&] { deinit(trial); });
  const bool lost = failed ? blocks > scene.lost_blocks : blocks != scene.lost_blocks;
  if (wrong->empty() && lost) *wrong = std::to_string(blocks) + " blocks lost";
  if (!wrong->empty() && g_errors > 0) *wrong += std::string(" (last error: ") + g_last_error + ")";
  return calls;
}
