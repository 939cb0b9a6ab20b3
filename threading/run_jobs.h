// Runs an array of job records.
#ifndef VOREL_THREADING_RUN_JOBS_H_
#define VOREL_THREADING_RUN_JOBS_H_

#include "threading/job_queue.h"
#include "vorel/thread_pool.h"

// Runs the calls of `batch` on the pool's workers and waits for them; without workers (null, or not
// started: logged) they run on the calling thread.
void run_batch(ThreadPool* pool, job_batch batch);

// Runs `function` on every record of jobs[0 .. count - 1]; traces show each call as `name`, a
// literal.
template <typename Job>
void run_jobs(ThreadPool* pool, void* (*function)(void*), Job* jobs, int count,
              const char* name = "job") {
  if (count > 0) {
    run_batch(pool, {function, reinterpret_cast<char*>(jobs), sizeof(Job), count, name});
  }
}

#endif  // VOREL_THREADING_RUN_JOBS_H_
