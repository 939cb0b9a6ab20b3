// Restore kernels against the rule written out pixel by pixel in 64-bit integers.
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <optional>
#include <ostream>

#include "tests/convert/plane_check.h"
#include "vorel/convert.h"

namespace {

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

void PrintTo(const Thresholds& t, std::ostream* out) {
  *out << t.y_upper << ' ' << t.y_lower << ' ' << t.uv << ' ' << t.cs_upper << ' ' << t.cs_lower;
}

constexpr Thresholds kDefaults = {4, 1, 16, 48, 36};

// Both sides of every limit at which the kernels change their arithmetic, and what a broken tuning
// file may hold.
const Thresholds kThresholds[] = {
    kDefaults,
    {1, 0, 1, 48, 36},
    {2, 0, 3, 48, 0},
    {100, 40, 64, 256, 1},
    {65, 255, 127, 5, 30},
    {128, -5, 128, 0, 0},
    {129, 3, 129, 256, 0},
    {255, 256, 300, 12, -9},
    {1000, INT_MIN, 2000, 1, 1},
    {7, 7, 16, 32767, 32767},
    {7, 6, 16, 32768, 32767},
    {7, 5, 16, 48, 32768},
    {-1, -2, -1, 48, 36},
    {-300, -301, 16, -7, 36},
    {INT_MAX, INT_MAX - 1, INT_MAX, INT_MAX, INT_MAX},
    {INT_MAX, -1, INT_MAX, INT_MIN, INT_MAX},
    {INT_MIN, INT_MIN, INT_MIN, 48, INT_MIN},
    {INT_MIN + 1, INT_MIN, 1 << 24, 3, 2},
};

int64_t rounded_mean(int64_t weight, int64_t input, int64_t filtered, int64_t total) {
  const uint64_t sum = static_cast<uint64_t>(weight * input + (total - weight) * filtered);
  const float quotient = static_cast<float>(static_cast<int16_t>(sum & 0xFFFF)) /
                         static_cast<float>(static_cast<int32_t>(total));
  return static_cast<int64_t>(quotient + 0.5f);
}

uint8_t expected_luma(int input, int low, int high, const Thresholds& t) {
  const int rebuilt = std::clamp(low + high - 128, 0, 255);
  const int64_t distance = std::min<int64_t>(std::abs(rebuilt - input), t.y_upper);
  if (distance <= t.y_lower) return static_cast<uint8_t>(input);
  return static_cast<uint8_t>(rounded_mean(distance, input, rebuilt, t.y_upper) & 0xFF);
}

struct Pair {
  uint8_t first, second;
};

Pair expected_chroma(Pair c, Pair p, const Thresholds& t) {
  int64_t s = std::abs(c.first - 128) + std::abs(c.second - 128);
  if (s < t.cs_lower) s = t.cs_lower;
  if (s > t.cs_upper) s = t.cs_upper;
  const int64_t e = std::abs(c.first - p.first) + std::abs(c.second - p.second);
  int64_t a = s == 0 ? 0 : (64 * e + s / 2) / s;
  if (a < 0) a = 0;
  if (a > t.uv) a = t.uv;
  if (a == 0) return p;
  if (a == t.uv) return c;
  const auto blend = [&](int input, int filtered) {
    return static_cast<uint8_t>(
        std::clamp<int64_t>(rounded_mean(a, input, filtered, t.uv), 0, 255));
  };
  return {blend(c.first, p.first), blend(c.second, p.second)};
}

class Restore : public testing::TestWithParam<Thresholds> {
 protected:
  // Without a pattern: planes that differ little from each other and from grey, so that every
  // branch is taken.
  Bytes make_plane(int bytes) {
    if (pattern_) return make_bytes(bytes, *pattern_, random_);
    Bytes plane(static_cast<size_t>(bytes));
    for (uint8_t& sample : plane) sample = static_cast<uint8_t>(116 + random_() % 24);
    return plane;
  }
  Guarded make_guarded(int bytes) { return Guarded(make_plane(bytes), guard_); }

