// Part of a denoised frame's change, where all of it could take texture too.
#ifndef VOREL_TOOLS_MEASURE_PARTIAL_REMOVAL_H_
#define VOREL_TOOLS_MEASURE_PARTIAL_REMOVAL_H_

#include <cstddef>
#include <cstdint>

namespace tool {

// Rows of bytes, `stride` apart.
struct Rows {
  uint8_t* data;
  size_t stride;
  size_t bytes;  // of a row
  size_t count;
};

// Leaves `percent` (0 to 100) of what was changed in `rows` since `before`, rounded to whole steps,
// halves away from `before`. `before` has rows as many and as long.
void keep_part_of_change(const uint8_t* before, size_t before_stride, int percent, Rows rows);

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_PARTIAL_REMOVAL_H_
