// Dumps of the pipeline's frames.
#ifndef VOREL_CORE_DUMP_H_
#define VOREL_CORE_DUMP_H_

#include "core/handle.h"

// Which of a frame's two dumps is meant.
enum class frame_dump { kInput, kOutput };

// Writes a whole frame with the noise index in its name. Returns false, logged, for a format that
// no dump knows.
bool dump_frame(const vorel* handle, frame_dump which, uint32_t format, const void* plane_1,
                const void* plane_2, int32_t width, int32_t height, int noiseIndex);

#endif  // VOREL_CORE_DUMP_H_
