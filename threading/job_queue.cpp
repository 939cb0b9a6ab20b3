#include "threading/job_queue.h"

#include <cstdlib>

void JobSemaphore::post() {
  const ScopedLock lock(mutex_);
  value_ = 1;
  changed_.signal();
}

void JobSemaphore::shutDown() {
  const ScopedLock lock(mutex_);
  shutDown_ = 1;
  changed_.broadcast();
}

void JobSemaphore::wait() {
  const ScopedLock lock(mutex_);
  while (value_ == 0 && shutDown_ == 0) changed_.wait(mutex_);
  value_ = 0;
}

bool JobQueue::add(void* (*function)(void*), void* argument) {
  job* added = static_cast<job*>(std::malloc(sizeof(job)));
  if (added == nullptr) return false;
  *added = {nullptr, function, argument};

  const ScopedLock lock(lock_);
  if (rear_ != nullptr) {
    rear_->next = added;
  } else {
    front_ = added;
  }
  rear_ = added;
  length_.fetch_add(1);
  hasJobs_.post();
  return true;
}

job* JobQueue::take() {
  const ScopedLock lock(lock_);
  job* taken = front_;
  if (taken == nullptr) return nullptr;
  front_ = taken->next;
  if (front_ == nullptr) rear_ = nullptr;
  length_.fetch_sub(1);
  if (front_ != nullptr) hasJobs_.post();
  return taken;
}

void JobQueue::clear() {
  const ScopedLock lock(lock_);
  while (front_ != nullptr) {
    job* dropped = front_;
    front_ = dropped->next;
    std::free(dropped);
  }
  rear_ = nullptr;
  length_.store(0);
}
