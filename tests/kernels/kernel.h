// What the kernel list says of a kernel.
#ifndef VOREL_TESTS_KERNELS_KERNEL_H_
#define VOREL_TESTS_KERNELS_KERNEL_H_

#include <algorithm>
#include <ostream>
#include <random>
#include <vector>

#include "tests/support/planes.h"

// Columns and rows in a kernel's own terms; a strip is cut from the rows.
struct KernelSize {
  int width;
  int height;
};

struct KernelStrip {
  int first;
  int end;
};

// Planes of one call, inputs and outputs alike: everything is compared, so that an input that is
// written or a sample beside the output that is touched shows too.
struct KernelData {
  KernelSize size;
  int variant;  // of the parameters; 0 are those that a frame uses
  Pattern pattern;
  GuardedBytes::Guard guard;
  std::mt19937 random{1};
  std::vector<Plane> planes{};

  void add_input(int rows, int cols, Plane::Samples samples = Plane::Samples::kBytes) {
    planes.emplace_back(rows, cols, samples, guard).fill(pattern, random);
  }
  void add_output(int rows, int cols, Plane::Samples samples = Plane::Samples::kBytes) {
    planes.emplace_back(rows, cols, samples, guard).fill(0xA5);
  }
  uint8_t* bytes(size_t plane) { return planes[plane].bytes(); }
  _Float16* halves(size_t plane) { return planes[plane].halves(); }
};

// A set of parameters that the benchmarks time too.
struct NamedVariant {
  const char* name;
  int variant;
};

struct Kernel {
  const char* name;
  void (*make)(KernelData&);  // adds the planes
  void (*run)(KernelData&, KernelStrip);
  void (*plain)(KernelData&, KernelStrip);  // the rule, sample by sample

  int variants = 1;
  int strip_step = 0;  // strips start at multiples of it; 0: the rows are not cut
  int width_step = 1;
  int height_step = 1;
  int largest_width = 4097;  // that the test tries
  int frame_shift = 0;       // a frame's size is shifted right by it
  int frame_strips = 1;
  NamedVariant also{};

  // Inner loops for scripts/throughput.py, or null; described there.
  const char* arm_loops = nullptr;
};

inline void PrintTo(const Kernel& kernel, std::ostream* out) { *out << kernel.name; }

// The whole, or about as many strips as asked for, the last one first; it takes the remainder.
inline std::vector<KernelStrip> cut_strips(const Kernel& kernel, int height, int strips) {
  const int step = kernel.strip_step;
  const int rows = step == 0 ? height : std::max(1, height / strips / step) * step;
  std::vector<KernelStrip> cuts;
  for (int first = 0; first < height; first = cuts.front().end) {
    const bool last = first + 2 * rows > height;
    cuts.insert(cuts.begin(), {first, last ? height : first + rows});
  }
  return cuts;
}

#define DECLARE_KERNEL(kernel)                 \
  void make_##kernel(KernelData&);             \
  void run_##kernel(KernelData&, KernelStrip); \
  void plain_##kernel(KernelData&, KernelStrip)
#define FORMS(kernel) .make = make_##kernel, .run = run_##kernel, .plain = plain_##kernel

#endif  // VOREL_TESTS_KERNELS_KERNEL_H_
