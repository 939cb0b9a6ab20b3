#include "platform/thread_attributes.h"

#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstring>

namespace {

pid_t thread_id() { return static_cast<pid_t>(syscall(SYS_gettid)); }

}  // namespace

void set_thread_name(const char* name) { prctl(PR_SET_NAME, name, 0, 0, 0); }

int set_thread_affinity(uint32_t mask) {
  return static_cast<int>(syscall(SYS_sched_setaffinity, thread_id(), sizeof(mask), &mask));
}

uint64_t thread_affinity() {
  cpu_set_t set;
  CPU_ZERO(&set);
  if (sched_getaffinity(thread_id(), sizeof(set), &set) != 0) return 0;
  uint64_t first = 0;
  std::memcpy(&first, &set, sizeof(first));
  return first;
}

void set_thread_nice(int nice_value) {
  setpriority(PRIO_PROCESS, static_cast<id_t>(thread_id()), nice_value);
}
