// First-in first-out queue of jobs, and the semaphore that wakes workers for it.
#ifndef VOREL_THREADING_JOB_QUEUE_H_
#define VOREL_THREADING_JOB_QUEUE_H_

#include <atomic>
#include <cstdint>

#include "threading/mutex.h"

struct job {
  job* next;
  void* (*function)(void*);
  void* argument;
};

// Binary semaphore: several posts before a wait count as one.
class JobSemaphore {
 public:
  // Lets one waiter through, now or later.
  void post();

  // Lets every waiter through, now and from now on.
  void shutDown();

  void wait();

 private:
  Mutex mutex_;
  Condition changed_;
  int32_t value_ = 0;
  int32_t shutDown_ = 0;
};

// Lock order: the queue's lock, then the semaphore's. As long as the queue holds a job, the
// semaphore is posted or some worker is between its wake-up and `take`, so no job is forgotten.
class JobQueue {
 public:
  JobQueue() = default;
  ~JobQueue() { clear(); }
  JobQueue(const JobQueue&) = delete;
  JobQueue& operator=(const JobQueue&) = delete;

  // Appends a job and wakes a worker. Returns false when memory is short.
  [[nodiscard]] bool add(void* (*function)(void*), void* argument);

  // Blocks until there may be a job or the queue is shut down.
  void waitForJob() { hasJobs_.wait(); }

  // Removes the front job and wakes the next worker when others remain. Null when the queue is
  // empty: another worker was faster. The caller frees the job with `free`.
  [[nodiscard]] job* take();

  // Ends every `waitForJob`, also future ones.
  void shutDown() { hasJobs_.shutDown(); }

  // Frees the queued jobs without running them.
  void clear();

  // May be called with or without other locks held.
  [[nodiscard]] int32_t length() const { return length_.load(); }

 private:
  Mutex lock_;
  job* front_ = nullptr;
  job* rear_ = nullptr;
  JobSemaphore hasJobs_;
  std::atomic<int32_t> length_{0};  // changes under lock_, read without it
};

#endif  // VOREL_THREADING_JOB_QUEUE_H_
