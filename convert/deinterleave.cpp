#include "convert/deinterleave.h"

#include <cstddef>
#include <cstring>

#include "platform/vectorize.h"

namespace {

constexpr int32_t kBlock = 16;

int32_t whole_blocks(int32_t size) { return size & ~(kBlock - 1); }

// Samples of one row of blocks. `at` is the first block's u byte; v lies `v_offset` bytes on.
struct block_samples {
  const uint8_t* at;
  ptrdiff_t v_offset;
  ptrdiff_t block_bytes;
};

void sample_row(const block_samples& row, const block_area& area, ptrdiff_t block_row) {
  const ptrdiff_t out = block_row * (area.width >> 4);
  for (ptrdiff_t block = 0; block < area.cols / kBlock; ++block) {
    const uint8_t* at = row.at + block * row.block_bytes;
    area.u[out + block] = at[0];
    area.v[out + block] = at[row.v_offset];
  }
}

// `chroma_row` of a 4:2:0 plane to row `block_row` of u and v.
void sample_planar_row(const block_area& area, ptrdiff_t chroma_row, ptrdiff_t block_row) {
  sample_row({area.in + chroma_row * 2 * (area.width >> 1), 1, kBlock}, area, block_row);
}

void sample_packed_row(const block_area& area, ptrdiff_t row, ptrdiff_t block_row) {
  sample_row({area.in + row * 2 * area.width + 1, 2, 2 * kBlock}, area, block_row);
}

void copy_luma_row(const uint8_t* __restrict packed_row, uint8_t* __restrict y, int32_t cols) {
  VOREL_VECTORIZE
  for (int32_t x = 0; x < cols; ++x) y[x] = packed_row[2 * x];
}

}  // namespace

void sample_planar_area(const block_area& area) {
  if (area.cols < 1) return;
  for (ptrdiff_t block_row = 0; block_row < area.rows / kBlock; ++block_row) {
    sample_planar_row(area, block_row * (kBlock / 2), block_row);
  }
}

void sample_packed_area(const block_area& area) {
  if (area.cols < 1) return;
  for (ptrdiff_t block_row = 0; block_row < area.rows / kBlock; ++block_row) {
    sample_packed_row(area, block_row * kBlock, block_row);
  }
}

void copy_packed_luma(const block_area& area) {
  if (area.cols < 1) return;
  const ptrdiff_t width = area.width;
  for (ptrdiff_t row = 0; row < area.rows; ++row) {
    copy_luma_row(area.in + row * 2 * width, area.y + row * width, area.cols);
  }
}

void deinterleave_planar(const deinterleave_job& frame) {
  const int32_t rows = whole_blocks(frame.height);
  const int32_t cols = whole_blocks(frame.width);
  const int32_t chroma_rows = frame.height / 2;
  const block_area area{frame.uv_in, nullptr, frame.u, frame.v, frame.width, rows, cols};
  sample_planar_area(area);
  if (frame.height == rows || chroma_rows < 1 || cols < 1) return;
  // A height of 16 n + 1 has no chroma row below the whole blocks.
  const int32_t chroma_row = rows / 2 < chroma_rows ? rows / 2 : chroma_rows - 1;
  sample_planar_row(area, chroma_row, frame.height >> 4);
}

void deinterleave_packed(const deinterleave_job& frame) {
  const int32_t rows = whole_blocks(frame.height);
  const int32_t cols = whole_blocks(frame.width);
  if (cols < 1 || frame.height < 1) return;
  const block_area area{frame.packed_in, frame.y,      frame.u, frame.v,
                        frame.width,     frame.height, cols};
  copy_packed_luma(area);
  sample_packed_area(area);
  if (frame.height == rows) return;
  sample_packed_row(area, rows, frame.height >> 4);
  const ptrdiff_t width = frame.width;
  const uint8_t* last = frame.y + (frame.height - 1) * width;
  for (ptrdiff_t row = frame.height; row < rows + kBlock; ++row) {
    std::memcpy(frame.y + row * width, last, static_cast<size_t>(cols));
  }
}
