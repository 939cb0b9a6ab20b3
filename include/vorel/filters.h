// Spatial filters on 8-bit planes: the column box filter and the bilateral filter.
//
// Each function says first whether a frame goes this way ("Frame:") or it is there for programs
// that call it ("Callers:").
#ifndef VOREL_FILTERS_H_
#define VOREL_FILTERS_H_

#include <cstdint>

#include "vorel/export.h"
#include "vorel/tuning.h"

/// One strip of the column box filter. All planes have rows of `width` bytes.
struct box_filter_job {
  int32_t debug_mode;     // bookkeeping of the pipeline, not read by the filter
  const char* dump_path;  // likewise
  int32_t width;          // columns, and row pitch in bytes
  int32_t aligned_height;
  int32_t stride;     // a second copy of width
  int32_t row_limit;  // last valid row plus one
  int32_t row_first;  // the strip: rows [row_first, row_end)
  int32_t row_end;
  const uint8_t* src;
  uint8_t* low;   // smoothed rows
  uint8_t* high;  // detail: src - low + 128, clamped to a byte
  const struct boxfiltering_tuning* tuning;
};

/// Frame: job function, filters every column of one strip; `job` is a `box_filter_job`. Returns
/// null. Rows outside the strip but inside [0, row_limit) are read, never written. Rows above the
/// plane are mirrored about the strip's first row and rows below it about the strip's last row;
/// where a very short strip's mirror leaves the plane again, it is mirrored until it is inside (a
/// strip of one row reads that row then). `low` and `high` must not overlap `src`. Strips of one
/// plane may run at the same time.
VOREL_EXPORT void* box_filter_col(void* job);

/// Callers: the same for the columns [0, width rounded down to a multiple of 8) only. `flags` and
/// `height` are not used; `row_limit` is the last valid row plus one.
VOREL_EXPORT void box_filter_col_neon(uint8_t* src, uint8_t* low, uint8_t* high, int32_t width,
                                      int32_t height, int32_t flags, int32_t row_limit,
                                      int32_t row_first, int32_t row_end,
                                      struct boxfiltering_tuning* tuning);

/// Frame: bilateral filter of a dense plane of `height` rows x `width` columns with a window of
/// (2 spanRow + 1) x (2 spanCol + 1). `src` and `dst` must not overlap. Rows and columns outside
/// the plane are mirrored without repeating the edge. A negative span gives zeros.
/// Range weights come from the polynomial when val_delta_th < 16. Kept: from 16 on the call goes to
/// `bilateral_filter_opt`, whose table is not built for such tuning.
VOREL_EXPORT void bilateral_filter(uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                                   int32_t spanRow, int32_t spanCol,
                                   struct bilateralfiltering_tuning* tuning);

/// Callers: interior of `bilateral_filter`, rows [top, height - bottom) and columns [left, width -
/// right). The window of every such sample must lie inside the plane. Range weights come from the
/// polynomial whatever val_delta_th is.
VOREL_EXPORT void bilateral_filter_center_neon(uint8_t* src, uint8_t* dst, int32_t height,
                                               int32_t width, int32_t top, int32_t bottom,
                                               int32_t left, int32_t right, int32_t spanRow,
                                               int32_t spanCol,
                                               struct bilateralfiltering_tuning* tuning);

/// Callers: `bilateral_filter` with range weights from the table `val_weight`, read as bytes at
/// index min(difference, val_delta_th); an index outside the table weighs 0.
VOREL_EXPORT void bilateral_filter_opt(uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                                       int32_t spanRow, int32_t spanCol,
                                       struct bilateralfiltering_tuning* tuning);

/// Callers: interior of `bilateral_filter_opt`.
VOREL_EXPORT void bilateral_filter_opt_center_neon(uint8_t* src, uint8_t* dst, int32_t height,
                                                   int32_t width, int32_t top, int32_t bottom,
                                                   int32_t left, int32_t right, int32_t spanRow,
                                                   int32_t spanCol,
                                                   struct bilateralfiltering_tuning* tuning);

/// Frame: builds `val_weight` from the polynomial. Weights outside 0..255 are logged and clamped;
/// with val_delta_th >= 16 the table is left alone (logged).
VOREL_EXPORT void update_bilateral_filter_tuning(struct bilateralfiltering_tuning* tuning);

#endif  // VOREL_FILTERS_H_
