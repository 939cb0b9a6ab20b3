// Runs an array of job records.
#ifndef VOREL_THREADING_RUN_JOBS_H_
#define VOREL_THREADING_RUN_JOBS_H_

#include "vorel/thread_pool.h"

// Runs `function` on every record of jobs[0 .. count - 1] on the pool's workers and waits for them.
// A record that cannot be queued (no pool, no memory) runs on the calling thread.
template <typename Job>
void run_jobs(ThreadPool* pool, void* (*function)(void*), Job* jobs, int count) {
  bool queued = false;
  for (int i = 0; i < count; ++i) {
    if (pool != nullptr && pool->addWork(function, &jobs[i]) == 0) {
      queued = true;
    } else {
      function(&jobs[i]);
    }
  }
  if (queued) pool->wait();
}

#endif  // VOREL_THREADING_RUN_JOBS_H_
