// Frames that cannot be processed where they are, moved to dense planes and back.
#ifndef VOREL_CORE_CONTINUED_FRAME_H_
#define VOREL_CORE_CONTINUED_FRAME_H_

#include <cstdint>

#include "vorel/frame.h"

// Planes of a width that is a multiple of 16 and of an even height, without padding.
struct dense_planes {
  uint8_t* luma;
  uint8_t* chroma;
  int32_t width;
  int32_t height;
};

// Size of the planes that hold a frame, the planes left null. Sizes above 2^31 - 16 do not fit.
[[nodiscard]] dense_planes dense_size(const vorel_frame& frame);

// Whether the frame already lies in such planes.
[[nodiscard]] bool is_dense(const vorel_frame& frame);

// Copies a frame and continues it by repeating its last column and row.
void copy_continued(const vorel_frame& frame, const dense_planes& planes);

// Copies the frame's part of the planes back.
void copy_back(const dense_planes& planes, const vorel_frame& frame);

#endif  // VOREL_CORE_CONTINUED_FRAME_H_
