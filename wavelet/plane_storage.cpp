#include "wavelet/plane_storage.h"

#include <cstdlib>

plane_scratch scratch_of(const buffer* lent) {
  if (lent == nullptr || lent->data == nullptr) return {nullptr, 0};
  return {static_cast<uint8_t*>(lent->data), size_t{lent->height} * lent->width};
}

buffer rest_of(const plane_scratch& scratch) {
  buffer rest{};
  rest.data = scratch.cursor;
  rest.height = 1;
  // An area of 4 GB or more lends its first part.
  rest.width = scratch.remaining_bytes < UINT32_MAX ? static_cast<uint32_t>(scratch.remaining_bytes)
                                                    : UINT32_MAX;
  return rest;
}

bool take_plane(buffer* plane, plane_scratch* scratch, uint32_t rows, uint32_t cols) {
  const size_t need = size_t{rows} * cols * sizeof(_Float16);
  const size_t rounded = (need + 7) & ~size_t{7};
  *plane = buffer{};
  plane->height = rows;
  plane->width = cols;
  if (scratch != nullptr && scratch->cursor != nullptr && scratch->remaining_bytes >= rounded) {
    plane->data = scratch->cursor;
    plane->borrowed = true;
    scratch->cursor += rounded;
    scratch->remaining_bytes -= rounded;
    return true;
  }
  plane->data = std::malloc(need > 0 ? need : 1);  // an empty plane is no failure
  return plane->data != nullptr;
}

void release_plane(buffer* plane) {
  if (!plane->borrowed) std::free(plane->data);
  plane->data = nullptr;
}
