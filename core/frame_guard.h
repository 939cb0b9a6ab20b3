// Refuses frames that the handle's planes cannot hold.
#ifndef VOREL_CORE_FRAME_GUARD_H_
#define VOREL_CORE_FRAME_GUARD_H_

#include <cstdint>

// Whether a frame may be read and processed; the reason of a refusal is logged. `plane_2` matters
// for NV21 and NM21 only. `luma_plane_bytes` is what init allocated for one full-size plane; the
// smaller planes then fit too, because all sizes are multiples of 16.
[[nodiscard]] bool frame_fits(const void* plane_1, const void* plane_2, int width, int height,
                              uint32_t format, int32_t luma_plane_bytes);

#endif  // VOREL_CORE_FRAME_GUARD_H_
