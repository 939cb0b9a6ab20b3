// One plane of the wavelet path.
#ifndef VOREL_WAVELET_BUFFER_H_
#define VOREL_WAVELET_BUFFER_H_

#include <cstdint>

/// What a plane holds, where a function needs to know.
enum vorel_plane_kind : uint32_t {
  VOREL_PLANE_FIRST = 1,   // first chroma plane, half precision
  VOREL_PLANE_SECOND = 2,  // second chroma plane, half precision
  VOREL_PLANE_PAIRS = 3,   // interleaved 8-bit chroma pairs
};

/// A plane of `height` x `width` samples, rows without gaps, and the inner area that a border of
/// `padX` columns and `padY` rows surrounds. The record does not own its samples; whoever allocated
/// them frees them, and `borrowed` tells that it was somebody else.
/// For VOREL_PLANE_PAIRS `width` counts bytes.
struct buffer {
  void* data;
  uint32_t height;
  uint32_t width;
  uint32_t kind;
  uint32_t padX;
  uint32_t padY;
  uint32_t innerWidth;
  uint32_t innerHeight;
  bool borrowed;
};

#endif  // VOREL_WAVELET_BUFFER_H_
