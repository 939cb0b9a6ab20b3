#include "tools/measure/partial_removal.h"

namespace tool {

void keep_part_of_change(const uint8_t* before, size_t before_stride, int percent, Rows rows) {
  for (size_t y = 0; y < rows.count; ++y) {
    const uint8_t* from = before + y * before_stride;
    uint8_t* row = rows.data + y * rows.stride;
    for (size_t x = 0; x < rows.bytes; ++x) {
      const int change = (row[x] - from[x]) * percent;
      row[x] = static_cast<uint8_t>(from[x] + (change + (change < 0 ? -50 : 50)) / 100);
    }
  }
}

}  // namespace tool
