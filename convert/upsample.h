// Bilinear upsampling of 1/16 planes by a table of sixteenths.
#ifndef VOREL_CONVERT_UPSAMPLE_H_
#define VOREL_CONVERT_UPSAMPLE_H_

#include <cstdint>

#include "vorel/convert.h"

// Output samples per source sample.
enum class Upsampling { k16x16, k8x8, k8x16 };

// A dense plane of `rows` x `cols` samples and its dense output, of which the first `covered`
// source columns are written.
struct UpsamplePlane {
  const uint8_t* src;
  uint8_t* dst;
  int32_t cols;
  int32_t rows;
  int32_t covered;
};

void upsample_plane(const UpsamplePlane& plane, Upsampling factor);

inline void upsample_plane(const upsample_job& job, Upsampling factor) {
  upsample_plane({job.src, job.dst, job.cols, job.rows, job.cols}, factor);
}

#endif  // VOREL_CONVERT_UPSAMPLE_H_
