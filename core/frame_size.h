// Sizes of frames in units of the 16 x 16 blocks that the spatial path works on.
#ifndef VOREL_CORE_FRAME_SIZE_H_
#define VOREL_CORE_FRAME_SIZE_H_

#include <cstdint>

#include "platform/wraps.h"

// `size` rounded up and down to a multiple of 16; above 2^31 - 16 rounding up wraps.
VOREL_WRAPS constexpr int32_t align_up_16(int32_t size) {
  return static_cast<int32_t>((static_cast<uint32_t>(size) + 15u) & ~15u);
}
constexpr int32_t align_down_16(int32_t size) {
  return static_cast<int32_t>(static_cast<uint32_t>(size) & ~15u);
}

// Samples of a plane that holds whole blocks, for any positive sizes.
constexpr int64_t block_plane_samples(int32_t width, int32_t height) {
  return (int64_t{width} + 15) / 16 * 16 * ((int64_t{height} + 15) / 16 * 16);
}

#endif  // VOREL_CORE_FRAME_SIZE_H_
