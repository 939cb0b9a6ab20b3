// What the functions without a record cover; the rules are in the kernel test.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "vorel/convert.h"

namespace {

using Bytes = std::vector<uint8_t>;
constexpr uint8_t kUntouched = 0xA5;

TEST(DeinterleaveKernels, CoverTheAreaTheyAreGiven) {
  // 3 x 2 blocks of a frame 4 blocks wide; the rest stays.
  Bytes uv(64 * 24), packed(128 * 48);
  for (size_t i = 0; i < packed.size(); ++i) packed[i] = static_cast<uint8_t>(i % 251);
  for (size_t i = 0; i < uv.size(); ++i) uv[i] = static_cast<uint8_t>(i % 241);
  Bytes u(12, kUntouched), v(12, kUntouched);
  EXPECT_EQ(deinterleave_yuv420_uv_downsample_neon(u.data(), v.data(), uv.data(), 48, 32, 64), 0);
  EXPECT_EQ(u[6], uv[8 * 64 + 32]);
  EXPECT_EQ(v[6], uv[8 * 64 + 33]);
  EXPECT_EQ(
      deinterleave_uv422_uv_downsample_neon(nullptr, u.data(), v.data(), packed.data(), 64, 32, 48),
      0);
  EXPECT_EQ(u[6], packed[16 * 128 + 65]);
  EXPECT_EQ(v[6], packed[16 * 128 + 67]);
  EXPECT_EQ(std::count(u.begin() + 7, u.end(), kUntouched), 5);
  EXPECT_EQ(u[3], kUntouched);
  Bytes y(64 * 32, kUntouched);
  std::fill(u.begin(), u.end(), kUntouched);
  EXPECT_EQ(deinterleave_yuv422_uv_downsample_neon(y.data(), u.data(), v.data(), packed.data(), 64,
                                                   32, 48),
            0);
  EXPECT_EQ(y[31 * 64 + 47], packed[2 * (31 * 64 + 47)]);
  EXPECT_EQ(y[31 * 64 + 48], kUntouched);
  EXPECT_EQ(u[6], packed[16 * 128 + 65]);
}

TEST(DeinterleaveKernels, EmptyAreasWriteNothing) {
  Bytes plane(64, kUntouched);
  constexpr int kSizes[][2] = {{0, 16}, {16, 0}, {-16, 32}, {32, -16}, {8, 1}};
  for (const auto& [width, height] : kSizes) {
    deinterleave_job job{};
    job.width = width;
    job.height = height;
    job.y = job.u = job.v = plane.data();
    job.uv_in = job.packed_in = plane.data();
    deinterleave_yuv420_uv_downsample(&job);
    deinterleave_yuv422_uv_downsample(&job);
  }
  EXPECT_EQ(plane, Bytes(64, kUntouched));
}

}  // namespace
