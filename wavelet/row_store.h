// Rows of a plane that is there as a whole, or of which only the last few are kept.
#ifndef VOREL_WAVELET_ROW_STORE_H_
#define VOREL_WAVELET_ROW_STORE_H_

#include <climits>
#include <cstddef>

#include "vorel/wavelet/buffer.h"

inline constexpr int kAllRows = INT_MAX;

struct row_store {
  _Float16* samples;
  int pitch;  // samples from row to row
  int kept;   // row i lies where row i - kept lay; at least 1

  [[nodiscard]] _Float16* row(int index) const { return samples + ptrdiff_t{index % kept} * pitch; }
};

[[nodiscard]] inline row_store whole_plane(const buffer& plane, int pitch) {
  return {static_cast<_Float16*>(plane.data), pitch, kAllRows};
}

// Columns or rows [first, end).
struct span {
  int first;
  int end;

  [[nodiscard]] int size() const { return end - first; }
};

#endif  // VOREL_WAVELET_ROW_STORE_H_
