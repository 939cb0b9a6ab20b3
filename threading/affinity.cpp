#include "platform/log.h"
#include "platform/thread_attributes.h"
#include "vorel/thread_pool.h"

int setThreadAffinityMask(int mask) { return set_thread_affinity(static_cast<uint32_t>(mask)); }

int setCurrentThreadAffinityMask(int mask) { return setThreadAffinityMask(mask); }

void getThreadAffinityMask() {
  VOREL_LOGI("CPU affinity 0x%lx", static_cast<unsigned long>(thread_affinity()));
}

void getThreadAffinityMask(const char* who) {
  VOREL_LOGI("getThreadAffinityMask from %s : 0x%lx", who,
             static_cast<unsigned long>(thread_affinity()));
}
