#include "core/frame_guard.h"

#include "platform/log.h"
#include "vorel/vorel.h"

bool frame_fits(const void* plane_1, const void* plane_2, int width, int height, uint32_t format,
                int32_t luma_plane_bytes) {
  const bool two_planes = format == VOREL_FMT_NV21 || format == VOREL_FMT_NM21;
  if (plane_1 == nullptr || (two_planes && plane_2 == nullptr)) {
    VOREL_LOGE("vorel_run, refused frame: null plane, in_address_1(%p), in_address_2(%p)", plane_1,
               plane_2);
    return false;
  }
  if (width < 16 || width % 16 != 0) {
    VOREL_LOGE("vorel_run, refused frame: width(%d) is no positive multiple of 16", width);
    return false;
  }
  if (height < 2) {
    VOREL_LOGE("vorel_run, refused frame: height(%d) is below 2", height);
    return false;
  }
  // In 64 bits: height may be close to the largest int32.
  const int64_t needed = (static_cast<int64_t>(height) + 15) / 16 * 16 * width;
  if (needed > luma_plane_bytes) {
    VOREL_LOGE("vorel_run, refused frame: width(%d), height(%d) need more than was allocated",
               width, height);
    return false;
  }
  return true;
}
