// POSIX mutex and condition as objects.
#ifndef VOREL_THREADING_MUTEX_H_
#define VOREL_THREADING_MUTEX_H_

#include <pthread.h>

class Mutex {
 public:
  Mutex() = default;
  ~Mutex() { pthread_mutex_destroy(&mutex_); }
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  void lock() { pthread_mutex_lock(&mutex_); }
  void unlock() { pthread_mutex_unlock(&mutex_); }

 private:
  friend class Condition;
  pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
};

// Holds a mutex for its own lifetime.
class ScopedLock {
 public:
  explicit ScopedLock(Mutex& mutex) : mutex_(mutex) { mutex_.lock(); }
  ~ScopedLock() { mutex_.unlock(); }
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;

 private:
  Mutex& mutex_;
};

// What a condition waits for changes under the mutex that is given to `wait`.
class Condition {
 public:
  Condition() = default;
  ~Condition() { pthread_cond_destroy(&condition_); }
  Condition(const Condition&) = delete;
  Condition& operator=(const Condition&) = delete;

  // Can return without a signal: call it in a loop.
  void wait(Mutex& mutex) { pthread_cond_wait(&condition_, &mutex.mutex_); }
  void signal() { pthread_cond_signal(&condition_); }
  void broadcast() { pthread_cond_broadcast(&condition_); }

 private:
  pthread_cond_t condition_ = PTHREAD_COND_INITIALIZER;
};

#endif  // VOREL_THREADING_MUTEX_H_
