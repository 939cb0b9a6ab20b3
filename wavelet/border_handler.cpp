#include "vorel/wavelet/border_handler.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "wavelet/kernels/border_rows.h"

namespace {

border_cut cut_of(const buffer& plane) { return {plane.padX, plane.innerWidth, plane.width}; }

// The inner row that a bordered row repeats.
size_t inner_row_of(const buffer& plane, unsigned row) {
  const uint32_t distance = row > plane.padY ? row - plane.padY : 0;
  return std::min(distance, plane.innerHeight - 1);
}

_Float16* row_of(const buffer& plane, size_t row) {
  return static_cast<_Float16*>(plane.data) + row * plane.width;
}

// An empty inner area has no sample that the border could repeat.
bool is_empty(const buffer& plane) { return plane.innerWidth == 0 || plane.innerHeight == 0; }

void pad_plane(const buffer& plane, unsigned row_begin, unsigned row_end) {
  if (is_empty(plane)) return;
  const border_cut cut = cut_of(plane);
  for (unsigned row = row_begin; row < row_end; ++row) {
    const size_t source = inner_row_of(plane, row) + plane.padY;
    pad_row(row_of(plane, source) + plane.padX, row_of(plane, row), cut);
  }
}

}  // namespace

BorderHandler* BorderHandler::getInstance() {
  static BorderHandler borderHdl;
  return &borderHdl;
}

void BorderHandler::runCopyAndPad(buffer* in, buffer* first, buffer* second, unsigned rowBegin,
                                  unsigned rowEnd) {
  if (is_empty(*first)) return;
  const border_cut cut = cut_of(*first);
  const auto* pairs = static_cast<const uint8_t*>(in->data);
  for (unsigned row = rowBegin; row < rowEnd; ++row) {
    pad_pairs_row(pairs + inner_row_of(*first, row) * in->width, row_of(*first, row),
                  row_of(*second, row), cut);
  }
}

void BorderHandler::runPad(buffer* first, buffer* second, unsigned rowBegin, unsigned rowEnd) {
  pad_plane(*first, rowBegin, rowEnd);
  pad_plane(*second, rowBegin, rowEnd);
}

void BorderHandler::stripPad(_Float16* padded, _Float16* out, int stride, int padX, int padY,
                             int width, int height) {
  const _Float16* src = padded + ptrdiff_t{padY} * stride + padX;
  for (ptrdiff_t row = 0; row < height; ++row) {
    std::memcpy(out + row * width, src + row * stride,
                static_cast<size_t>(width) * sizeof(_Float16));
  }
}

void boxFilter3x3(buffer* in, buffer* out, buffer*) {
  if (in->width == 0) return;
  for (size_t row = 0; row < in->height; ++row) {
    const size_t above = row > 0 ? row - 1 : 0;
    const size_t below = std::min<size_t>(row + 1, in->height - 1);
    mean_3x3_row(row_of(*in, above), row_of(*in, row), row_of(*in, below), row_of(*out, row),
                 in->width);
  }
}
