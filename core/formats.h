// Kinds of pixel formats.
#ifndef VOREL_CORE_FORMATS_H_
#define VOREL_CORE_FORMATS_H_

#include <cstdint>

#include "vorel/vorel.h"

[[nodiscard]] inline bool is_planar_420(uint32_t format) {
  return format == VOREL_FMT_NV21 || format == VOREL_FMT_NM21;
}

[[nodiscard]] inline bool is_packed_422(uint32_t format) {
  return format == VOREL_FMT_YUYV || format == VOREL_FMT_YUY2;
}

#endif  // VOREL_CORE_FORMATS_H_
