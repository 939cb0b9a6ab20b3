// First-in first-out queue of jobs. Plain data: the pool's lock guards it.
#ifndef VOREL_THREADING_JOB_QUEUE_H_
#define VOREL_THREADING_JOB_QUEUE_H_

#include <cstddef>
#include <cstdint>

// Calls of one function on records that lie `stride` bytes apart: handed over in one piece, taken
// call by call.
struct job_batch {
  void* (*function)(void*);
  char* record;      // of the next call
  size_t stride;     // from one record to the next
  int32_t count;     // calls that nobody has taken
  const char* name;  // of each call, in traces; a literal
  job_batch* next = nullptr;
  bool is_queues = false;  // memory of the queue's own
};

// One call.
struct job {
  void* (*function)(void*);
  void* argument;
  const char* name;
};

class JobQueue {
 public:
  JobQueue() = default;
  ~JobQueue();
  JobQueue(const JobQueue&) = delete;
  JobQueue& operator=(const JobQueue&) = delete;

  // Appends at least one call. `batch` stays the caller's and must live until its last call has
  // been taken or dropped.
  void append(job_batch* batch);

  // Appends one call. Its record is one that an earlier call has left, or new: returns false when
  // memory is short.
  [[nodiscard]] bool append(void* (*function)(void*), void* argument);

  [[nodiscard]] bool empty() const { return front_ == nullptr; }

  // Removes the front call; the queue must hold one.
  [[nodiscard]] job take();

  // Drops all calls.
  void clear();

 private:
  void leave(job_batch* batch);

  job_batch* front_ = nullptr;
  job_batch* rear_ = nullptr;
  job_batch* spare_ = nullptr;  // records of the queue's own that hold no call
};

#endif  // VOREL_THREADING_JOB_QUEUE_H_
