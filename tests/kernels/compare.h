// A kernel of the list beside its rule.
#ifndef VOREL_TESTS_KERNELS_COMPARE_H_
#define VOREL_TESTS_KERNELS_COMPARE_H_

#include "tests/kernels/kernel.h"

struct KernelCase {
  KernelSize size;
  int variant;
  Pattern pattern;
  GuardedBytes::Guard guard;
  int strips;
};

// Runs the kernel and its rule on the same planes. Empty when both leave the same, else what
// differs.
inline std::string compare(const Kernel& kernel, const KernelCase& c) {
  KernelData actual{c.size, c.variant, c.pattern, c.guard};
  KernelData expected{c.size, c.variant, c.pattern, c.guard};
  kernel.make(actual);
  kernel.make(expected);
  for (const KernelStrip strip : cut_strips(kernel, c.size.height, c.strips)) {
    kernel.run(actual, strip);
    kernel.plain(expected, strip);
  }
  for (size_t i = 0; i < actual.planes.size(); ++i) {
    const std::string difference = actual.planes[i].difference(expected.planes[i]);
    if (difference.empty()) continue;
    return std::to_string(c.size.width) + "x" + std::to_string(c.size.height) + ", variant " +
           std::to_string(c.variant) + ", pattern " + std::to_string(static_cast<int>(c.pattern)) +
           ", guard at the " + (c.guard == GuardedBytes::Guard::kEnd ? "end" : "start") + ", " +
           std::to_string(c.strips) + " strips, plane " + std::to_string(i) + ": " + difference;
  }
  return "";
}

#endif  // VOREL_TESTS_KERNELS_COMPARE_H_
