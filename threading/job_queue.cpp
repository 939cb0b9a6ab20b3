#include "threading/job_queue.h"

#include <cstdlib>

JobQueue::~JobQueue() {
  clear();
  while (spare_ != nullptr) {
    job_batch* freed = spare_;
    spare_ = freed->next;
    std::free(freed);
  }
}

void JobQueue::append(job_batch* batch) {
  batch->next = nullptr;
  if (front_ != nullptr) {
    rear_->next = batch;
  } else {
    front_ = batch;
  }
  rear_ = batch;
}

bool JobQueue::append(void* (*function)(void*), void* argument) {
  job_batch* batch = spare_;
  if (batch != nullptr) {
    spare_ = batch->next;
  } else {
    batch = static_cast<job_batch*>(std::malloc(sizeof(job_batch)));
    if (batch == nullptr) return false;
  }
  *batch = {function, static_cast<char*>(argument), 0, 1, "job", nullptr, true};
  append(batch);
  return true;
}

job JobQueue::take() {
  job_batch* batch = front_;
  const job taken{batch->function, batch->record, batch->name};
  if (--batch->count == 0) {
    front_ = batch->next;
    leave(batch);
  } else {
    batch->record += batch->stride;
  }
  return taken;
}

void JobQueue::clear() {
  while (front_ != nullptr) {
    job_batch* dropped = front_;
    front_ = dropped->next;
    leave(dropped);
  }
}

// A caller's batch is not touched any more: it may be gone as soon as the lock is.
void JobQueue::leave(job_batch* batch) {
  if (!batch->is_queues) return;
  batch->next = spare_;
  spare_ = batch;
}
