#include <gtest/gtest.h>

#include "tests/convert/plane_check.h"
#include "vorel/convert.h"

namespace {

struct Variant {
  const char* name;
  int across;
  int down;
  void* (*job)(void*);
};
const Variant kVariants[] = {
    {"y", 16, 16, upsample_y}, {"uv420", 8, 8, upsample_uv420}, {"uv422", 8, 16, upsample_uv422}};

// Past one stack block of columns, odd, and so small that everything is continued flat.
struct Size {
  int cols;
  int rows;
};
const Size kSizes[] = {{1, 1},  {1, 4},   {5, 1},   {2, 2},  {3, 7},
                       {85, 5}, {128, 3}, {129, 2}, {261, 3}};

// The floor of the exact bilinear value.
uint8_t bilinear(const uint8_t* src, Size size, const Variant& variant, int y, int x) {
  const int row = y / variant.down;
  const int col = x / variant.across;
  const int next_row = std::min(row + 1, size.rows - 1);
  const int next_col = std::min(col + 1, size.cols - 1);
  const int below = y % variant.down;
  const int right = x % variant.across;
  const int above = variant.down - below;
  const int left = variant.across - right;
  const int sum = above * left * src[row * size.cols + col] +
                  above * right * src[row * size.cols + next_col] +
                  below * left * src[next_row * size.cols + col] +
                  below * right * src[next_row * size.cols + next_col];
  return static_cast<uint8_t>(sum / (variant.across * variant.down));
}

TEST(Upsample, GivesTheFloorOfTheBilinearValue) {
  std::mt19937 random(7);
  for (const Variant& variant : kVariants) {
    for (const Size size : kSizes) {
      for (const Pattern pattern : kAllPatterns) {
        for (const Guard guard : {Guard::kEnd, Guard::kStart}) {
          SCOPED_TRACE(std::string(variant.name) + ' ' + std::to_string(size.cols) + 'x' +
                       std::to_string(size.rows) + " pattern " +
                       std::to_string(static_cast<int>(pattern)));
          Guarded src(make_bytes(size.cols * size.rows, pattern, random), guard);
          Bytes expected;
          for (int y = 0; y < size.rows * variant.down; ++y) {
            for (int x = 0; x < size.cols * variant.across; ++x) {
              expected.push_back(bilinear(src.data(), size, variant, y, x));
            }
          }
          Guarded dst(Bytes(expected.size()), guard);
          upsample_job job{size.cols, size.rows, src.data(), dst.data()};
          EXPECT_EQ(variant.job(&job), nullptr);
          ASSERT_EQ(difference(dst, expected, "job"), "");
          Guarded scalar(Bytes(expected.size()), guard);
          if (variant.job == upsample_y) {
            y_upsample(scalar.data(), src.data(), size.rows, size.cols);
            ASSERT_EQ(difference(scalar, expected, "y_upsample"), "");
          } else if (variant.job == upsample_uv422) {
            uv_upsample(src.data(), scalar.data(), size.rows, size.cols);
            ASSERT_EQ(difference(scalar, expected, "uv_upsample"), "");
          }
        }
      }
    }
  }
}

TEST(Upsample, RampBetweenBlackAndWhite) {
  uint8_t src[] = {0, 255};
  const Bytes ramp = {0, 15, 31, 47, 63, 79, 95, 111, 127, 143, 159, 175, 191, 207, 223, 239};
  Bytes luma(2 * 256);
  upsample_y_neon(luma.data(), src, 2, 1);
  EXPECT_EQ(Bytes(luma.begin() + 15 * 32, luma.begin() + 15 * 32 + 16), ramp);
  EXPECT_EQ(Bytes(luma.end() - 16, luma.end()), Bytes(16, 255));
  Bytes chroma(2 * 64);
  upsample_uv420_neon(chroma.data(), src, 1, 2, 1);
  for (size_t row = 0; row < 8; ++row) EXPECT_EQ(chroma[row * 8 + 5], ramp[2 * row]);
}

TEST(Upsample, ChromaKernelsCoverTheFirstColumnsOnly) {
  Bytes src(3 * 2, 77);
  for (const bool packed : {false, true}) {
    const size_t rows = packed ? 32 : 16;
    Bytes dst(24 * rows, kUntouched);
    (packed ? upsample_uv_neon : upsample_uv420_neon)(dst.data(), src.data(), 3, 2, 2);
    for (size_t i = 0; i < dst.size(); ++i) ASSERT_EQ(dst[i], i % 24 < 16 ? 77 : kUntouched) << i;
  }
}

TEST(Upsample, EmptyPlanesWriteNothing) {
  uint8_t sample = kUntouched;
  for (const Size size : {Size{0, 1}, Size{1, 0}, Size{-1, 1}}) {
    upsample_y_neon(&sample, &sample, size.cols, size.rows);
    upsample_uv420_neon(&sample, &sample, size.cols, size.rows, 2);
    upsample_uv_neon(&sample, &sample, size.cols, size.rows, 2);
    y_upsample(&sample, &sample, size.rows, size.cols);
    uv_upsample(&sample, &sample, size.rows, size.cols);
  }
  EXPECT_EQ(sample, kUntouched);
}

}  // namespace
