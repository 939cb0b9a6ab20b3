// What the processor can do.
#ifndef VOREL_PLATFORM_CPU_H_
#define VOREL_PLATFORM_CPU_H_

// Whether the instructions that the kernels are compiled for are there: half-precision arithmetic
// on Arm; AVX2, FMA, BMI and F16C on x86-64. Compiled for the plain architecture, so that it can
// be asked anywhere.
[[nodiscard]] bool cpu_runs_kernels();

// The missing feature's name for the log line; "none" when all are there.
[[nodiscard]] const char* missing_cpu_feature();

// Processors that the calling thread may run on; at least 1.
[[nodiscard]] int usable_cpus();

// From now on `usable_cpus` gives `count`; 0 ends that. For benchmarks and tests that want the work
// cut as another machine has it.
void assume_usable_cpus(int count);

#endif  // VOREL_PLATFORM_CPU_H_
