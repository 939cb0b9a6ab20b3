// Every kernel of the list on one core, a frame's worth in the strips in which a frame has it.
#include "bench/bench_frames.h"
#include "tests/kernels/kernel_list.h"

namespace {

void register_kernel(const Kernel& kernel, const std::string& name, int variant) {
  register_for_frames(
      "kernel/" + name, [&kernel, variant](benchmark::State& state, const FrameSize& frame) {
        const int height = (frame.height + (1 << kernel.frame_shift) - 1) >> kernel.frame_shift;
        KernelData data{{frame.width >> kernel.frame_shift, height},
                        variant,
                        Pattern::kPicture,
                        GuardedBytes::Guard::kEnd};
        kernel.make(data);
        const auto strips = cut_strips(kernel, height, kernel.frame_strips);
        for (auto _ : state) {
          for (const KernelStrip strip : strips) kernel.run(data, strip);
          benchmark::ClobberMemory();
        }
      });
}

[[maybe_unused]] const bool g_registered = [] {
  for (const Kernel& kernel : kKernels) {
    register_kernel(kernel, kernel.name, 0);
    if (kernel.also.name != nullptr) {
      register_kernel(kernel, std::string(kernel.name) + "_" + kernel.also.name,
                      kernel.also.variant);
    }
  }
  return true;
}();

}  // namespace
