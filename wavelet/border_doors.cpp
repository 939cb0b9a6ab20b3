// The exported border functions.

#include "vorel/wavelet/border_handler.h"
#include "wavelet/border.h"

BorderHandler* BorderHandler::getInstance() {
  static BorderHandler borderHdl;
  return &borderHdl;
}

void BorderHandler::runCopyAndPad(buffer* in, buffer* first, buffer* second, unsigned rowBegin,
                                  unsigned rowEnd) {
  pad_pairs_rows(*in, *first, *second, rowBegin, rowEnd);
}

void BorderHandler::runPad(buffer* first, buffer* second, unsigned rowBegin, unsigned rowEnd) {
  pad_plane(*first, rowBegin, rowEnd);
  pad_plane(*second, rowBegin, rowEnd);
}

void BorderHandler::stripPad(_Float16* padded, _Float16* out, int stride, int padX, int padY,
                             int width, int height) {
  copy_inner(padded, {stride, padX, padY, width, height}, out);
}

void boxFilter3x3(buffer* in, buffer* out, buffer*) { mean_3x3_plane(*in, *out); }
