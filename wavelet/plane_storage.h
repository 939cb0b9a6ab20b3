// Storage of the wavelet path's planes: carved from memory that somebody lends, else from the heap.
#ifndef VOREL_WAVELET_PLANE_STORAGE_H_
#define VOREL_WAVELET_PLANE_STORAGE_H_

#include <cstddef>
#include <cstdint>

#include "vorel/wavelet/buffer.h"

// What is left of one lent memory area. Carved planes start at multiples of 8 bytes from its start.
struct plane_scratch {
  uint8_t* cursor;
  size_t remaining_bytes;
};

// The whole area of a lent record: its height x width, counted as bytes whatever it held before.
// A null record, or one without data, lends nothing.
[[nodiscard]] plane_scratch scratch_of(const buffer* lent);

// Whether a plane of this size can be carved from what is left.
[[nodiscard]] bool holds_plane(const plane_scratch& scratch, uint32_t rows, uint32_t cols);

// The rest of an area as a record that can be lent on.
[[nodiscard]] buffer rest_of(const plane_scratch& scratch);

// Gives `plane` dense, uninitialised storage for `rows` x `cols` half-precision samples and sets
// its data, height, width and borrowed; the other fields become 0. The storage comes from `scratch`
// (may be null) when the bytes, rounded up to a multiple of 8, are left there; otherwise exactly
// the bytes needed come from the heap and the scratch stays as it is.
// Returns false, with null data, when the heap has no memory.
[[nodiscard]] bool take_plane(buffer* plane, plane_scratch* scratch, uint32_t rows, uint32_t cols);

// Frees the storage unless it is borrowed. The data pointer is null afterwards, so a second call
// does nothing.
void release_plane(buffer* plane);

#endif  // VOREL_WAVELET_PLANE_STORAGE_H_
