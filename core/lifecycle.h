// Start of the worker pool.
#ifndef VOREL_CORE_LIFECYCLE_H_
#define VOREL_CORE_LIFECYCLE_H_

#include "core/handle.h"

// Entry of the pool-starting thread; `arg` is a vorel_preinit_thread. Sets the first ready flag to
// whether the workers run. Returns null.
void* vorel_preinit_thread_func(void* arg);

// Joins a pool-starting thread that no frame has joined and stops the workers that run. Leaves the
// handle as after init.
void settle_pool(vorel* handle);

#endif  // VOREL_CORE_LIFECYCLE_H_
