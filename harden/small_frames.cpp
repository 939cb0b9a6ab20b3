// Many small frames for sanitizers: on 1 to 8 handles at once, each with a caller of its own, then
// four callers on one handle, by both calls. Every result is compared with a first one, and under
// the memory sanitizer every byte of it must come from the frame.
//   harden_small_frames FRAMES TUNING
#include <android/log.h>
#include <pthread.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/wraps.h"
#include "vorel/frame.h"
#include "vorel/vorel.h"

#if defined(__has_feature)
#if __has_feature(memory_sanitizer)
#include <jansson.h>
#include <sanitizer/msan_interface.h>
#define WATCHES_MEMORY
#endif
#endif

namespace {

constexpr int kShapes = 12;
constexpr int kMostHandles = 8;
constexpr int kCallers = 4;
constexpr int kLargestWidth = 80;
constexpr int kLargestHeight = 66;

struct Shape {
  int width;
  int height;
  int gap;  // bytes between two rows
  int32_t layout;
  int32_t noise_index;
};

constexpr Shape kList[kShapes] = {
    {16, 2, 0, 0, 3200},   {48, 34, 0, 0, 100},  {33, 17, 7, 1, 800},   {80, 66, 0, 1, 6400},
    {64, 48, 16, 0, 1600}, {2, 2, 1, 0, 400},    {79, 65, 0, 0, 12800}, {16, 66, 3, 1, 50},
    {80, 16, 0, 0, 200},   {32, 32, 0, 0, 3200}, {47, 50, 9, 0, 640},   {64, 64, 0, 1, 25600},
};

[[noreturn]] void fail(const char* what, int shape) {
  std::fprintf(stderr, "small_frames: %s, shape %d\n", what, shape);
  std::abort();
}

// The bytes between rows stay as malloc gives them.
class Frame {
 public:
  explicit Frame(int shape) : shape_(kList[shape]) {
    luma_ = take(shape_.height, shape_.width);
    chroma_ = take((shape_.height + 1) / 2, pair_bytes());
    fill(luma_, shape_.height, shape_.width, 3);
    fill(chroma_, (shape_.height + 1) / 2, pair_bytes(), 5);
  }
  ~Frame() {
    std::free(luma_);
    std::free(chroma_);
  }
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;

  vorel_frame record() {
    return {sizeof(vorel_frame),       luma_,        chroma_,       shape_.width + shape_.gap,
            pair_bytes() + shape_.gap, shape_.width, shape_.height, shape_.layout,
            shape_.noise_index};
  }

  // FNV-1a over the rows.
  uint64_t digest() const {
    return digest(digest(0xcbf29ce484222325, luma_, shape_.height, shape_.width), chroma_,
                  (shape_.height + 1) / 2, pair_bytes());
  }

 private:
  int pair_bytes() const { return (shape_.width + 1) / 2 * 2; }
  size_t stride(int row_bytes) const { return static_cast<size_t>(row_bytes + shape_.gap); }

  uint8_t* take(int rows, int row_bytes) const {
    void* plane = std::malloc(stride(row_bytes) * static_cast<size_t>(rows));
    if (plane == nullptr) std::abort();
    return static_cast<uint8_t*>(plane);
  }

  VOREL_WRAPS void fill(uint8_t* plane, int rows, int row_bytes, uint32_t seed) const {
    uint32_t state = seed;
    for (int y = 0; y < rows; ++y) {
      for (int x = 0; x < row_bytes; ++x) {
        state = (state * 69069 + 1) & 0xFFFFFF;
        plane[static_cast<size_t>(y) * stride(row_bytes) + static_cast<size_t>(x)] =
            static_cast<uint8_t>((90 + x + y + static_cast<int>(state >> 20)) & 0xFF);
      }
    }
  }

  VOREL_WRAPS uint64_t digest(uint64_t hash, const uint8_t* plane, int rows, int row_bytes) const {
    for (int y = 0; y < rows; ++y) {
      const uint8_t* row = plane + static_cast<size_t>(y) * stride(row_bytes);
#if defined(WATCHES_MEMORY)
      __msan_check_mem_is_initialized(row, static_cast<size_t>(row_bytes));
#endif
      for (int x = 0; x < row_bytes; ++x) hash = (hash ^ row[x]) * 0x100000001b3;
    }
    return hash;
  }

