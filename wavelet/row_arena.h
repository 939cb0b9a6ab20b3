// Cuts rows off one piece of memory.
#ifndef VOREL_WAVELET_ROW_ARENA_H_
#define VOREL_WAVELET_ROW_ARENA_H_

#include <cstddef>

#include "wavelet/row_store.h"

class RowArena {
 public:
  // Without memory it only counts what would be needed.
  explicit RowArena(void* memory) : memory_(static_cast<_Float16*>(memory)) {}

  [[nodiscard]] row_store take(int width, int rows) {
    // Rows begin at cache lines, and no two of them at the same place of a page.
    const int pitch = (width + 31) / 32 * 32 + 32;
    _Float16* samples = memory_ != nullptr ? memory_ + used_ : nullptr;
    used_ += static_cast<size_t>(pitch) * static_cast<size_t>(rows);
    return {samples, pitch, rows};
  }

  [[nodiscard]] size_t samples() const { return used_; }

 private:
  _Float16* memory_;
  size_t used_ = 0;
};

#endif  // VOREL_WAVELET_ROW_ARENA_H_
