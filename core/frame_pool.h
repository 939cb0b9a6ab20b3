// The workers of a handle's frames: started for a frame, on a thread of their own so that it
// overlaps with the frame's set-up, and stopped at its end.
#ifndef VOREL_CORE_FRAME_POOL_H_
#define VOREL_CORE_FRAME_POOL_H_

#include <pthread.h>

#include <atomic>
#include <cstdint>

#include "threading/thread_name.h"
#include "vorel/thread_pool.h"

struct frame_pool {
  ThreadPool* threads;                  // made at init, null when memory was short
  std::atomic<uint8_t> ready;           // 1 while the workers run
  std::atomic<uint8_t> starter_joined;  // 1 when no starting thread waits to be joined
  pthread_t starter;
  int32_t worker_count;
  uint32_t cpu_mask;
  char thread_name[kThreadNameSize];
};

// Begins to start the workers, after a frame that has not stopped them was settled. Returns false
// when the starting thread cannot be created.
[[nodiscard]] bool start_pool(frame_pool* pool);

// Waits until the starting thread has ended; `ready` then tells whether the workers run.
void join_pool(frame_pool* pool);

// Stops the workers if they run.
void stop_pool(frame_pool* pool);

// Joins and stops, whatever the last frame has left to do. Leaves the pool as after init.
void settle_pool(frame_pool* pool);

// The pool for a stage's jobs, or null when no workers run.
[[nodiscard]] inline ThreadPool* ready_threads(const frame_pool* pool) {
  return pool != nullptr && pool->ready.load(std::memory_order_acquire) != 0 ? pool->threads
                                                                             : nullptr;
}

// Entry of the starting thread; `pool` is a frame_pool. Returns null.
void* vorel_preinit_thread_func(void* pool);

#endif  // VOREL_CORE_FRAME_POOL_H_