  Shape shape_;
  uint8_t* luma_;
  uint8_t* chroma_;
};

const char* g_tuning;
uint64_t g_expected[kShapes];

vorel* open_handle(int workers) {
  vorel_options options = vorel_default_options(kLargestWidth, kLargestHeight);
  options.workers = workers;
  options.nice = 0;
  options.tuning_path = g_tuning;
  vorel_status status = VOREL_DONE;
  vorel* handle = vorel_open(&options, &status);
  if (handle == nullptr) {
    std::fprintf(stderr, "small_frames: %s\n", vorel_status_text(status));
    std::exit(1);
  }
  return handle;
}

// Dense frames that vorel_run takes go through it now and then.
uint64_t run_shape(vorel* handle, int shape, bool by_run) {
  Frame frame(shape);
  const vorel_frame record = frame.record();
  if (by_run && kList[shape].gap == 0 && record.width % 16 == 0 && record.height % 2 == 0) {
    vorel_run(handle, record.luma, record.chroma, record.width, record.height, VOREL_FMT_NM21,
              record.noise_index);
    vorel_release_frame_buffers(handle);
    return frame.digest();
  }
  vorel_frame_info info{};
  info.size = sizeof(info);
  const vorel_status status = vorel_denoise_frame(handle, &record, &info);
  if (status != VOREL_DONE && status != VOREL_BELOW_GATE) fail(vorel_status_text(status), shape);
  if (info.status != status || info.total_usec < 0) fail("its record does not agree", shape);
  return frame.digest();
}

struct Caller {
  pthread_t thread;
  vorel* shared;  // null: a handle of its own
  int frames;
  int first;
};

void* call(void* argument) {
  const auto* caller = static_cast<const Caller*>(argument);
  vorel* handle = caller->shared;
  if (handle == nullptr) handle = open_handle(1 + caller->first % 3);
  for (int i = 0; i < caller->frames; ++i) {
    const int shape = (caller->first + i) % kShapes;
    // On a shared handle vorel_run asks its callers for a lock of their own.
    const uint64_t digest = run_shape(handle, shape, caller->shared == nullptr && i % 4 == 0);
    if (digest != g_expected[shape]) fail("differs from its first result", shape);
    vorel_handle_info info{};
    info.size = sizeof(info);
    if (vorel_get_handle_info(handle, &info) != VOREL_DONE) fail("has no information", shape);
  }
  if (caller->shared == nullptr && vorel_deinit(handle) != 0) fail("is not released", -1);
  return nullptr;
}

void run_callers(int count, vorel* shared, int frames) {
  Caller callers[kMostHandles] = {};
  for (int i = 0; i < count; ++i) {
    callers[i] = {{}, shared, frames / count, i};
    if (pthread_create(&callers[i].thread, nullptr, call, &callers[i]) != 0) std::abort();
  }
  for (int i = 0; i < count; ++i) pthread_join(callers[i].thread, nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 1;
  const int frames = std::max(std::atoi(argv[1]), 2 * kMostHandles * kCallers);
  g_tuning = argv[2];
  __android_log_set_minimum_priority(ANDROID_LOG_FATAL);
#if defined(WATCHES_MEMORY)
  // jansson is not instrumented: what it writes would look like memory that nobody has written.
  json_set_alloc_funcs([](size_t size) { return std::calloc(1, size); }, std::free);
#endif
  vorel* first = open_handle(1);
  for (int shape = 0; shape < kShapes; ++shape) g_expected[shape] = run_shape(first, shape, false);
  if (vorel_deinit(first) != 0) std::abort();
  for (int handles = 1; handles <= kMostHandles; ++handles) {
    run_callers(handles, nullptr, frames / 2 / kMostHandles);
  }
  vorel* shared = open_handle(3);
  run_callers(kCallers, shared, frames / 2);
  if (vorel_deinit(shared) != 0) std::abort();
  std::printf("%d frames on 1 to %d handles, and %d by %d callers on one\n", frames / 2,
              kMostHandles, frames / 2, kCallers);
  return 0;
}