  void check_planar(int width, int rows) {
    interleaving_tuning tuning = GetParam().tuning();
    const int pairs = width / 2;
    Bytes y_in = make_plane(width * rows);
    Bytes uv_in = make_plane(width * (rows / 2));
    Guarded low = make_guarded(width * rows), high = make_guarded(width * rows);
    Guarded u = make_guarded(pairs * (rows / 2)), v = make_guarded(pairs * (rows / 2));
    Bytes luma, chroma;
    for (size_t i = 0; i < y_in.size(); ++i) {
      luma.push_back(expected_luma(y_in[i], low[i], high[i], GetParam()));
    }
    for (size_t k = 0; k < u.size(); ++k) {
      const Pair pair = expected_chroma({uv_in[2 * k], uv_in[2 * k + 1]}, {u[k], v[k]}, GetParam());
      chroma.insert(chroma.end(), {pair.first, pair.second});
    }

    Guarded y(y_in, guard_), uv(uv_in, guard_);
    Guarded y_out(Bytes(y_in.size()), guard_), uv_out(Bytes(uv_in.size()), guard_);
    restore_interleave_yuv420_neon(y.data(), uv.data(), low.data(), high.data(), u.data(), v.data(),
                                   width, rows, y_out.data(), uv_out.data(), &tuning);
    ASSERT_EQ(difference(y_out, luma, "luma"), "");
    ASSERT_EQ(difference(uv_out, chroma, "chroma"), "");

    Guarded uv_only(uv_in, guard_);
    restore_interleave_uv420_neon(nullptr, uv_only.data(), nullptr, nullptr, u.data(), v.data(),
                                  width, rows, uv_only.data(), &tuning);
    ASSERT_EQ(difference(uv_only, chroma, "chroma only"), "");

    Guarded y_io(y_in, guard_), uv_io(uv_in, guard_);
    interleave_job job{};
    job.width = width;
    job.rows = rows;
    job.y_low = low.data();
    job.y_high = high.data();
    job.upsampled_u = u.data();
    job.upsampled_v = v.data();
    job.y_in = job.y_out = y_io.data();
    job.uv_in = job.uv_out = uv_io.data();
    job.tuning = &tuning;
    restore_interleave_yuv420(&job);
    ASSERT_EQ(difference(y_io, luma, "luma in place"), "");
    ASSERT_EQ(difference(uv_io, chroma, "chroma in place"), "");

    const int pitch = pairs + 3;
    GuardedPlane<_Float16> half_u(static_cast<size_t>(pitch * (rows / 2)), guard_);
    GuardedPlane<_Float16> half_v(half_u.size(), guard_);
    std::fill_n(half_u.data(), half_u.size(), _Float16{-1});
    std::fill_n(half_v.data(), half_v.size(), _Float16{-1});
    std::copy(y_in.begin(), y_in.end(), y_io.data());
    job.uv_in = uv.data();
    job.uv_out = nullptr;
    job.mfd_u = half_u.data();
    job.mfd_v = half_v.data();
    job.mfd_width = pitch;
    restore_interleave_yuv420(&job);
    ASSERT_EQ(difference(y_io, luma, "luma beside half precision"), "");
    for (int i = 0; i < pitch * (rows / 2); ++i) {
      const size_t at = static_cast<size_t>(i / pitch * width + 2 * (i % pitch));
      const bool inside = i % pitch < pairs;
      ASSERT_EQ(half_u.data()[i], static_cast<_Float16>(inside ? chroma[at] : -1)) << i;
      ASSERT_EQ(half_v.data()[i], static_cast<_Float16>(inside ? chroma[at + 1] : -1)) << i;
    }
  }

  void check_packed(int width, int rows) {
    interleaving_tuning tuning = GetParam().tuning();
    Bytes in = make_plane(2 * width * rows);
    Guarded low = make_guarded(width * rows), high = make_guarded(width * rows);
    Guarded u = make_guarded(width / 2 * rows), v = make_guarded(width / 2 * rows);
    Bytes chroma_only = in;
    for (size_t k = 0; k < u.size(); ++k) {
      const Pair pair = expected_chroma({in[4 * k + 1], in[4 * k + 3]}, {u[k], v[k]}, GetParam());
      chroma_only[4 * k + 1] = pair.first;
      chroma_only[4 * k + 3] = pair.second;
    }
    Bytes both = chroma_only;
    for (size_t x = 0; x < low.size(); ++x) {
      both[2 * x] = expected_luma(in[2 * x], low[x], high[x], GetParam());
    }
    Guarded packed(in, guard_), packed_uv(in, guard_);
    restore_interleave_yuv422_neon(packed.data(), low.data(), high.data(), u.data(), v.data(),
                                   width, rows, &tuning);
    ASSERT_EQ(difference(packed, both, "packed"), "");
    restore_interleave_uv422_neon(packed_uv.data(), nullptr, nullptr, u.data(), v.data(), width,
                                  rows, &tuning);
    ASSERT_EQ(difference(packed_uv, chroma_only, "packed, chroma only"), "");
  }

  std::mt19937 random_{1};
  std::optional<Pattern> pattern_;
  Guard guard_{};
};

TEST_P(Restore, EveryKernelFollowsTheRule) {
  const int sizes[][2] = {{16, 1}, {16, 2}, {48, 17}, {80, 101}, {1008, 3}, {2064, 2}};
  const std::optional<Pattern> patterns[] = {Pattern::kRandom, Pattern::kLow, Pattern::kHigh,
                                             Pattern::kAlternating, std::nullopt};
  for (const auto& [width, rows] : sizes) {
    for (const auto pattern : patterns) {
      for (const Guard guard : {Guard::kEnd, Guard::kStart}) {
        SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(rows) + " pattern " +
                     (pattern ? std::to_string(static_cast<int>(*pattern)) : "near"));
        pattern_ = pattern;
        guard_ = guard;
        check_planar(width, rows);
        check_packed(width, rows);
        if (HasFatalFailure()) return;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Thresholds, Restore, testing::ValuesIn(kThresholds));

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
