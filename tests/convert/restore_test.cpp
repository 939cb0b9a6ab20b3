// Worked examples of the restore step; the rule is in the kernel test.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "vorel/convert.h"

namespace {

using Bytes = std::vector<uint8_t>;

struct Thresholds {
  int32_t y_upper, y_lower, uv, cs_upper, cs_lower;
  interleaving_tuning tuning() const {
    interleaving_tuning tuning{};
    tuning.d_Y_upper_thresh = y_upper;
    tuning.d_Y_lower_thresh = y_lower;
    tuning.d_UV_thresh = uv;
    tuning.cs_upper_thresh = cs_upper;
    tuning.cs_lower_thresh = cs_lower;
    return tuning;
  }
};

constexpr Thresholds kDefaults = {4, 1, 16, 48, 36};

// Hand-worked results. One row of 16 pixels holds 8 pairs; two rows make one chroma row.
struct Corner {
  Bytes y = Bytes(32, 100);
  Bytes low = Bytes(32, 100);
  Bytes high = Bytes(32, 128);
  Bytes uv = Bytes(16, 128);
  Bytes u = Bytes(8, 128);
  Bytes v = Bytes(8, 128);

  void run(const Thresholds& thresholds) {
    interleaving_tuning tuning = thresholds.tuning();
    interleave_job job{};
    job.width = 16;
    job.rows = 2;
    job.y_low = low.data();
    job.y_high = high.data();
    job.upsampled_u = u.data();
    job.upsampled_v = v.data();
    job.y_in = job.y_out = y.data();
    job.uv_in = job.uv_out = uv.data();
    job.tuning = &tuning;
    EXPECT_EQ(restore_interleave_yuv420(&job), nullptr);
  }
};

TEST(RestoreByHand, Luma) {
  Corner corner;
  const int rebuilt[] = {101, 102, 103, 104, 150, 98, 97, 96};
  for (size_t i = 0; i < 8; ++i) corner.low[i] = static_cast<uint8_t>(rebuilt[i]);
  corner.y[8] = 253, corner.low[8] = 200, corner.high[8] = 255;  // 327 is cut to 255
  corner.y[9] = 2, corner.low[9] = 100, corner.high[9] = 0;      // -28 is cut to 0
  corner.run(kDefaults);
  // 1 away: input. 2 away: (2 * 100 + 2 * 102) / 4. 3 away: (3 * 100 + 103) / 4 = 100.75. 4: input.
  const Bytes expected = {100, 101, 101, 100, 100, 99, 99, 100, 254, 1, 100};
  EXPECT_EQ(Bytes(corner.y.begin(), corner.y.begin() + 11), expected);
}

TEST(RestoreByHand, LumaSumWrapsAndKeepsTheLowByte) {
  Corner corner;
  corner.y[0] = 255, corner.low[0] = 254;
  corner.y[1] = 10, corner.low[1] = 250;
  corner.y[2] = 255, corner.low[2] = 255;
  corner.run({200, 0, 16, 48, 36});
  // 255 + 199 * 254 = 50801, as 16 bits -14735: -73.675 + 0.5 -> -73 -> 183.
  EXPECT_EQ(corner.y[0], 183);
  EXPECT_EQ(corner.y[1], 10);   // 200 * 10 = 2000: no wrap
  EXPECT_EQ(corner.y[2], 255);  // no difference: the input, although 200 * 255 would wrap
}

TEST(RestoreByHand, Chroma) {
  Corner corner;
  corner.u[1] = 130, corner.v[1] = 126;
  corner.u[2] = 138, corner.v[2] = 118;
  corner.uv[6] = 148, corner.uv[7] = 128, corner.u[3] = 139, corner.v[3] = 128;
  corner.run(kDefaults);
  const Bytes expected = {
      128, 128,  // grey on grey: weight 0
      129, 127,  // e 4, s 36: 274 / 36 = 7; (7 * 128 + 9 * 130) / 16 = 129.1, 126.9
      128, 128,  // e 20: 1298 / 36 = 36, cut to 16: the input
      148, 128,  // e 9, s 36: 594 / 36 = 16: the input
  };
  EXPECT_EQ(Bytes(corner.uv.begin(), corner.uv.begin() + 8), expected);
}

TEST(RestoreByHand, ChromaMeanIsClamped) {
  Corner corner;
  corner.u[0] = corner.v[0] = 255;
  corner.uv[0] = corner.uv[1] = 0;
  corner.u[1] = 255, corner.v[1] = 128;
  corner.run({4, 1, 258, 20000, 20000});
  // e 510, s 20000: 42640 / 20000 = 2; 256 * 255 = 65280, as 16 bits -256: below 0.
  EXPECT_EQ(corner.uv[0], 0);
  // e 127: 18128 / 20000 = 0: the filtered pair.
  EXPECT_EQ(corner.uv[2], 255);
}

TEST(RestoreByHand, ZeroThresholdsWriteNothing) {
  for (const Thresholds& thresholds : {Thresholds{0, 1, 16, 48, 36}, Thresholds{4, 1, 0, 48, 36}}) {
    Corner corner;
    corner.low.assign(32, 102);
    corner.u.assign(8, 130);
    corner.run(thresholds);
    EXPECT_EQ(corner.y, Corner().y);
    EXPECT_EQ(corner.uv, Corner().uv);
    Bytes packed(64, 128);
    interleaving_tuning tuning = thresholds.tuning();
    interleave_job job{};
    job.width = 16;
    job.rows = 1;
    job.packed = packed.data();
    job.y_low = job.y_high = corner.low.data();
    job.upsampled_u = job.upsampled_v = corner.u.data();
    job.tuning = &tuning;
    EXPECT_EQ(restore_interleave_yuv422(&job), nullptr);
    EXPECT_EQ(packed, Bytes(64, 128));
    // Chroma alone asks only for its own threshold.
    restore_interleave_uv420_neon(nullptr, corner.uv.data(), nullptr, nullptr, corner.u.data(),
                                  corner.v.data(), 16, 2, corner.uv.data(), &tuning);
    EXPECT_EQ(corner.uv[0], thresholds.uv == 0 ? 128 : 130);  // weight 4: 129.5
    restore_interleave_uv422_neon(packed.data(), nullptr, nullptr, corner.u.data(), corner.v.data(),
                                  16, 1, &tuning);
    EXPECT_EQ(packed[1], thresholds.uv == 0 ? 128 : 130);
  }
}

}  // namespace
