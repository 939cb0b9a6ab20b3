#include <gtest/gtest.h>

#include "tests/convert/plane_check.h"
#include "vorel/convert.h"

namespace {

struct Size {
  int width;
  int height;
  int block_cols() const { return width / 16; }
  int block_rows() const { return (height + 15) / 16; }
};

// Heights around a block row, of no whole block row, and of a last row without chroma of its own.
const Size kSizes[] = {{16, 2},  {16, 15},  {48, 16}, {48, 17},   {80, 31},
                       {80, 33}, {100, 50}, {15, 32}, {1008, 18}, {48, 1081}};

class Deinterleave : public testing::TestWithParam<Guard> {};

TEST_P(Deinterleave, SamplesBlocksAndCopiesPackedLuma) {
  std::mt19937 random(3);
  for (const Size size : kSizes) {
    SCOPED_TRACE(std::to_string(size.width) + "x" + std::to_string(size.height));
    const int pitch = size.width / 2 * 2;
    Guarded uv(make_bytes(pitch * (size.height / 2), Pattern::kRandom, random), GetParam());
    Guarded packed(make_bytes(2 * size.width * size.height, Pattern::kRandom, random), GetParam());
    Bytes u, v, packed_u, packed_v;
    for (int row = 0; row < size.block_rows(); ++row) {
      const int chroma_row = std::min(8 * row, size.height / 2 - 1);
      for (int col = 0; col < size.block_cols(); ++col) {
        const uint8_t* pair = uv.data() + chroma_row * pitch + 16 * col;
        const uint8_t* group = packed.data() + 2 * (16 * row * size.width + 16 * col);
        u.push_back(pair[0]);
        v.push_back(pair[1]);
        packed_u.push_back(group[1]);
        packed_v.push_back(group[3]);
      }
    }
    Bytes luma(static_cast<size_t>(size.width * 16 * size.block_rows()), kUntouched);
    for (size_t i = 0; i < luma.size(); ++i) {
      const int row = std::min(static_cast<int>(i) / size.width, size.height - 1);
      const int col = static_cast<int>(i) % size.width;
      if (col < 16 * size.block_cols()) luma[i] = packed.data()[2 * (row * size.width + col)];
    }

    Guarded out_u(Bytes(u.size()), GetParam());
    Guarded out_v(Bytes(v.size()), GetParam());
    Guarded out_y(Bytes(luma.size(), kUntouched), GetParam());
    deinterleave_job job{};
    job.width = size.width;
    job.height = size.height;
    job.y = out_y.data();
    job.u = out_u.data();
    job.v = out_v.data();
    job.uv_in = uv.data();
    EXPECT_EQ(deinterleave_yuv420_uv_downsample(&job), nullptr);
    EXPECT_EQ(difference(out_u, u, "u"), "");
    EXPECT_EQ(difference(out_v, v, "v"), "");
    EXPECT_EQ(difference(out_y, Bytes(luma.size(), kUntouched), "y"), "");
    job.uv_in = nullptr;
    job.packed_in = packed.data();
    EXPECT_EQ(deinterleave_yuv422_uv_downsample(&job), nullptr);
    EXPECT_EQ(difference(out_u, packed_u, "packed u"), "");
    EXPECT_EQ(difference(out_v, packed_v, "packed v"), "");
    EXPECT_EQ(difference(out_y, luma, "packed y"), "");
  }
}

INSTANTIATE_TEST_SUITE_P(Guards, Deinterleave, testing::Values(Guard::kEnd, Guard::kStart));

TEST(DeinterleaveKernels, CoverTheAreaTheyAreGiven) {
  // 3 x 2 blocks of a frame 4 blocks wide; the rest stays.
  std::mt19937 random(4);
  Bytes uv = make_bytes(64 * 24, Pattern::kRandom, random);
  Bytes packed = make_bytes(128 * 48, Pattern::kRandom, random);
  Bytes u(12, kUntouched), v(12, kUntouched);
  deinterleave_yuv420_uv_downsample_neon(u.data(), v.data(), uv.data(), 48, 32, 64);
  EXPECT_EQ(u[6], uv[8 * 64 + 32]);
  EXPECT_EQ(v[6], uv[8 * 64 + 33]);
  deinterleave_uv422_uv_downsample_neon(nullptr, u.data(), v.data(), packed.data(), 64, 32, 48);
  EXPECT_EQ(u[6], packed[16 * 128 + 65]);
  EXPECT_EQ(v[6], packed[16 * 128 + 67]);
  EXPECT_EQ(std::count(u.begin() + 7, u.end(), kUntouched), 5);
  EXPECT_EQ(u[3], kUntouched);
}

TEST(DeinterleaveKernels, EmptyAreasWriteNothing) {
  Bytes plane(64, kUntouched);
  for (const Size size : {Size{0, 16}, Size{16, 0}, Size{-16, 32}, Size{32, -16}, Size{8, 1}}) {
    deinterleave_job job{};
    job.width = size.width;
    job.height = size.height;
    job.y = job.u = job.v = plane.data();
    job.uv_in = job.packed_in = plane.data();
    deinterleave_yuv420_uv_downsample(&job);
    deinterleave_yuv422_uv_downsample(&job);
  }
  EXPECT_EQ(plane, Bytes(64, kUntouched));
}

}  // namespace
