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

// What the rule makes of the case's planes.
inline KernelData run_rule(const Kernel& kernel, const KernelCase& c) {
  KernelData expected{c.size, c.variant, c.pattern, c.guard};
  kernel.make(expected);
  for (const KernelStrip strip : cut_strips(kernel, c.size.height, c.strips)) {
    kernel.plain(expected, strip);
  }
  return expected;
}

// Runs the kernel. Empty when it leaves what the rule left, wherever its planes' guards were, else
// what differs.
inline std::string compare(const Kernel& kernel, const KernelCase& c, const KernelData& expected) {
  KernelData actual{c.size, c.variant, c.pattern, c.guard};
  kernel.make(actual);
  for (const KernelStrip strip : cut_strips(kernel, c.size.height, c.strips)) {
    kernel.run(actual, strip);
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

inline std::string compare(const Kernel& kernel, const KernelCase& c) {
  return compare(kernel, c, run_rule(kernel, c));
}

#endif  // VOREL_TESTS_KERNELS_COMPARE_H_
