#include "wavelet/haar_planes.h"

#include <cstddef>
#include <cstdint>

#include "wavelet/kernels/haar_rows.h"

namespace {

template <typename Sample>
sample_line<Sample> plane_line(const Sample* plane, int pitch, int height) {
  return {plane, pitch, height, kAllRows};
}

}  // namespace

template <typename Sample>
void split_plane_rows(const analysis_filter& filter, const _Float16* taps, const Sample* src,
                      const haar_split& out, plane_size size) {
  for (int y = 0; y < size.height && size.width > 0; ++y) {
    const ptrdiff_t offset = ptrdiff_t{y} * size.width;
    split_row(filter, taps, src + offset, size.width, out.from(offset));
  }
}

template <typename Sample>
void split_plane_directionally(const _Float16* taps, const Sample* src, const haar_split& out,
                               plane_size size) {
  for (int y = 0; y < size.height - 1 && size.width > 1; ++y) {
    const ptrdiff_t offset = ptrdiff_t{y} * size.width;
    split_row(kHaarDirectional, taps, src + offset, size.width - 1, out.from(offset));
  }
}

void split_plane_columns(const analysis_filter& filter, const _Float16* taps, const _Float16* src,
                         const haar_split& out, plane_size size, int row_end) {
  const sample_line<_Float16> line = plane_line(src, size.width, size.height);
  for (int y = 0; y < row_end && size.width > 0; ++y) {
    const ptrdiff_t offset = ptrdiff_t{y} * size.width;
    split_at(filter, taps, line, y, out.from(offset), size.width);
  }
}

void join_plane_rows(const synthesis_filter& filter, const _Float16* taps, const haar_bands& bands,
                     _Float16* out, int width, span rows) {
  for (int y = rows.first; y < rows.end && width > 0; ++y) {
    const ptrdiff_t in = ptrdiff_t{y} * bands.pitch;
    join_row(filter, taps, {row_line(bands.lo + in, width), row_line(bands.hi + in, width)}, width,
             out + ptrdiff_t{y} * width);
  }
}

void join_plane_directionally(const _Float16* taps, const haar_bands& bands, _Float16* out,
                              plane_size size) {
  const int width = size.width;
  for (int y = 0; y < size.height - 1 && width >= 3; ++y) {
    const ptrdiff_t in = ptrdiff_t{y} * bands.pitch;
    join_row(kHaarJoinRows, taps, {row_line(bands.lo + in, width), row_line(bands.hi + in, width)},
             width - 2, out + in + width + 1);
  }
}

void join_plane_columns(const synthesis_filter& filter, const _Float16* taps,
                        const haar_bands& bands, _Float16* out, plane_size size, int row_end) {
  const band_lines lines = {plane_line(bands.lo, bands.pitch, size.height),
                            plane_line(bands.hi, bands.pitch, size.height)};
  for (int y = 0; y < row_end && size.width > 0; ++y) {
    join_at(filter, taps, lines, y, out + ptrdiff_t{y} * size.width, size.width);
  }
}

void add_planes(const _Float16* a, const _Float16* b, _Float16* out, plane_size size) {
  for (int y = 1; y < size.height && size.width > 0; ++y) {
    const ptrdiff_t row = ptrdiff_t{y} * size.width;
    add_rows(a + row, b + row, out + row, size.width);
  }
}

template void split_plane_rows(const analysis_filter&, const _Float16*, const _Float16*,
                               const haar_split&, plane_size);
template void split_plane_rows(const analysis_filter&, const _Float16*, const uint8_t*,
                               const haar_split&, plane_size);
template void split_plane_directionally(const _Float16*, const _Float16*, const haar_split&,
                                        plane_size);
template void split_plane_directionally(const _Float16*, const uint8_t*, const haar_split&,
                                        plane_size);
