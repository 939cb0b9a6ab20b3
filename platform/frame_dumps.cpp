#include "platform/frame_dumps.h"

#include <pthread.h>

#include <cstring>

#include "platform/debug_levels.h"

namespace {

pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
FrameDumps* g_frames = nullptr;  // those of all handles, under g_lock

}  // namespace

FrameDumps::FrameDumps(int32_t debug_mode, const char* folder)
    : enabled_(debug_mode >= kDebugDumpInput), folder_(folder) {
  if (!enabled_) return;
  pthread_mutex_lock(&g_lock);
  next_ = g_frames;
  g_frames = this;
  pthread_mutex_unlock(&g_lock);
}

FrameDumps::~FrameDumps() {
  if (!enabled_) return;
  pthread_mutex_lock(&g_lock);
  FrameDumps** link = &g_frames;
  while (*link != this) link = &(*link)->next_;
  *link = next_;
  pthread_mutex_unlock(&g_lock);
}

dump_counts FrameDumps::counts() const {
  pthread_mutex_lock(&g_lock);
  const dump_counts counts = counts_;
  pthread_mutex_unlock(&g_lock);
  return counts;
}

bool count_dump(const char* folder, int error) {
  pthread_mutex_lock(&g_lock);
  FrameDumps* frame = g_frames;
  while (frame != nullptr && std::strcmp(frame->folder_, folder) != 0) frame = frame->next_;
  bool first = true;
  if (frame != nullptr && error == 0) ++frame->counts_.written;
  if (frame != nullptr && error != 0) {
    first = frame->counts_.failed == 0;
    if (first) frame->counts_.error = error;
    ++frame->counts_.failed;
  }
  pthread_mutex_unlock(&g_lock);
  return first;
}
