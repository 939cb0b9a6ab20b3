// Bilinear upsampling of 1/16 planes by a table of sixteenths.
#ifndef VOREL_CONVERT_UPSAMPLE_H_
#define VOREL_CONVERT_UPSAMPLE_H_

#include <cstddef>
#include <cstdint>

#include "vorel/convert.h"

// Output samples per source sample.
enum class Upsampling { k16x16, k8x8, k8x16 };

// A dense plane of `rows` x `cols` samples and its dense output, of which the first `covered`
// source columns are written.
struct upsample_area {
  const uint8_t* src;
  uint8_t* dst;
  int32_t cols;
  int32_t rows;
  int32_t covered;
};

void upsample_plane(const upsample_area& plane, Upsampling factor);

inline void upsample_plane(const upsample_job& job, Upsampling factor) {
  upsample_plane({job.src, job.dst, job.cols, job.rows, job.cols}, factor);
}

// Outputs across that are worked on together: their sums stay in the first-level cache, and rows
// are written in memory order.
inline constexpr size_t kUpsampleCols = 4096;

// Samples [col_first, col_end) of one row of a plane, at most kUpsampleCols outputs.
struct upsample_run {
  const uint8_t* src;  // the plane
  size_t cols;
  size_t rows;
  size_t row;
  size_t col_first;
  size_t col_end;
};

// What all outputs between a row and the next are blended from.
struct upsample_sums {
  size_t count;
  uint16_t upper[kUpsampleCols];
  uint16_t lower[kUpsampleCols];
};

// Goes across: 16 (k16x16) or 8 outputs per sample.
void widen_run(const upsample_run& run, Upsampling factor, upsample_sums* sums);

// Goes down: the row of outputs that is `weight` sixteenths below the samples.
void blend_sums(const upsample_sums& sums, size_t weight, uint8_t* dst);

#endif  // VOREL_CONVERT_UPSAMPLE_H_
