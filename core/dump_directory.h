// The directory that a handle's dumps go to.
#ifndef VOREL_CORE_DUMP_DIRECTORY_H_
#define VOREL_CORE_DUMP_DIRECTORY_H_

#include <cstddef>
#include <cstdint>

inline constexpr size_t kDumpPathSize = 128;

// Makes <dump directory>/<sensor id>_<local time> and stores its name; on a failure (logged) the
// name stays empty and nothing can be dumped.
void make_dump_directory(int32_t sensor_id, char (&path)[kDumpPathSize]);

#endif  // VOREL_CORE_DUMP_DIRECTORY_H_
