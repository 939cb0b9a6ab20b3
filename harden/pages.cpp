// Every kernel and whole frames of every size from 2 x 2 to 256 x 160, on planes that end and begin
// at unreadable pages; the library's own memory does so too.
//   harden_pages STEP SHARD SHARDS    every STEP-th size, of these the SHARD-th (from 0) of SHARDS
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "harden/guarded_allocations.h"
#include "tests/core/digest_cases.h"
#include "tests/kernels/compare.h"
#include "tests/kernels/kernel_list.h"
#include "tests/support/log_sink.h"

namespace {

using Guard = GuardedBytes::Guard;

constexpr int kFirst = 2;
constexpr int kWidths = 256 - kFirst + 1;
constexpr int kHeights = 160 - kFirst + 1;

char g_now[160];
int g_wrong = 0;

void ignore(int, const char*, const char*) {}

void tell_place(int signal_number) {
  static_cast<void>(!write(STDOUT_FILENO, "ACCESS: ", 8));
  static_cast<void>(!write(STDOUT_FILENO, g_now, std::strlen(g_now)));
  std::signal(signal_number, SIG_DFL);
  std::raise(signal_number);
}

void wrong(const std::string& text) {
  ++g_wrong;
  std::printf("WRONG: %s: %s\n", g_now, text.c_str());
}

// Patterns and parameters change with the size.
int try_kernels(KernelSize size, int n) {
  int tried = 0;
  for (const Kernel& kernel : kKernels) {
    if (size.width % kernel.width_step != 0 || size.height % kernel.height_step != 0) continue;
    const int variant = n / kHeights % kernel.variants;
    const Pattern pattern = kAllPatterns[static_cast<size_t>(n) % std::size(kAllPatterns)];
    const KernelData expected = run_rule(kernel, {size, variant, pattern, Guard::kEnd, 1});
    for (const Guard guard : {Guard::kEnd, Guard::kStart}) {
      std::snprintf(g_now, sizeof(g_now), "%s %dx%d variant %d guard %d\n", kernel.name, size.width,
                    size.height, variant, static_cast<int>(guard));
      const std::string difference = compare(kernel, {size, variant, pattern, guard, 1}, expected);
      if (!difference.empty()) wrong(difference);
      ++tried;
    }
  }
  return tried;
}

enum class Call { kDense, kStrided, kRun };

// The denoised bytes of a frame whose planes, and the library's, lie at unreadable pages.
std::vector<uint8_t> denoise(KernelSize size, Call call, int layout, const std::string& tuning,
                             Guard guard) {
  const int gap = call == Call::kStrided ? 1 + size.width % 19 : 0;
  const int pairs = call == Call::kRun ? size.width : (size.width + 1) / 2 * 2;
  const int rows = call == Call::kRun ? size.height / 2 : (size.height + 1) / 2;
  const auto bytes = [&](int width, int height) {
    return static_cast<size_t>((width + gap) * (height - 1) + width);
  };
  GuardedBytes luma(bytes(size.width, size.height), guard);
  GuardedBytes chroma(bytes(pairs, rows), guard);
  std::mt19937 random(static_cast<unsigned>(size.width * kHeights + size.height));
  fill_pattern(luma.data(), luma.size(), Pattern::kPicture, random);
  fill_pattern(chroma.data(), chroma.size(), Pattern::kNear, random);

  const GuardedAllocations allocations(guard);
  vorel_options options = vorel_default_options(size.width, size.height);
  options.workers = 2;
  options.tuning_text = tuning.data();
  options.tuning_text_bytes = tuning.size();
  vorel_status status = VOREL_DONE;
  vorel* handle = vorel_open(&options, &status);
  if (handle != nullptr && call == Call::kRun) {
    vorel_run(handle, luma.data(), chroma.data(), size.width, size.height, VOREL_FMT_NM21, 640);
  } else if (handle != nullptr) {
    const vorel_frame frame{sizeof(frame),    luma.data(), chroma.data(),
                            size.width + gap, pairs + gap, size.width,
                            size.height,      layout,      640};
    status = vorel_denoise_frame(handle, &frame, nullptr);
  }
  if (handle != nullptr) vorel_deinit(handle);
  if (status != VOREL_DONE) wrong("status " + std::to_string(status));
  std::vector<uint8_t> all(luma.data(), luma.data() + luma.size());
  all.insert(all.end(), chroma.data(), chroma.data() + chroma.size());
  return all;
}

int try_frames(KernelSize size, int n) {
  int tried = 0;
  const auto tuning =
      std::next(kDigestTunings.begin(), n % static_cast<int>(kDigestTunings.size()));
  DigestCase c;
  c.tuning = tuning->first;
  const std::string text = "[" + tuning_of(c) + "]";
  const int layout = n % 2 == 0 ? VOREL_LAYOUT_NV21 : VOREL_LAYOUT_NV12;
  for (const Call call : {Call::kDense, Call::kStrided, Call::kRun}) {
    if (call == Call::kRun && size.width % 16 != 0) continue;
    std::vector<uint8_t> at_end;
    for (const Guard guard : {Guard::kEnd, Guard::kStart}) {
      std::snprintf(g_now, sizeof(g_now), "frame %dx%d %s call %d guard %d\n", size.width,
                    size.height, tuning->first.c_str(), static_cast<int>(call),
                    static_cast<int>(guard));
      std::vector<uint8_t> bytes = denoise(size, call, layout, text, guard);
      if (guard == Guard::kStart && bytes != at_end) wrong("other bytes than with the other guard");
      at_end = std::move(bytes);
      ++tried;
    }
  }
  return tried;
}

}  // namespace

int main(int argc, char** argv) {
  const int step = argc > 3 ? std::atoi(argv[1]) : 0;
  const int shard = argc > 3 ? std::atoi(argv[2]) : 0;
  const int shards = argc > 3 ? std::atoi(argv[3]) : 0;
  if (step < 1 || shards < 1) {
    std::fprintf(stderr, "harden_pages STEP SHARD SHARDS\n");
    return 2;
  }
  std::signal(SIGSEGV, tell_place);
  std::signal(SIGBUS, tell_place);
  set_log_sink<ignore>();
  int sizes = 0;
  int kernels = 0;
  int frames = 0;
  for (int n = shard * step; n < kWidths * kHeights; n += step * shards) {
    const KernelSize size{kFirst + n / kHeights, kFirst + n % kHeights};
    kernels += try_kernels(size, n);
    frames += try_frames(size, n);
    ++sizes;
  }
  std::printf("%d sizes, %d calls of kernels, %d frames, %d wrong\n", sizes, kernels, frames,
              g_wrong);
  return g_wrong == 0 ? 0 : 1;
}
