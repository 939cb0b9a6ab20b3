// Every kernel of the list against its rule: widths, patterns, parameters, planes that end and
// start at an unreadable page, and strips in any order.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/kernels/compare.h"
#include "tests/kernels/kernel_list.h"

namespace {

using Guard = GuardedBytes::Guard;

int round_up(int size, int step) { return (size + step - 1) / step * step; }

// Every width up to two vectors and one, then odd and real ones.
std::vector<KernelSize> sizes_of(const Kernel& kernel) {
  constexpr int kHeights[] = {1, 2, 3, 4, 6, 17, 33, 50, 9};
  std::vector<KernelSize> sizes;
  for (int width = kernel.width_step; width <= 65; width += kernel.width_step) {
    sizes.push_back({width, kHeights[sizes.size() % std::size(kHeights)]});
  }
  constexpr KernelSize kLarge[] = {{80, 101},  {93, 7},   {250, 18}, {261, 3},
                                   {1001, 18}, {2064, 3}, {4000, 5}, {4097, 4}};
  for (const KernelSize& size : kLarge) {
    if (size.width <= kernel.largest_width) {
      sizes.push_back({round_up(size.width, kernel.width_step), size.height});
    }
  }
  for (KernelSize& size : sizes) size.height = round_up(size.height, kernel.height_step);
  return sizes;
}

class Kernels : public testing::TestWithParam<Kernel> {};

TEST_P(Kernels, FollowTheRule) {
  for (const KernelSize size : sizes_of(GetParam())) {
    for (const Pattern pattern : kAllPatterns) {
      for (const Guard guard : {Guard::kEnd, Guard::kStart}) {
        ASSERT_EQ(compare(GetParam(), {size, 0, pattern, guard, 1}), "");
      }
    }
  }
}

TEST_P(Kernels, FollowTheRuleWithAnyParameters) {
  const int step = GetParam().width_step;
  for (int variant = 1; variant < GetParam().variants; ++variant) {
    for (const KernelSize size : {KernelSize{1, 1}, {2, 5}, {5, 2}, {9, 37}, {40, 13}, {45, 8}}) {
      const KernelSize rounded{round_up(size.width, step),
                               round_up(size.height, GetParam().height_step)};
      for (const Pattern pattern : kAllPatterns) {
        const Guard guard = size.width % 2 == 0 ? Guard::kEnd : Guard::kStart;
        ASSERT_EQ(compare(GetParam(), {rounded, variant, pattern, guard, 1}), "");
      }
    }
  }
}

// Strips as short as one step, and as a frame is cut; neighbours are read, never written.
TEST_P(Kernels, GiveTheSameInStripsOfAnyOrder) {
  const Kernel& kernel = GetParam();
  if (kernel.strip_step == 0) return;
  for (const int height : {1, 2, 5, 9, 17, 64, 65, 127, 360, 447}) {
    for (const int strips : {2, 5, 64}) {
      for (int variant = 0; variant < std::min(kernel.variants, 4); ++variant) {
        const KernelCase c{{round_up(20, kernel.width_step), round_up(height, kernel.height_step)},
                           variant,
                           Pattern::kRandom,
                           Guard::kEnd,
                           strips};
        ASSERT_EQ(compare(kernel, c), "");
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(List, Kernels, testing::ValuesIn(kKernels),
                         [](const auto& kernel) { return kernel.param.name; });

}  // namespace
