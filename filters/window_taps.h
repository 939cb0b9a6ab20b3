// The bilateral filter's window as a list of taps, grouped by spatial weight.
#ifndef VOREL_FILTERS_WINDOW_TAPS_H_
#define VOREL_FILTERS_WINDOW_TAPS_H_

#include <cstddef>
#include <cstdint>

// Rows and columns of the window that are handled together at most: all of it for spans up to 15.
inline constexpr int32_t kPartSize = 31;

// Part of the window, as offsets from the filtered sample.
struct window_part {
  int32_t row_first;
  int32_t row_end;
  int32_t col_first;
  int32_t col_end;

  int32_t rows() const { return row_end - row_first; }
  int32_t cols() const { return col_end - col_first; }
  bool operator==(const window_part&) const = default;
};

// Taps [first, end) share a spatial weight. Their byte weights add up in 16 bits.
struct tap_run {
  uint32_t spatial_weight;
  int32_t first;
  int32_t end;
};
inline constexpr int32_t kMaxRunTaps = 257;  // 257 * 255 = 65535

struct window_taps {
  window_part part{};
  int32_t run_count = 0;
  tap_run runs[16 + kPartSize * kPartSize / kMaxRunTaps];
  ptrdiff_t offsets[kPartSize * kPartSize];  // of each tap from the part's first sample
};

// Lists the taps of `part`, at most kPartSize rows and columns, in a plane with rows of `pitch`.
void list_taps(const window_part& part, ptrdiff_t pitch, window_taps* out);

#endif  // VOREL_FILTERS_WINDOW_TAPS_H_
