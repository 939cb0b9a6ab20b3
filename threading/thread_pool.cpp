#include "vorel/thread_pool.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "platform/log.h"
#include "platform/thread_attributes.h"
#include "platform/trace.h"
#include "threading/thread_pool_state.h"

namespace {

// A state with records for `count` workers, or null when memory is short.
std::shared_ptr<thpool> make_state(int32_t count) {
  const size_t records = static_cast<size_t>(count);
  const size_t state_bytes = sizeof(thpool) + kSharedOverhead;
  const size_t record_bytes = records * sizeof(thread);
  void* state_block = std::malloc(state_bytes);
  if (state_block == nullptr) return nullptr;
  void* record_block = nullptr;
  if (records > 0) {
    record_block = std::malloc(record_bytes);
    if (record_block == nullptr) {
      std::free(state_block);
      return nullptr;
    }
  }
  std::shared_ptr<thpool> state =
      std::allocate_shared<thpool>(PreparedAllocator<thpool>(state_block, state_bytes), records,
                                   PreparedAllocator<thread>(record_block, record_bytes));
  state->num_threads = count;
  return state;
}

// Returns when `count` workers have started; no other has been or will be created.
void wait_for_start(thpool* state, int32_t count) {
  const ScopedLock lock(state->lock);
  state->num_threads = count;
  while (state->num_threads_alive != count) state->all_idle.wait(state->lock);
}

// Ends all workers, which have started, and drops the queued jobs. Their keep-alive flag is 0.
void stop_workers(thpool* state) {
  const ScopedLock lock(state->lock);
  state->has_jobs.broadcast();
  while (state->num_threads_alive != 0) state->all_exited.wait(state->lock);
  state->queue.clear();
}

// Wakes workers for `jobs` new jobs when `waiting` of them wait. Called without the lock, which a
// woken worker takes first. One that is already on its way may be counted again: then a worker that
// becomes free takes the job.
void wake_workers(thpool* state, int32_t jobs, int32_t waiting) {
  if (jobs >= waiting) {
    if (waiting > 0) state->has_jobs.broadcast();
    return;
  }
  for (int32_t i = 0; i < jobs; ++i) state->has_jobs.signal();
}

// Runs the front job. The lock is held before and after.
void run_next_job(thpool* state) {
  const job next = state->queue.take();
  ++state->num_threads_working;
  state->lock.unlock();
  {
    const TraceSlice slice(next.name);
    next.function(next.argument);
  }
  state->lock.lock();
  --state->num_threads_working;
  if (state->num_threads_working == 0 && state->queue.empty()) state->all_idle.signal();
}

}  // namespace

ThreadPool::ThreadPool() : mKeepAlive(1) {}

ThreadPool::~ThreadPool() = default;

int ThreadPool::init(int numThreads, int affinityMask, int nameTag) {
  return init(numThreads, affinityMask, nameTag, "vorel");
}

int ThreadPool::init(int numThreads, int affinityMask, int nameTag, const char* threadName) {
  VOREL_LOGI("ThreadPool::init - E");
  if (mThreadPool) {
    // Workers of an earlier start would outlive the only means to stop them.
    mKeepAlive.store(0);
    stop_workers(mThreadPool.get());
  }
  mKeepAlive.store(1);
  const int32_t count = std::max(numThreads, 0);
  mThreadPool = make_state(count);
  if (!mThreadPool) {
    VOREL_LOGE("Allocation failed for thread pool");
    return -1;
  }
  std::snprintf(mThreadPool->thread_name, kThreadNameSize, "%s", threadName);
  for (int32_t i = 0; i < count; ++i) {
    thread* record = &mThreadPool->workers[static_cast<size_t>(i)];
    if (thread_init(record, i, this, affinityMask, nameTag) == 0) continue;
    wait_for_start(mThreadPool.get(), i);
    mKeepAlive.store(0);
    stop_workers(mThreadPool.get());
    mThreadPool.reset();
    return -1;
  }
  wait_for_start(mThreadPool.get(), count);
  VOREL_LOGI("ThreadPool::init - X");
  return 0;
}

