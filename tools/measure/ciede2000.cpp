#include "tools/measure/ciede2000.h"

#include <algorithm>

#include "platform/vectorize.h"
#include "tools/measure/ciede2000_rule.h"
#include "tools/pictures/gamma.h"

// Vectors of 4 and 8 where the processor has them; the results are the same.
// The thread sanitizer cannot run what chooses between the forms.
#if defined(__x86_64__) && !__has_feature(thread_sanitizer)
#define VOREL_FOR_PROCESSORS [[gnu::target_clones("default", "arch=x86-64-v3", "arch=x86-64-v4")]]
#else
#define VOREL_FOR_PROCESSORS
#endif

namespace tool {
namespace {

// Pixels that are converted and compared at a time.
constexpr size_t kBlock = 128;

struct LightBlock {
  double r[kBlock];
  double g[kBlock];
  double b[kBlock];
};

VOREL_FOR_PROCESSORS
void find_differences(const LightBlock& first, const LightBlock& second, double* differences) {
  VOREL_VECTORIZE
  for (size_t i = 0; i < kBlock; ++i) {
    differences[i] = ciede2000_rule(lab_of({first.r[i], first.g[i], first.b[i]}),
                                    lab_of({second.r[i], second.g[i], second.b[i]}));
  }
}

}  // namespace

double ciede2000(const Lab& first, const Lab& second) { return ciede2000_rule(first, second); }

LabConverter::LabConverter() {
  for (size_t i = 0; i < light_.size(); ++i)
    light_[i] = decode_srgb(static_cast<double>(i) / 255.0);
}

Lab LabConverter::operator()(const uint8_t* rgb) const {
  return lab_of({light_[rgb[0]], light_[rgb[1]], light_[rgb[2]]});
}

double LabConverter::difference_sum(const uint8_t* first, const uint8_t* second, int width) const {
  const auto fill = [this](LightBlock& block, const uint8_t* rgb, size_t count) {
    for (size_t i = 0; i < count; ++i) {
      block.r[i] = light_[rgb[3 * i]];
      block.g[i] = light_[rgb[3 * i + 1]];
      block.b[i] = light_[rgb[3 * i + 2]];
    }
  };
  LightBlock a{};
  LightBlock b{};
  double differences[kBlock];
  double sum = 0.0;
  const auto pixels = static_cast<size_t>(width);
  for (size_t x = 0; x < pixels; x += kBlock) {
    const size_t count = std::min(kBlock, pixels - x);
    fill(a, first + 3 * x, count);
    fill(b, second + 3 * x, count);
    find_differences(a, b, differences);
    for (size_t i = 0; i < count; ++i) sum += differences[i];
  }
  return sum;
}

}  // namespace tool
