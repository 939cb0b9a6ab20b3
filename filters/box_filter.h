// The column box filter on one strip of a plane.
#ifndef VOREL_FILTERS_BOX_FILTER_H_
#define VOREL_FILTERS_BOX_FILTER_H_

#include <cstddef>
#include <cstdint>

#include "vorel/filters.h"

// Rows [row_first, row_end) and columns [0, columns) of three planes with one pitch. Rows outside
// [0, row_limit) do not belong to the plane and are left alone.
struct box_filter_strip {
  const uint8_t* src;
  uint8_t* low;
  uint8_t* high;
  ptrdiff_t pitch;
  ptrdiff_t columns;
  ptrdiff_t row_limit;
  ptrdiff_t row_first;
  ptrdiff_t row_end;
  int32_t tab_bit;  // 0..7, others count as the nearest of these
  // Rows of `low` that are written: the plane's multiples of it.
  ptrdiff_t low_step = 1;
};

void filter_strip(box_filter_strip strip);

// All columns of a job.
inline box_filter_strip box_strip(const box_filter_job& job) {
  return {job.src,       job.low,       job.high,    job.width,          job.width,
          job.row_limit, job.row_first, job.row_end, job.tuning->tab_bit};
}

#endif  // VOREL_FILTERS_BOX_FILTER_H_
