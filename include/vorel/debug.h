// Picture dumps to files and wall-clock timing.
#ifndef VOREL_DEBUG_H_
#define VOREL_DEBUG_H_

#include <sys/time.h>

#include <cstdint>

#include "vorel/export.h"

/// Image types of `dumpImage`; they decide the file's extension and how much is written.
enum vorel_image_type {
  VOREL_IMAGE_RAW = 0,    // ".raw": width x height elements of buf1
  VOREL_IMAGE_YUYV = 1,   // ".yuyv": width x height x 2 elements of buf1
  VOREL_IMAGE_NV21 = 2,   // ".nv21": height x (width / 2) x 3 elements of buf1, planes contiguous
  VOREL_IMAGE_NV21M = 3,  // ".nv21_m": width x height of buf1, then (width / 2) x height of buf2
};

/// Frame, at the debug levels that dump: writes an image to the file
/// <dir>/<prefix><width>_<height><suffix><extension>. `prefix` and `suffix` may be null. `width`
/// and `height` are in elements of `elementSize` bytes; rows are dense. When all four crop values
/// are >= 0, only that rectangle of `buf1` is written and the name holds its size followed by
/// "_crop"; a rectangle that leaves the image is refused and the file stays empty. An unknown type
/// makes an empty file without extension. `buf2` is read for VOREL_IMAGE_NV21M only. An existing
/// file is replaced. Failures are logged; a file that cannot be written completely is removed.
VOREL_EXPORT void dumpImage(int type, const char* dir, const char* prefix, const char* suffix,
                            const void* buf1, const void* buf2, unsigned width, unsigned height,
                            unsigned elementSize, int cropWidth, int cropHeight, int cropX,
                            int cropY);

/// Frame, at debug level 1: stores the wall-clock time.
VOREL_EXPORT void set_current_time(timeval* t);

/// Frame, at debug level 1: microseconds from `t` to now; negative when the clock was set back.
VOREL_EXPORT int64_t get_elapsed_time_usec(const timeval* t);

/// Callers: the same in milliseconds, truncated toward zero.
VOREL_EXPORT int64_t get_elapsed_time_msec(const timeval* t);

#endif  // VOREL_DEBUG_H_
