// Names of workers.
#ifndef VOREL_THREADING_THREAD_NAME_H_
#define VOREL_THREADING_THREAD_NAME_H_

#include <cstddef>

// Room for the first part of a worker's name; the system keeps 15 characters of the whole.
inline constexpr size_t kThreadNameSize = 9;

#endif  // VOREL_THREADING_THREAD_NAME_H_
