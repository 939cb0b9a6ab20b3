// The frames of tests/core/data/digests in every way that must not change a byte: both calls, both
// layouts, dense and strided, debug levels, several handles at once. The row builds this program
// with several compilers' flags.
//   harden_same_bytes PIXELS HANDLES    frames up to PIXELS; 1, 2, 3 .. HANDLES handles at once
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "tests/core/digest_cases.h"
#include "tests/support/log_sink.h"

namespace {

constexpr int kDumpLevel = 3;
constexpr int kLevels = 6;
// Larger frames are left out where files are written and where many run at once.
constexpr int kSmallPixels = 160000;
constexpr uint8_t kOutside = 0x5A;

enum class Call { kRun, kDense, kStrided };

std::atomic<int> g_frames{0};
std::atomic<int> g_wrong{0};

void ignore(int, const char*, const char*) {}

// Moves rows between planes of different strides; chroma pairs may change places.
void copy_rows(const uint8_t* from, size_t from_stride, uint8_t* to, size_t to_stride, int rows,
               int bytes, bool swap) {
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < bytes; ++col) to[col] = from[swap ? col ^ 1 : col];
    from += from_stride;
    to += to_stride;
  }
}

// A strided copy of a plane; what lies between its rows must stay.
class StridedPlane {
 public:
  StridedPlane(int width, int rows, int gap)
      : width_(width),
        rows_(rows),
        stride_(static_cast<size_t>(width + gap)),
        bytes_(stride_ * static_cast<size_t>(rows), kOutside) {}

  uint8_t* data() { return bytes_.data(); }
  int32_t stride() const { return static_cast<int32_t>(stride_); }
  void take(const uint8_t* dense, bool swap) {
    copy_rows(dense, static_cast<size_t>(width_), data(), stride_, rows_, width_, swap);
  }
  void give(uint8_t* dense, bool swap) {
    copy_rows(data(), stride_, dense, static_cast<size_t>(width_), rows_, width_, swap);
  }
  bool gaps_are_whole() const {
    for (size_t i = 0; i < bytes_.size(); ++i) {
      if (i % stride_ >= static_cast<size_t>(width_) && bytes_[i] != kOutside) return false;
    }
    return true;
  }

 private:
  int width_;
  int rows_;
  size_t stride_;
  std::vector<uint8_t> bytes_;
};

bool denoise(vorel* handle, const DigestCase& c, Call call, int layout, TestFrame* frame) {
  const bool nv21 = c.format == "nv21";
  if (call == Call::kRun) {
    vorel_run(handle, frame->y.data(), frame->uv.data(), c.width, c.height,
              static_cast<int>(nv21 ? VOREL_FMT_NV21 : VOREL_FMT_NM21), c.noise_index);
    vorel_release_frame_buffers(handle);
    return true;
  }
  const int gap = call == Call::kStrided ? 37 : 0;
  const bool swap = layout == VOREL_LAYOUT_NV12;
  StridedPlane luma(c.width, c.height, gap);
  StridedPlane chroma(c.width, c.height / 2, gap);
  luma.take(frame->y.data(), false);
  chroma.take(frame->uv.data(), swap);
  const vorel_frame given{sizeof(vorel_frame), luma.data(), chroma.data(), luma.stride(),
                          chroma.stride(),     c.width,     c.height,      layout,
                          c.noise_index};
  const vorel_status status = vorel_denoise_frame(handle, &given, nullptr);
  luma.give(frame->y.data(), false);
  chroma.give(frame->uv.data(), swap);
  return status == VOREL_DONE && luma.gaps_are_whole() && chroma.gaps_are_whole();
}

void check(const DigestCase& c, Call call, int layout, const char* way) {
  const std::string text = "[" + tuning_of(c) + "]";
  vorel_options options = vorel_default_options(c.width, c.height);
  options.tuning_text = text.data();
  options.tuning_text_bytes = text.size();
  vorel* handle = vorel_open(&options, nullptr);
  TestFrame frame(c.width, c.height, 11);
  fill_content(c.content, &frame);
  const bool done = handle != nullptr && denoise(handle, c, call, layout, &frame);
  if (handle != nullptr) vorel_deinit(handle);
  ++g_frames;
  const std::string found = digest(frame.bytes());
  if (done && found == c.digest) return;
  ++g_wrong;
  std::printf("WRONG: %dx%d %s %d %s %s, %s, layout %d, %s: %s, listed %s\n", c.width, c.height,
              c.format.c_str(), c.noise_index, c.tuning.c_str(), c.content.c_str(),
              call == Call::kRun     ? "vorel_run"
              : call == Call::kDense ? "frame call"
                                     : "frame call, strided",
              layout, way, found.c_str(), c.digest.c_str());
}

void check_calls(const std::vector<DigestCase>& cases) {
  for (const DigestCase& c : cases) {
    check(c, Call::kRun, VOREL_LAYOUT_NV21, "one handle");
    // Chroma of an odd last row counts in the frame call only.
    if (c.height % 2 != 0) continue;
    for (const Call call : {Call::kDense, Call::kStrided}) {
      for (const int layout : {VOREL_LAYOUT_NV21, VOREL_LAYOUT_NV12}) {
        check(c, call, layout, "one handle");
      }
    }
  }
}

void check_levels(const std::vector<DigestCase>& cases, const std::vector<DigestCase>& small) {
  const TempDir dumps;
  const ScopedEnv folder("VOREL_DUMP_DIR", dumps.path().c_str());
  for (int level = 1; level < kLevels; ++level) {
    const std::string way = "debug level " + std::to_string(level);
    const ScopedEnv variable(kDebugVariable, std::to_string(level).c_str());
    for (const DigestCase& c : level < kDumpLevel ? cases : small) {
      check(c, Call::kRun, VOREL_LAYOUT_NV21, way.c_str());
    }
  }
}

// Each of them starts elsewhere in the list.
void check_handles(const std::vector<DigestCase>& cases, int handles) {
  const std::string way = std::to_string(handles) + " handles at once";
  std::vector<std::thread> threads;
  for (int i = 0; i < handles; ++i) {
    threads.emplace_back([&, i] {
      for (size_t n = 0; n < cases.size(); ++n) {
        const DigestCase& c = cases[(n + static_cast<size_t>(i)) % cases.size()];
        const bool even = c.height % 2 == 0 && i % 2 != 0;
        check(c, even ? Call::kDense : Call::kRun, VOREL_LAYOUT_NV21, way.c_str());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace

int main(int argc, char** argv) {
  const int pixels = argc > 2 ? std::atoi(argv[1]) : 0;
  const int most_handles = argc > 2 ? std::atoi(argv[2]) : 0;
  set_log_sink<ignore>();
  std::vector<DigestCase> cases;
  std::vector<DigestCase> small;
  for (const DigestCase& c : read_digest_cases()) {
    if (c.width * c.height <= pixels) cases.push_back(c);
    if (c.width * c.height <= std::min(pixels, kSmallPixels)) small.push_back(c);
  }
  if (small.empty()) {
    std::fprintf(stderr, "harden_same_bytes PIXELS HANDLES\n");
    return 2;
  }
  check_calls(cases);
  check_levels(cases, small);
  for (int handles = 1; handles <= most_handles; ++handles) check_handles(small, handles);
  std::printf("%d frames, %d wrong\n", g_frames.load(), g_wrong.load());
  return g_wrong == 0 ? 0 : 1;
}
