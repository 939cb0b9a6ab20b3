#include "wavelet/plane_storage.h"

#include <cstdlib>

namespace {

size_t plane_bytes(uint32_t rows, uint32_t cols) { return size_t{rows} * cols * sizeof(_Float16); }

// What a plane takes of a lent area: the next one starts at a multiple of 8 bytes too.
size_t carved_bytes(uint32_t rows, uint32_t cols) {
  return (plane_bytes(rows, cols) + 7) & ~size_t{7};
}

}  // namespace

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

bool holds_plane(const plane_scratch& scratch, uint32_t rows, uint32_t cols) {
  return scratch.cursor != nullptr && scratch.remaining_bytes >= carved_bytes(rows, cols);
}

bool take_plane(buffer* plane, plane_scratch* scratch, uint32_t rows, uint32_t cols) {
  *plane = buffer{};
  plane->height = rows;
  plane->width = cols;
  if (scratch != nullptr && holds_plane(*scratch, rows, cols)) {
    plane->data = scratch->cursor;
    plane->borrowed = true;
    scratch->cursor += carved_bytes(rows, cols);
    scratch->remaining_bytes -= carved_bytes(rows, cols);
    return true;
  }
  const size_t need = plane_bytes(rows, cols);
  plane->data = std::malloc(need > 0 ? need : 1);  // an empty plane is no failure
  return plane->data != nullptr;
}

void release_plane(buffer* plane) {
  if (!plane->borrowed) std::free(plane->data);
  plane->data = nullptr;
}
