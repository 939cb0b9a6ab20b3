#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/vectorize.h"
#include "vorel/convert.h"

namespace {

constexpr int32_t kBlock = 16;

// Top-left pair of every block: `u_at` is the first block's u byte; v lies `v_offset` bytes on.
void sample_blocks(const uint8_t* u_at, ptrdiff_t v_offset, ptrdiff_t block_bytes, int32_t blocks,
                   uint8_t* u, uint8_t* v) {
  for (int32_t block = 0; block < blocks; ++block) {
    const uint8_t* at = u_at + block * block_bytes;
    u[block] = at[0];
    v[block] = at[v_offset];
  }
}

// `chroma_row` of a 4:2:0 plane to row `block_row` of u and v.
void sample_planar_row(const uint8_t* uv_in, ptrdiff_t chroma_row, ptrdiff_t block_row,
                       int32_t cols, int32_t width, uint8_t* u, uint8_t* v) {
  const ptrdiff_t at = block_row * (width >> 4);
  sample_blocks(uv_in + chroma_row * 2 * (width >> 1), 1, kBlock, cols / kBlock, u + at, v + at);
}

void sample_packed_row(const uint8_t* packed_in, ptrdiff_t row, ptrdiff_t block_row, int32_t cols,
                       int32_t width, uint8_t* u, uint8_t* v) {
  const ptrdiff_t at = block_row * (width >> 4);
  sample_blocks(packed_in + row * 2 * width + 1, 2, 2 * kBlock, cols / kBlock, u + at, v + at);
}

void copy_packed_luma(const uint8_t* __restrict packed_row, uint8_t* __restrict y, int32_t cols) {
  VOREL_VECTORIZE
  for (int32_t x = 0; x < cols; ++x) y[x] = packed_row[2 * x];
}

}  // namespace

int deinterleave_yuv420_uv_downsample_neon(uint8_t* u, uint8_t* v, const uint8_t* uv_in,
                                           int32_t cols, int32_t rows, int32_t width) {
  if (rows < 1 || cols < 1) return 0;
  for (int32_t block_row = 0; block_row < rows / kBlock; ++block_row) {
    sample_planar_row(uv_in, ptrdiff_t{block_row} * (kBlock / 2), block_row, cols, width, u, v);
  }
  return 0;
}

int deinterleave_uv422_uv_downsample_neon(uint8_t*, uint8_t* u, uint8_t* v,
                                          const uint8_t* packed_in, int32_t width, int32_t rows,
                                          int32_t cols) {
  if (rows < 1 || cols < 1) return 0;
  for (int32_t block_row = 0; block_row < rows / kBlock; ++block_row) {
    sample_packed_row(packed_in, ptrdiff_t{block_row} * kBlock, block_row, cols, width, u, v);
  }
  return 0;
}

int deinterleave_yuv422_uv_downsample_neon(uint8_t* y, uint8_t* u, uint8_t* v,
                                           const uint8_t* packed_in, int32_t width, int32_t rows,
                                           int32_t cols) {
  if (rows < 1 || cols < 1) return 0;
  for (ptrdiff_t row = 0; row < rows; ++row) {
    copy_packed_luma(packed_in + row * 2 * width, y + row * width, cols);
  }
  return deinterleave_uv422_uv_downsample_neon(y, u, v, packed_in, width, rows, cols);
}

void* deinterleave_yuv420_uv_downsample(void* job) {
  const deinterleave_job& frame = *static_cast<const deinterleave_job*>(job);
  const int32_t cols = frame.width & ~(kBlock - 1);
  const int32_t rows = frame.height & ~(kBlock - 1);
  deinterleave_yuv420_uv_downsample_neon(frame.u, frame.v, frame.uv_in, cols, rows, frame.width);
  const int32_t chroma_rows = frame.height / 2;
  if (frame.height == rows || chroma_rows < 1 || cols < 1) return nullptr;
  // A height of 16 n + 1 has no chroma row below the whole blocks.
  const int32_t chroma_row = rows / 2 < chroma_rows ? rows / 2 : chroma_rows - 1;
  sample_planar_row(frame.uv_in, chroma_row, frame.height >> 4, cols, frame.width, frame.u,
                    frame.v);
  return nullptr;
}

void* deinterleave_yuv422_uv_downsample(void* job) {
  const deinterleave_job& frame = *static_cast<const deinterleave_job*>(job);
  const int32_t cols = frame.width & ~(kBlock - 1);
  const int32_t rows = frame.height & ~(kBlock - 1);
  if (cols < 1 || frame.height < 1) return nullptr;
  deinterleave_yuv422_uv_downsample_neon(frame.y, frame.u, frame.v, frame.packed_in, frame.width,
                                         rows, cols);
  if (frame.height == rows) return nullptr;
  sample_packed_row(frame.packed_in, rows, frame.height >> 4, cols, frame.width, frame.u, frame.v);
  const ptrdiff_t width = frame.width;
  for (ptrdiff_t row = rows; row < frame.height; ++row) {
    copy_packed_luma(frame.packed_in + row * 2 * width, frame.y + row * width, cols);
  }
  const uint8_t* last = frame.y + (frame.height - 1) * width;
  for (ptrdiff_t row = frame.height; row < rows + kBlock; ++row) {
    std::memcpy(frame.y + row * width, last, static_cast<size_t>(cols));
  }
  return nullptr;
}
