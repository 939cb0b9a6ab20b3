#include "core/frame_guard.h"

#include "core/formats.h"
#include "core/frame_size.h"
#include "platform/log.h"

bool frame_fits(const void* plane_1, const void* plane_2, int width, int height, uint32_t format,
                int32_t luma_plane_bytes) {
  if (plane_1 == nullptr || (is_planar_420(format) && plane_2 == nullptr)) {
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
  if (block_plane_samples(width, height) > luma_plane_bytes) {
    VOREL_LOGE("vorel_run, refused frame: width(%d), height(%d) need more than was allocated",
               width, height);
    return false;
  }
  return true;
}