int ThreadPool::addWork(void* (*function)(void*), void* argument) {
  if (!mThreadPool) {
    VOREL_LOGE("mThreadPool is not initialized");
    return -1;
  }
  thpool* state = mThreadPool.get();
  state->lock.lock();
  const bool added = state->queue.append(function, argument);
  const int32_t waiting = state->num_threads_waiting;
  state->lock.unlock();
  if (!added) {
    VOREL_LOGE("Allocation failed for new job");
    return -1;
  }
  wake_workers(state, 1, waiting);
  return 0;
}

bool add_batch(ThreadPool* pool, job_batch* batch) {
  if (!pool->mThreadPool) {
    VOREL_LOGE("mThreadPool is not initialized");
    return false;
  }
  thpool* state = pool->mThreadPool.get();
  const int32_t count = batch->count;
  state->lock.lock();
  state->queue.append(batch);
  const int32_t waiting = state->num_threads_waiting;
  state->lock.unlock();
  wake_workers(state, count, waiting);
  return true;
}

int ThreadPool::wait() {
  if (!mThreadPool) {
    VOREL_LOGE("mThreadPool is not initialized");
    return -1;
  }
  thpool* state = mThreadPool.get();
  const ScopedLock lock(state->lock);
  while (!state->queue.empty() || state->num_threads_working != 0) {
    state->all_idle.wait(state->lock);
  }
  return 0;
}

int ThreadPool::num_threads_working() {
  if (!mThreadPool) {
    VOREL_LOGE("mThreadPool is not initialized");
    return -1;
  }
  const ScopedLock lock(mThreadPool->lock);
  return mThreadPool->num_threads_working;
}

void ThreadPool::deinit() {
  VOREL_LOGI("ThreadPool::deinit - E");
  if (!mThreadPool) return;
  mKeepAlive.store(0);
  stop_workers(mThreadPool.get());
  mThreadPool.reset();
  VOREL_LOGI("ThreadPool::deinit - X");
}

int ThreadPool::thread_init(thread* record, int index, ThreadPool* owner, int affinityMask,
                            int nameTag) {
  if (!mThreadPool) {
    VOREL_LOGE("mThreadPool is not initialized");
    return -1;
  }
  record->index = index;
  record->state = mThreadPool;
  record->owner = owner;
  record->affinity_mask = static_cast<uint32_t>(affinityMask);
  record->name_tag = nameTag;
  const int error = pthread_create(&record->id, nullptr, thread_do, record);
  if (error != 0) {
    record->state.reset();
    VOREL_LOGE("ThreadPool::thread_init, worker %d cannot be created, error %d", index, error);
    return -1;
  }
  pthread_detach(record->id);
  return 0;
}

void* ThreadPool::thread_do(void* record) {
  thread* self = static_cast<thread*>(record);
  // `deinit` goes on when the last worker has reported its end, which is before that worker has
  // left the lock: its own share keeps the state until then.
  const std::shared_ptr<thpool> state = std::move(self->state);
  const ThreadPool* owner = self->owner;

  char name[32];
  std::snprintf(name, sizeof(name), "%s-%d-%d", state->thread_name, self->name_tag, self->index);
  set_thread_name(name);
  set_thread_affinity(self->affinity_mask);

  const ScopedLock lock(state->lock);
  ++state->num_threads_alive;
  if (state->num_threads_alive == state->num_threads) state->all_idle.signal();
  while (owner->mKeepAlive.load() != 0) {
    if (!state->queue.empty()) {
      run_next_job(state.get());
      continue;
    }
    ++state->num_threads_waiting;
    state->has_jobs.wait(state->lock);
    --state->num_threads_waiting;
  }
  --state->num_threads_alive;
  if (state->num_threads_alive == 0) state->all_exited.signal();
  return nullptr;
}
