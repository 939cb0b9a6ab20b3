// What a ThreadPool shares with its workers.
#ifndef VOREL_THREADING_THREAD_POOL_STATE_H_
#define VOREL_THREADING_THREAD_POOL_STATE_H_

#include <pthread.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <type_traits>
#include <vector>

#include "threading/job_queue.h"
#include "threading/mutex.h"
#include "threading/thread_name.h"
#include "vorel/thread_pool.h"

// Record of one worker. All fields but `id` are set before the worker starts and then belong to
// it; `id` belongs to the creator.
struct thread {
  int32_t index;
  pthread_t id;
  std::shared_ptr<thpool> state;  // handed over to the worker, which keeps it until it ends
  ThreadPool* owner;              // holds the keep-alive flag
  uint32_t affinity_mask;
  int32_t name_tag;
};

// Room for what a shared pointer stores beside its object.
inline constexpr size_t kSharedOverhead = 128;

// Hands out one block of malloc that its user has checked beforehand. Without exceptions the
// standard containers have no way to report that memory is short.
template <typename T>
class PreparedAllocator {
 public:
  using value_type = T;

  PreparedAllocator(void* block, size_t bytes) : block_(block), bytes_(bytes) {}
  template <typename U>
  PreparedAllocator(const PreparedAllocator<U>& other)  // implicit, as containers expect it
      : block_(other.block()), bytes_(other.bytes()) {}

  T* allocate(size_t count) {
    if (count > bytes_ / sizeof(T)) __builtin_trap();  // a second or a larger request: our fault
    return static_cast<T*>(block_);
  }
  void deallocate(T* block, size_t) { std::free(block); }

  void* block() const { return block_; }
  size_t bytes() const { return bytes_; }

  template <typename U>
  bool operator==(const PreparedAllocator<U>& other) const {
    return block_ == other.block();
  }

 private:
  void* block_;
  size_t bytes_;
};

// One lock for counters and queue: a worker that has run a job reports it and takes the next one in
// one round. Jobs run with no lock held.
struct thpool {
  thpool(size_t worker_count, const PreparedAllocator<thread>& allocator) : workers(allocator) {
    if (worker_count > 0) workers.resize(worker_count);
  }

  std::vector<thread, PreparedAllocator<thread>> workers;
  char thread_name[kThreadNameSize] = {};
  Mutex lock;                       // for all that follows
  int32_t num_threads = 0;          // that are to start
  int32_t num_threads_alive = 0;    // workers that have started and not ended
  int32_t num_threads_working = 0;  // workers that run a job
  int32_t num_threads_waiting = 0;  // workers that wait for a job, woken ones too
  JobQueue queue;
  Condition has_jobs;    // a job has come, or the workers are to end
  Condition all_idle;    // all workers have started, or no job is queued or runs
  Condition all_exited;  // no worker is alive
};

// Queues a batch and wakes as many workers as it has calls. Returns false, logged, without workers.
[[nodiscard]] bool add_batch(ThreadPool* pool, job_batch* batch);

#endif  // VOREL_THREADING_THREAD_POOL_STATE_H_
