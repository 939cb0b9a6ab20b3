// Making a handle, as vorel_init and vorel_open both do.
#ifndef VOREL_CORE_MAKE_HANDLE_H_
#define VOREL_CORE_MAKE_HANDLE_H_

#include "core/handle.h"
#include "vorel/frame.h"

// Makes a handle with planes for `options`, whose width is a multiple of 16 and whose values but
// the scenario are in range. Null with the reason in `status` when it cannot be had (logged).
// Kept: for a bad scenario (VOREL_BAD_OPTION) the result is no null but an unusable handle.
vorel* make_handle(const vorel_options& options, vorel_status* status);

#endif  // VOREL_CORE_MAKE_HANDLE_H_
