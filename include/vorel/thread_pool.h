// A fixed set of worker threads that take jobs from one queue, and CPU affinity of threads.
#ifndef VOREL_THREAD_POOL_H_
#define VOREL_THREAD_POOL_H_

#include <atomic>
#include <cstdint>
#include <memory>

#include "vorel/export.h"

struct thpool;  // workers, counters and job queue; shared by the pool object and its workers
struct thread;  // record of one worker
struct job_batch;

/// Runs jobs on worker threads that live from `init` to `deinit`. Both may be called again and
/// again on one object. Calls of `init`, `wait` and `deinit` belong to one thread at a time; jobs
/// may be queued from any thread, from a running job too.
class VOREL_EXPORT ThreadPool {
 public:
  ThreadPool();

  /// Drops the pool's state. Workers are not stopped by it: call `deinit` first.
  ~ThreadPool();

  ThreadPool(const ThreadPool&) = delete;
  ThreadPool& operator=(const ThreadPool&) = delete;

  /// Callers: starts `numThreads` workers (none if negative) named "vorel-<nameTag>-<index>", each
  /// bound to the CPUs of the bit mask `affinityMask`, and returns when all of them run. Returns 0,
  /// or -1 (logged) when memory is short or a thread cannot be created; then no worker runs. With 0
  /// workers queued jobs never run and `wait` blocks. A second `init` without `deinit` lets the
  /// running jobs finish, drops the queued ones and stops the workers before it starts the new
  /// ones.
  int init(int numThreads, int affinityMask, int nameTag);

  /// Frame: the same with workers named "<threadName>-<nameTag>-<index>"; at most 8 characters of
  /// `threadName` are kept.
  int init(int numThreads, int affinityMask, int nameTag, const char* threadName);

  /// Callers: queues `function(argument)`; its result is ignored. `argument` stays the caller's and
  /// must live until the job has run. Returns 0, or -1 (logged) without workers or memory.
  int addWork(void* (*function)(void*), void* argument);

  /// Frame: blocks until the queue is empty and no worker is busy; jobs queued by jobs count too.
  /// Returns 0, or -1 (logged) before `init` and after `deinit`.
  int wait();

  /// Callers: number of jobs running at this moment, or -1 (logged) before `init` and after
  /// `deinit`.
  int num_threads_working();

  /// Frame: lets the running jobs finish, drops the queued ones without running them, and stops the
  /// workers. Does nothing without workers.
  void deinit();

  /// Frame: fills one worker record of this pool and starts its thread, detached. Returns 0, or -1
  /// when the thread cannot be created. `init` does this for each worker.
  int thread_init(thread* record, int index, ThreadPool* owner, int affinityMask, int nameTag);

  /// Frame: body of a worker; `record` is its `thread` record. Returns null.
  static void* thread_do(void* record);

 private:
  friend bool add_batch(ThreadPool* pool, job_batch* batch);

  std::atomic<int32_t> mKeepAlive;
  std::shared_ptr<thpool> mThreadPool;
};

/// Callers: binds the calling thread to the CPUs of the 32-bit mask (bit 0 = CPU 0). Returns the
/// result of the system call: 0, or -1 with errno set (some emulators refuse a 4-byte mask).
VOREL_EXPORT int setThreadAffinityMask(int mask);

/// Callers: the same under the name that code outside the pool uses.
VOREL_EXPORT int setCurrentThreadAffinityMask(int mask);

/// Callers: logs the first 64 bits of the calling thread's CPU set.
VOREL_EXPORT void getThreadAffinityMask();

/// Callers: the same with the caller's name `who` in the line.
VOREL_EXPORT void getThreadAffinityMask(const char* who);

#endif  // VOREL_THREAD_POOL_H_
