#include <string>

#include "fuzz/doors.h"
#include "fuzz/scratch_folder.h"
#include "vorel/debug.h"
#include "vorel/thread_pool.h"
#include "vorel/wavelet/config.h"

namespace {

// Elements of a plane that an image of this type holds.
size_t elements_of(int type, size_t width, size_t height) {
  switch (type) {
    case VOREL_IMAGE_RAW:
      return width * height;
    case VOREL_IMAGE_YUYV:
      return 2 * width * height;
    case VOREL_IMAGE_NV21:
    case VOREL_IMAGE_NV21M:
      return height * (width / 2) * 3 + (type == VOREL_IMAGE_NV21M ? height * (width % 2) : 0);
    default:
      return 0;
  }
}

// One file at most, of the bytes that its type and part say, or empty where the part is outside.
void dump(FuzzedDataProvider& input) {
  static const ScratchFolder folder;
  const int type = input.ConsumeIntegralInRange(-1, 4);
  const unsigned width = input.ConsumeIntegralInRange(0u, 20u);
  const unsigned height = input.ConsumeIntegralInRange(0u, 10u);
  const unsigned element = input.ConsumeIntegralInRange(1u, 4u);
  int part[4];
  const bool crops = input.ConsumeBool();
  for (int& value : part) {
    value = input.ConsumeIntegralInRange(0, 9) == 0
                ? input.ConsumeIntegral<int>()
                : input.ConsumeIntegralInRange(crops ? 0 : -1, 9);
  }
  const bool cropped = part[0] >= 0 && part[1] >= 0 && part[2] >= 0 && part[3] >= 0;
  const bool second = type == VOREL_IMAGE_NV21M && !cropped;
  const size_t whole = size_t{width} * height;
  const size_t pairs = size_t{width / 2} * height;
  std::vector<uint8_t> first(std::max(whole, second ? 0 : elements_of(type, width, height)) *
                             element);
  std::vector<uint8_t> other(second ? pairs * element : 0);
  const bool there = input.ConsumeIntegralInRange(0, 3) != 0;
  const std::string prefix(input.ConsumeIntegralInRange(0, 9) == 0 ? 1100 : 3, 'p');
  dumpImage(type, there ? folder.path() : (crops ? nullptr : ""), prefix.c_str(),
            crops ? "_s" : nullptr, first.data(), other.data(), width, height, element, part[0],
            part[1], part[2], part[3]);
  const ScratchFolder::Contents dumped = folder.clear();
  const bool inside =
      uint64_t{static_cast<unsigned>(part[2])} + static_cast<unsigned>(part[0]) <= width &&
      uint64_t{static_cast<unsigned>(part[3])} + static_cast<unsigned>(part[1]) <= height;
  const size_t cut = inside ? static_cast<size_t>(part[0]) * static_cast<size_t>(part[1]) : 0;
  const bool made = there && prefix.size() < 1000;
  const size_t expected = made ? (cropped ? cut : elements_of(type, width, height)) * element : 0;
  if (dumped.bytes != expected) {
    differ("bytes of a dump", 0, static_cast<double>(dumped.bytes), static_cast<double>(expected));
  }
  if (dumped.files != (made ? 1 : 0)) std::abort();
}

void take_time() {
  timeval start{};
  set_current_time(&start);
  const int64_t usec = get_elapsed_time_usec(&start);
  const int64_t msec = get_elapsed_time_msec(&start);
  if (usec < 0 || msec > usec / 1000 + 1000) std::abort();
}

void configure(FuzzedDataProvider& input) {
  const int levels[] = {input.ConsumeIntegralInRange(0, 5), input.ConsumeIntegralInRange(0, 5),
                        input.ConsumeIntegralInRange(0, 5)};
  setWtCfg(levels[0], levels[1], levels[2]);
  for (unsigned i = 0; i < 3; ++i) {
    const auto level = static_cast<uint32_t>(levels[i]);
    if (getWtCfg(i) != level || getWtRange(i, WT_SUBBAND_FIRST) != (level == 2 ? 4u : 0u) ||
        getWtRange(i, WT_SUBBAND_LAST) != (level == 2 ? 8u : 7u)) {
      std::abort();
    }
  }
  initLlsMerge(1, 2);
  reconfigureMerge(nullptr, nullptr);
  allocate_memory();
  deallocate_memory();
  if (getWtCfg(0) != 2 || getWtCfg(2) != 4) std::abort();
}

// No CPU is none to bind to: the thread keeps those that it has.
void bind_thread() {
  if (setThreadAffinityMask(0) != -1 || setCurrentThreadAffinityMask(0) != -1) std::abort();
  getThreadAffinityMask();
  getThreadAffinityMask("fuzzer");
}

}  // namespace

void try_debug_doors(FuzzedDataProvider& input) {
  if (input.ConsumeIntegralInRange(0, 7) == 0) return dump(input);
  take_time();
  configure(input);
  bind_thread();
}
