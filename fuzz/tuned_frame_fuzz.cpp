// Any value in any field of a tuning, then a frame. Its spatial path is compared with the plain
// form, and the whole with the same frame on another handle, with other workers, at another debug
// level, in the other layout, with gaps between its rows.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "core/handle.h"
#include "fuzz/debug_level.h"
#include "fuzz/frame_input.h"
#include "fuzz/plain_frame.h"

namespace {

constexpr int kBlocks = 12;  // of 16 x 16 pixels, at most
constexpr int kFewBlocks = 4;
constexpr int kTallest = 130;  // the box filter's strips have one row and two

vorel* g_dense;
vorel* g_strided;

vorel* open_handle(int workers) {
  vorel_options options = vorel_default_options(16 * kBlocks, 16);
  options.workers = workers;
  options.nice = 0;
  options.sensor_id = 0xFFFF;  // that has no tuning file
  vorel* handle = vorel_open(&options, nullptr);
  if (handle == nullptr) __builtin_trap();
  return handle;
}

void require_equal(const char* what, const uint8_t* actual, const uint8_t* expected, size_t count) {
  const auto differing = std::mismatch(actual, actual + count, expected);
  if (differing.first == actual + count) return;
  std::fprintf(stderr, "%s %zd of %zu is %d, expected %d\n", what, differing.first - actual, count,
               *differing.first, *differing.second);
  std::abort();
}

void run_frame(vorel* handle, const vorel_frame& frame) {
  const vorel_status status = vorel_denoise_frame(handle, &frame, nullptr);
  if (status == VOREL_DONE || status == VOREL_BELOW_GATE) return;
  std::fprintf(stderr, "%s\n", vorel_status_text(status));
  std::abort();
}

// The same pixels in rows with gaps, each pair of chroma bytes swapped.
struct StridedCopy {
  StridedCopy(const PlainFrame& frame, int gap_)
      : width(frame.width),
        height(frame.height),
        gap(gap_),
        luma(bytes(height)),
        chroma(bytes(height / 2)) {
    for (int y = 0; y < height; ++y) copy_row(frame.luma, y, luma.data(), false);
    for (int y = 0; y < height / 2; ++y) copy_row(frame.chroma, y, chroma.data(), true);
  }

  size_t bytes(int rows) const {
    return static_cast<size_t>(rows - 1) * static_cast<size_t>(width + gap) +
           static_cast<size_t>(width);
  }
  uint8_t* row(GuardedBytes& plane, int y) const {
    return plane.data() + static_cast<size_t>(y) * static_cast<size_t>(width + gap);
  }
  void copy_row(const std::vector<uint8_t>& from, int y, uint8_t* plane, bool swapped) const {
    const uint8_t* src = from.data() + static_cast<size_t>(y) * static_cast<size_t>(width);
    uint8_t* dst = plane + static_cast<size_t>(y) * static_cast<size_t>(width + gap);
    for (int x = 0; x < width; ++x) dst[x] = src[swapped ? x ^ 1 : x];
  }

  int width;
  int height;
  int gap;
  GuardedBytes luma;
  GuardedBytes chroma;
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  prepare_frames();
  g_dense = open_handle(2);
  g_strided = open_handle(1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider input(data, size);
  fill_tuning(input, may_take_wavelet(data, size), g_dense->tuning);
  g_strided->tuning = g_dense->tuning;
  const int blocks = input.ConsumeIntegralInRange(0, 7) == 0 ? kBlocks : kFewBlocks;
  const int cols = input.ConsumeIntegralInRange(1, blocks);
  const int width = 16 * cols;
  const int height =
      2 * input.ConsumeIntegralInRange(1, std::min(kTallest, 16 * (blocks / cols)) / 2);
  const int gap = input.ConsumeIntegralInRange(1, 40);
  const int noise_index = any_int(input, 0, 10000);
  const DebugLevel level(input, g_dense);
  FuzzFrame frame(input, width, height, width, width, height / 2, VOREL_LAYOUT_NV21);
  PlainFrame plain{width, height, {}, {}};
  plain.luma.assign(frame.luma().data(), frame.luma().data() + frame.luma().size());
  plain.chroma.assign(frame.chroma().data(), frame.chroma().data() + frame.chroma().size());
  StridedCopy strided(plain, gap);

  run_frame(g_dense, frame.record(noise_index));
  run_frame(g_strided, {sizeof(vorel_frame), strided.luma.data(), strided.chroma.data(),
                        width + gap, width + gap, width, height, VOREL_LAYOUT_NV12, noise_index});
  // The frame call leaves the values in force in the handle's tuning.
  const cnr_tuning& tuning = g_dense->tuning;
  const bool gated = noise_index < tuning.enableNoiseIndex;
  if (!gated && tuning.enable != 0) denoise_plainly(tuning, plain);
  require_equal("luma", frame.luma().data(), plain.luma.data(), plain.luma.size());
  if (gated || tuning.mfd_uv_tuning.enable == 0) {
    require_equal("chroma", frame.chroma().data(), plain.chroma.data(), plain.chroma.size());
  }
  plain.chroma.assign(frame.chroma().data(), frame.chroma().data() + frame.chroma().size());
  StridedCopy expected(plain, gap);
  const size_t row_bytes = static_cast<size_t>(width);
  for (int y = 0; y < height; ++y) {
    require_equal("strided luma", strided.row(strided.luma, y), expected.row(expected.luma, y),
                  row_bytes);
    if (y >= height / 2) continue;
    require_equal("strided chroma", strided.row(strided.chroma, y),
                  expected.row(expected.chroma, y), row_bytes);
  }
  return 0;
}
