// Dumps of the pipeline's frames.
#ifndef VOREL_CORE_DUMP_H_
#define VOREL_CORE_DUMP_H_

#include "core/frame.h"
#include "core/handle.h"

// Which of a frame's two dumps is meant.
enum class frame_dump { kInput, kOutput };

// Writes a whole frame with the noise index in its name. Returns false, logged, for a format that
// no dump knows.
bool dump_frame(const vorel* handle, frame_dump which, const frame_request& frame);

#endif  // VOREL_CORE_DUMP_H_
