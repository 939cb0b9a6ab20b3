// Handles: making one, and starting and stopping its workers.
#ifndef VOREL_CORE_LIFECYCLE_H_
#define VOREL_CORE_LIFECYCLE_H_

#include "core/handle.h"
#include "vorel/frame.h"

// Makes a handle with planes for `options`, whose width is a multiple of 16 and whose values but
// the scenario are in range. Null with the reason in `status` when it cannot be had (logged).
// Kept: for a bad scenario (VOREL_BAD_OPTION) the result is no null but an unusable handle.
vorel* make_handle(const vorel_options& options, vorel_status* status);

// Entry of the pool-starting thread; `arg` is a vorel_preinit_thread. Sets the first ready flag to
// whether the workers run. Returns null.
void* vorel_preinit_thread_func(void* arg);

// Joins a pool-starting thread that no frame has joined and stops the workers that run. Leaves the
// handle as after init.
void settle_pool(vorel* handle);

#endif  // VOREL_CORE_LIFECYCLE_H_
