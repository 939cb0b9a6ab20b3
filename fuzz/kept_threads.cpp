// Threads that are used again. A frame starts several, and under the address sanitizer making them
// takes longer than a small frame. The programs are linked with --wrap, so that what asks for a
// thread gets a waiting one, and a new one where none waits: none ever waits for another's end.
#include <pthread.h>

#include <cstdlib>

extern "C" {
int __real_pthread_create(pthread_t* id, const pthread_attr_t* attributes, void* (*function)(void*),
                          void* argument);
int __real_pthread_detach(pthread_t id);
int __wrap_pthread_create(pthread_t* id, const pthread_attr_t* attributes, void* (*function)(void*),
                          void* argument);
int __wrap_pthread_join(pthread_t id, void** result);
int __wrap_pthread_detach(pthread_t id);
}

namespace {

// What a caller takes for a thread; its id is the address.
struct Task {
  void* (*function)(void*);
  void* argument;
  void* result;
  Task* next;
  bool ended;
  bool detached;
};

static_assert(sizeof(pthread_t) == sizeof(Task*));

// Never destroyed: threads wait for them when the process ends.
pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t g_given = PTHREAD_COND_INITIALIZER;
pthread_cond_t g_ended = PTHREAD_COND_INITIALIZER;
Task* g_tasks = nullptr;  // that wait to be taken; each has a thread that will
int g_free = 0;           // threads without a task

Task* task_of(pthread_t id) { return reinterpret_cast<Task*>(id); }

void* run_tasks(void*) {
  pthread_mutex_lock(&g_lock);
  for (;;) {
    while (g_tasks == nullptr) pthread_cond_wait(&g_given, &g_lock);
    Task* task = g_tasks;
    g_tasks = task->next;
    pthread_mutex_unlock(&g_lock);
    task->result = task->function(task->argument);
    pthread_mutex_lock(&g_lock);
    ++g_free;
    task->ended = true;
    if (task->detached) {
      delete task;
    } else {
      pthread_cond_broadcast(&g_ended);
    }
  }
}

}  // namespace

int __wrap_pthread_create(pthread_t* id, const pthread_attr_t*, void* (*function)(void*),
                          void* argument) {
  Task* task = new Task{function, argument, nullptr, nullptr, false, false};
  *id = reinterpret_cast<pthread_t>(task);
  pthread_mutex_lock(&g_lock);
  task->next = g_tasks;
  g_tasks = task;
  const bool has_thread = g_free > 0;
  if (has_thread) --g_free;
  pthread_mutex_unlock(&g_lock);
  pthread_cond_signal(&g_given);
  if (has_thread) return 0;
  pthread_t made;
  if (__real_pthread_create(&made, nullptr, run_tasks, nullptr) != 0) std::abort();
  return __real_pthread_detach(made);
}

int __wrap_pthread_join(pthread_t id, void** result) {
  Task* task = task_of(id);
  pthread_mutex_lock(&g_lock);
  while (!task->ended) pthread_cond_wait(&g_ended, &g_lock);
  pthread_mutex_unlock(&g_lock);
  if (result != nullptr) *result = task->result;
  delete task;
  return 0;
}

int __wrap_pthread_detach(pthread_t id) {
  Task* task = task_of(id);
  pthread_mutex_lock(&g_lock);
  task->detached = true;
  if (task->ended) delete task;
  pthread_mutex_unlock(&g_lock);
  return 0;
}
