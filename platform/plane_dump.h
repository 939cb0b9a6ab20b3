// Dumps of the planes that a frame passes through.
#ifndef VOREL_PLATFORM_PLANE_DUMP_H_
#define VOREL_PLATFORM_PLANE_DUMP_H_

#include <cstdint>

// What a stage needs to time itself and to dump its planes.
struct stage_record {
  int32_t debug_mode;
  const char* dump_path;
};

// Columns and rows of a plane, from its top-left one.
struct plane_part {
  int32_t x;
  int32_t y;
  int32_t width;
  int32_t height;
};

// A dense plane of elements of `element_size` bytes.
struct plane_view {
  const void* data;
  int32_t width;
  int32_t height;
  uint32_t element_size = 1;
};

// Writes the plane, or the part of it that lies inside, under the record's dump path; does nothing
// below the debug level of plane dumps.
void dump_plane(const stage_record& stage, const char* prefix, const plane_view& plane);
void dump_plane(const stage_record& stage, const char* prefix, const plane_view& plane,
                const plane_part& part);

#endif  // VOREL_PLATFORM_PLANE_DUMP_H_
