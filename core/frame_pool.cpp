#include "core/frame_pool.h"

#include "platform/log.h"

bool start_pool(frame_pool* pool) {
  settle_pool(pool);
  if (pthread_create(&pool->starter, nullptr, vorel_preinit_thread_func, pool) != 0) return false;
  pool->starter_joined = 0;
  return true;
}

void join_pool(frame_pool* pool) {
  if (pool->starter_joined != 0) return;
  pthread_join(pool->starter, nullptr);
  pool->starter_joined = 1;
}

void stop_pool(frame_pool* pool) {
  if (pool->threads == nullptr || pool->ready == 0) return;
  pool->threads->deinit();
  pool->ready = 0;
}

void settle_pool(frame_pool* pool) {
  join_pool(pool);
  stop_pool(pool);
}

void* vorel_preinit_thread_func(void* argument) {
  auto* pool = static_cast<frame_pool*>(argument);
  if (pool == nullptr) {
    VOREL_LOGE("vorel_preinit_thread_func, vorel_preinit_thread is null");
    return nullptr;
  }
  if (pool->threads == nullptr) return nullptr;
  const int result = pool->threads->init(pool->worker_count, static_cast<int>(pool->cpu_mask), 0,
                                         pool->thread_name);
  pool->ready.store(result >= 0 ? 1 : 0, std::memory_order_release);
  return nullptr;
}
