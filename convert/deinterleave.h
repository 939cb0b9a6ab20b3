// Point sampling of a frame's chroma: the top-left pair of every 16 x 16 luma block.
#ifndef VOREL_CONVERT_DEINTERLEAVE_H_
#define VOREL_CONVERT_DEINTERLEAVE_H_

#include <cstdint>

#include "vorel/convert.h"

// Whole blocks in the top-left corner of a frame: `rows` x `cols` luma pixels.
struct block_area {
  const uint8_t* in;  // 4:2:0 chroma plane, or packed 4:2:2 frame
  uint8_t* y;         // packed only: luma copy, rows of `width` bytes
  uint8_t* u;         // rows of width >> 4 samples
  uint8_t* v;
  int32_t width;  // luma pixels of a row
  int32_t rows;
  int32_t cols;
};

void sample_planar_area(const block_area& area);
void sample_packed_area(const block_area& area);
void copy_packed_luma(const block_area& area);

// A whole frame, partial block row at the bottom included.
void deinterleave_planar(const deinterleave_job& frame);
void deinterleave_packed(const deinterleave_job& frame);

#endif  // VOREL_CONVERT_DEINTERLEAVE_H_
