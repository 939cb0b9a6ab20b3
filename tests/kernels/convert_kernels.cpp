#include <algorithm>

#include "tests/kernels/kernel_list.h"
#include "tests/kernels/plain_upsample.h"
#include "vorel/convert.h"

namespace {

enum : size_t { kSource, kOutU, kOutV, kOutY };

int block_cols(KernelSize size) { return size.width / 16; }
int block_rows(KernelSize size) { return (size.height + 15) / 16; }

deinterleave_job describe_frame(KernelData& data) {
  deinterleave_job job{};
  job.width = data.size.width;
  job.height = data.size.height;
  job.u = data.bytes(kOutU);
  job.v = data.bytes(kOutV);
  job.y = data.bytes(kOutY);
  job.uv_in = job.packed_in = data.bytes(kSource);
  return job;
}

void add_block_planes(KernelData& data) {
  data.add_output(block_rows(data.size), block_cols(data.size));
  data.add_output(block_rows(data.size), block_cols(data.size));
  data.add_output(16 * block_rows(data.size), data.size.width);
}

void store_blocks(KernelData& data, int row, int col, const uint8_t* u, const uint8_t* v) {
  data.bytes(kOutU)[row * block_cols(data.size) + col] = *u;
  data.bytes(kOutV)[row * block_cols(data.size) + col] = *v;
}

struct Factor {
  int across;
  int down;
};

void add_upsample_planes(KernelData& data, Factor factor) {
  data.add_input(data.size.height, data.size.width);
  data.add_output(data.size.height * factor.down, data.size.width * factor.across);
}

upsample_job describe_plane(KernelData& data) {
  return {data.size.width, data.size.height, data.bytes(0), data.bytes(1)};
}

// The factor is the compiler's to know: each output is divided by it.
template <Factor factor>
void upsample_plainly(KernelData& data) {
  const PlainUpsampling plane{data.bytes(0), data.size.width, data.size.height, factor.across,
                              factor.down};
  const int width = data.size.width * factor.across;
  const int height = data.size.height * factor.down;
  uint8_t* out = data.bytes(1);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) out[y * width + x] = plane.at(y, x);
  }
}

}  // namespace

void make_deinterleave_planar(KernelData& data) {
  data.add_input(data.size.height / 2, data.size.width);
  add_block_planes(data);
}

void run_deinterleave_planar(KernelData& data, KernelStrip) {
  deinterleave_job job = describe_frame(data);
  deinterleave_yuv420_uv_downsample(&job);
}

void plain_deinterleave_planar(KernelData& data, KernelStrip) {
  for (int row = 0; data.size.height > 1 && row < block_rows(data.size); ++row) {
    const int chroma_row = std::min(8 * row, data.size.height / 2 - 1);
    for (int col = 0; col < block_cols(data.size); ++col) {
      const uint8_t* pair = data.bytes(kSource) + chroma_row * data.size.width + 16 * col;
      store_blocks(data, row, col, pair, pair + 1);
    }
  }
}

void make_deinterleave_packed(KernelData& data) {
  data.add_input(data.size.height, 2 * data.size.width);
  add_block_planes(data);
}

void run_deinterleave_packed(KernelData& data, KernelStrip) {
  deinterleave_job job = describe_frame(data);
  deinterleave_yuv422_uv_downsample(&job);
}

void plain_deinterleave_packed(KernelData& data, KernelStrip) {
  const int width = data.size.width;
  const uint8_t* packed = data.bytes(kSource);
  for (int row = 0; row < 16 * block_rows(data.size); ++row) {
    const uint8_t* from = packed + 2 * std::min(row, data.size.height - 1) * width;
    for (int x = 0; x < 16 * block_cols(data.size); ++x) {
      data.bytes(kOutY)[row * width + x] = from[2 * x];
      if (row % 16 == 0 && x % 16 == 0) {
        store_blocks(data, row / 16, x / 16, from + 2 * x + 1, from + 2 * x + 3);
      }
    }
  }
}

void make_upsample_y(KernelData& data) { add_upsample_planes(data, {16, 16}); }
void make_upsample_uv420(KernelData& data) { add_upsample_planes(data, {8, 8}); }
void make_upsample_uv422(KernelData& data) { add_upsample_planes(data, {8, 16}); }

void run_upsample_y(KernelData& data, KernelStrip) {
  upsample_job job = describe_plane(data);
  upsample_y(&job);
}
void run_upsample_uv420(KernelData& data, KernelStrip) {
  upsample_job job = describe_plane(data);
  upsample_uv420(&job);
}
void run_upsample_uv422(KernelData& data, KernelStrip) {
  upsample_job job = describe_plane(data);
  upsample_uv422(&job);
}

void plain_upsample_y(KernelData& data, KernelStrip) { upsample_plainly<{16, 16}>(data); }
void plain_upsample_uv420(KernelData& data, KernelStrip) { upsample_plainly<{8, 8}>(data); }
void plain_upsample_uv422(KernelData& data, KernelStrip) { upsample_plainly<{8, 16}>(data); }
