#include "platform/cpu.h"

#if defined(__aarch64__)
#include <sys/auxv.h>
#endif

#include <sched.h>

#include <atomic>
#include <cstring>

const char* missing_cpu_feature() {
#if defined(__aarch64__)
  // Bit positions of the kernel's HWCAP word.
  constexpr unsigned long kFphp = 1ul << 9;
  constexpr unsigned long kAsimdhp = 1ul << 10;
  const unsigned long found = getauxval(AT_HWCAP);
  if ((found & kFphp) == 0 || (found & kAsimdhp) == 0) return "fp16";
#elif defined(__x86_64__)
  __builtin_cpu_init();
  if (!__builtin_cpu_supports("avx2")) return "avx2";
  if (!__builtin_cpu_supports("f16c")) return "f16c";
  if (!__builtin_cpu_supports("fma")) return "fma";
  if (!__builtin_cpu_supports("bmi")) return "bmi";
  if (!__builtin_cpu_supports("bmi2")) return "bmi2";
#endif
  return "none";
}

bool cpu_runs_kernels() { return std::strcmp(missing_cpu_feature(), "none") == 0; }

static std::atomic<int> assumed_cpus{0};

void assume_usable_cpus(int count) { assumed_cpus = count; }

int usable_cpus() {
  if (assumed_cpus > 0) return assumed_cpus;
  cpu_set_t set;
  CPU_ZERO(&set);
  if (sched_getaffinity(0, sizeof(set), &set) != 0) return 1;
  const int count = CPU_COUNT(&set);
  return count > 0 ? count : 1;
}
