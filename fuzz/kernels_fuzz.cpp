// Any kernel of the list at any size, cut and parameters, on any samples, against its plain form.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "tests/kernels/kernel_list.h"

namespace {

int rounded(FuzzedDataProvider& input, int largest, int step) {
  return step * input.ConsumeIntegralInRange(1, (largest + step - 1) / step);
}

// Byte planes take the input's bytes over and over, both sets alike.
void overwrite(KernelData& actual, KernelData& expected, const std::vector<uint8_t>& bytes) {
  for (size_t plane = 0; plane < actual.planes.size() && !bytes.empty(); ++plane) {
    if (actual.planes[plane].samples() != Plane::Samples::kBytes) continue;
    for (size_t i = 0; i < actual.planes[plane].count(); ++i) {
      actual.bytes(plane)[i] = expected.bytes(plane)[i] = bytes[(i + plane) % bytes.size()];
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider input(data, size);
  const Kernel& kernel = kKernels[input.ConsumeIntegralInRange<size_t>(0, std::size(kKernels) - 1)];
  const KernelSize planes{rounded(input, 70, kernel.width_step),
                          rounded(input, 24, kernel.height_step)};
  const int variant = input.ConsumeIntegralInRange(0, kernel.variants - 1);
  const Pattern pattern = input.PickValueInArray(kAllPatterns);
  const auto guard = input.ConsumeBool() ? GuardedBytes::Guard::kEnd : GuardedBytes::Guard::kStart;
  const int strips = kernel.strip_step == 0 ? 1 : input.ConsumeIntegralInRange(1, 8);
  const uint32_t seed = input.ConsumeIntegral<uint32_t>();
  KernelData actual{planes, variant, pattern, guard, std::mt19937(seed)};
  KernelData expected{planes, variant, pattern, guard, std::mt19937(seed)};
  kernel.make(actual);
  kernel.make(expected);
  overwrite(actual, expected, input.ConsumeRemainingBytes<uint8_t>());
  for (const KernelStrip strip : cut_strips(kernel, planes.height, strips)) {
    kernel.run(actual, strip);
    kernel.plain(expected, strip);
  }
  for (size_t i = 0; i < actual.planes.size(); ++i) {
    const std::string difference = actual.planes[i].difference(expected.planes[i]);
    if (difference.empty()) continue;
    std::fprintf(stderr, "%s, %d x %d, variant %d, %d strips, plane %zu: %s\n", kernel.name,
                 planes.width, planes.height, variant, strips, i, difference.c_str());
    std::abort();
  }
  return 0;
}
