#include "threading/run_jobs.h"

#include "platform/trace.h"
#include "threading/thread_pool_state.h"

void run_batch(ThreadPool* pool, job_batch batch) {
  if (pool != nullptr && add_batch(pool, &batch)) {
    const TraceSlice slice("wait");
    pool->wait();
    return;
  }
  for (; batch.count > 0; --batch.count, batch.record += batch.stride) {
    const TraceSlice slice(batch.name);
    batch.function(batch.record);
  }
}
