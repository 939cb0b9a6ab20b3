// Borders around half-precision planes.
#ifndef VOREL_WAVELET_BORDER_HANDLER_H_
#define VOREL_WAVELET_BORDER_HANDLER_H_

#include "vorel/export.h"
#include "vorel/wavelet/buffer.h"

/// Callers, every member: makes and removes borders. The border repeats the nearest inner sample.
/// No state: any number of threads may use the one object on disjoint rows.
class VOREL_EXPORT BorderHandler {
 public:
  static BorderHandler* getInstance();

  /// Converts interleaved 8-bit pairs to the rows [rowBegin, rowEnd) of two bordered planes.
  /// `in`: at least as many rows and pairs as the inner area of the outputs; its `width` is the
  /// bytes per row. Rows are counted in bordered coordinates. Both outputs have the same geometry;
  /// with an empty inner area nothing is written.
  void runCopyAndPad(buffer* in, buffer* first, buffer* second, unsigned rowBegin, unsigned rowEnd);

  /// Fills the border samples of the rows [rowBegin, rowEnd) of two planes whose inner area is
  /// there already.
  void runPad(buffer* first, buffer* second, unsigned rowBegin, unsigned rowEnd);

  /// Copies `height` rows of `width` samples, starting at column `padX` and row `padY` of a plane
  /// with `stride` samples per row, to the dense plane `out`.
  void stripPad(_Float16* padded, _Float16* out, int stride, int padX, int padY, int width,
                int height);
};

/// Callers: mean of the 3 x 3 neighbourhood of every sample of `in`, with the edge repeated outside
/// the plane: the nine samples are added in row order from 0 and the sum is multiplied by 1/9, each
/// step in half precision. `scratch` is not used and may be null. `in` and `out` have one size and
/// must not overlap.
VOREL_EXPORT void boxFilter3x3(buffer* in, buffer* out, buffer* scratch);

#endif  // VOREL_WAVELET_BORDER_HANDLER_H_
