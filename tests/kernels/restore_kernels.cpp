// The restore step, pixel by pixel in 64-bit integers.
#include <climits>

#include "convert/restore_strip.h"
#include "tests/kernels/kernel_list.h"
#include "tests/kernels/plain_restore.h"
#include "tests/kernels/plain_upsample.h"
#include "vorel/convert.h"

namespace {

// Inputs, then outputs: those of the forms that work in place are inputs too.
enum : size_t { kLow, kHigh, kU, kV, kY, kUv, kOutY, kOutUv };
enum : size_t { kHalfU = kOutY, kHalfV, kPacked = kY };

// d_Y_upper_thresh, d_Y_lower_thresh, d_UV_thresh, cs_upper_thresh, cs_lower_thresh: both sides of
// every limit at which the kernels change their arithmetic, and what a broken tuning file may hold.
constexpr int32_t kThresholds[][5] = {
    {4, 1, 16, 48, 36},
    {200, 1, 300, 48, 36},
    {1, 0, 1, 48, 36},
    {2, 0, 3, 48, 0},
    {100, 40, 64, 256, 1},
    {65, 255, 127, 5, 30},
    {128, -5, 128, 0, 0},
    {129, 3, 129, 256, 0},
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

interleaving_tuning tuning_of(const KernelData& data) {
  const auto& thresholds = kThresholds[data.variant];
  interleaving_tuning tuning{};
  tuning.d_Y_upper_thresh = thresholds[0];
  tuning.d_Y_lower_thresh = thresholds[1];
  tuning.d_UV_thresh = thresholds[2];
  tuning.cs_upper_thresh = thresholds[3];
  tuning.cs_lower_thresh = thresholds[4];
  return tuning;
}

void add_restored_planes(KernelData& data, int chroma_rows) {
  const KernelSize size = data.size;
  data.add_input(size.height, size.width);
  data.add_input(size.height, size.width);
  data.add_input(chroma_rows, size.width / 2);
  data.add_input(chroma_rows, size.width / 2);
}

void add_planar(KernelData& data) {
  add_restored_planes(data, data.size.height / 2);
  data.add_input(data.size.height, data.size.width);
  data.add_input(data.size.height / 2, data.size.width);
}

int half_pitch(const KernelData& data) { return data.size.width / 2 + 3; }

interleave_job describe_strip(KernelData& data, KernelStrip strip) {
  const int width = data.size.width;
  const int luma = strip.first * width;
  const int pairs = strip.first / 2 * (width / 2);
  interleave_job job{};
  job.width = width;
  job.rows = strip.end - strip.first;
  job.y_low = data.bytes(kLow) + luma;
  job.y_high = data.bytes(kHigh) + luma;
  job.upsampled_u = data.bytes(kU) + pairs;
  job.upsampled_v = data.bytes(kV) + pairs;
  job.y_in = job.y_out = data.bytes(kY) + luma;
  job.uv_in = job.uv_out = data.bytes(kUv) + 2 * pairs;
  return job;
}

void restore_luma_plainly(KernelData& data, KernelStrip strip, uint8_t* out) {
  const interleaving_tuning tuning = tuning_of(data);
  const int width = data.size.width;
  for (int i = strip.first * width; i < strip.end * width; ++i) {
    out[i] = plain_luma(data.bytes(kY)[i], data.bytes(kLow)[i], data.bytes(kHigh)[i], tuning);
  }
}

template <typename Store>
void restore_chroma_plainly(KernelData& data, KernelStrip strip, Store store) {
  const interleaving_tuning tuning = tuning_of(data);
  const int pairs = data.size.width / 2;
  const uint8_t* uv = data.bytes(kUv);
  for (int i = strip.first / 2 * pairs; i < strip.end / 2 * pairs; ++i) {
    store(i,
          plain_chroma({uv[2 * i], uv[2 * i + 1]}, {data.bytes(kU)[i], data.bytes(kV)[i]}, tuning));
  }
}

void store_pairs_plainly(KernelData& data, KernelStrip strip, uint8_t* out) {
  restore_chroma_plainly(data, strip, [&](int i, PlainPair pair) {
    out[2 * i] = pair.first;
    out[2 * i + 1] = pair.second;
  });
}

void restore_packed_plainly(KernelData& data, KernelStrip strip, bool with_luma) {
  const interleaving_tuning tuning = tuning_of(data);
  const int width = data.size.width;
  for (int i = strip.first * width; i < strip.end * width; i += 2) {
    uint8_t* group = data.bytes(kPacked) + 2 * i;
    const PlainPair pair =
        plain_chroma({group[1], group[3]}, {data.bytes(kU)[i / 2], data.bytes(kV)[i / 2]}, tuning);
    group[1] = pair.first;
    group[3] = pair.second;
    for (int k = 0; with_luma && k < 2; ++k) {
      group[2 * k] =
          plain_luma(group[2 * k], data.bytes(kLow)[i + k], data.bytes(kHigh)[i + k], tuning);
    }
  }
}

}  // namespace

void make_restore_planar(KernelData& data) { add_planar(data); }

void run_restore_planar(KernelData& data, KernelStrip strip) {
  const interleaving_tuning tuning = tuning_of(data);
  interleave_job job = describe_strip(data, strip);
  job.tuning = &tuning;
  restore_interleave_yuv420(&job);
}

void plain_restore_planar(KernelData& data, KernelStrip strip) {
  restore_luma_plainly(data, strip, data.bytes(kY));
  store_pairs_plainly(data, strip, data.bytes(kUv));
}

// The filtered planes are at 1/16 size.
void make_restore_blocks(KernelData& data) {
  const int rows = (data.size.height + 15) / 16;
  const int cols = data.size.width / 16;
  data.add_input(rows, cols);
  data.add_input(data.size.height, data.size.width);
  data.add_input(rows, cols);
  data.add_input(rows, cols);
  data.add_input(data.size.height, data.size.width);
  data.add_input(data.size.height / 2, data.size.width);
}

void run_restore_blocks(KernelData& data, KernelStrip strip) {
  const interleaving_tuning tuning = tuning_of(data);
  const size_t luma = static_cast<size_t>(strip.first * data.size.width);
  restore_strip job{};
  job.width = data.size.width;
  job.rows = strip.end - strip.first;
  job.y_high = data.bytes(kHigh) + luma;
  job.y_in = job.y_out = data.bytes(kY) + luma;
  job.uv_in = job.uv_out = data.bytes(kUv) + luma / 2;
  job.tuning = &tuning;
  job.blocks = {data.bytes(kLow),         data.bytes(kU),           data.bytes(kV),
                data.planes[kLow].cols(), data.planes[kLow].rows(), strip.first / 16};
  restore_planar_strip(job);
}

void plain_restore_blocks(KernelData& data, KernelStrip strip) {
  const interleaving_tuning tuning = tuning_of(data);
  const int width = data.size.width;
  const auto upsampled = [&](size_t plane, int factor) {
    return PlainUpsampling{data.bytes(plane), data.planes[plane].cols(), data.planes[plane].rows(),
                           factor, factor};
  };
  for (int i = strip.first * width; i < strip.end * width; ++i) {
    uint8_t& sample = data.bytes(kY)[i];
    sample = plain_luma(sample, upsampled(kLow, 16).at(i / width, i % width), data.bytes(kHigh)[i],
                        tuning);
  }
  const int pairs = width / 2;
  for (int i = strip.first / 2 * pairs; i < strip.end / 2 * pairs; ++i) {
    uint8_t* pair = data.bytes(kUv) + 2 * i;
    const int y = i / pairs;
    const int x = i % pairs;
    const PlainPair restored = plain_chroma(
        {pair[0], pair[1]}, {upsampled(kU, 8).at(y, x), upsampled(kV, 8).at(y, x)}, tuning);
    pair[0] = restored.first;
    pair[1] = restored.second;
  }
}

void make_restore_planar_apart(KernelData& data) {
  add_planar(data);
  data.add_output(data.size.height, data.size.width);
  data.add_output(data.size.height / 2, data.size.width);
}

void run_restore_planar_apart(KernelData& data, KernelStrip strip) {
  interleaving_tuning tuning = tuning_of(data);
  const int width = data.size.width;
  const int luma = strip.first * width;
  const int pairs = strip.first / 2 * (width / 2);
  restore_interleave_yuv420_neon(
      data.bytes(kY) + luma, data.bytes(kUv) + 2 * pairs, data.bytes(kLow) + luma,
      data.bytes(kHigh) + luma, data.bytes(kU) + pairs, data.bytes(kV) + pairs, width,
      strip.end - strip.first, data.bytes(kOutY) + luma, data.bytes(kOutUv) + 2 * pairs, &tuning);
}

void plain_restore_planar_apart(KernelData& data, KernelStrip strip) {
  restore_luma_plainly(data, strip, data.bytes(kOutY));
  store_pairs_plainly(data, strip, data.bytes(kOutUv));
}

void make_restore_planar_half(KernelData& data) {
  add_planar(data);
  data.add_output(data.size.height / 2, half_pitch(data), Plane::Samples::kHalves);
  data.add_output(data.size.height / 2, half_pitch(data), Plane::Samples::kHalves);
}

void run_restore_planar_half(KernelData& data, KernelStrip strip) {
  interleaving_tuning tuning = tuning_of(data);
  interleave_job job = describe_strip(data, strip);
  const int half = strip.first / 2 * half_pitch(data);
  restore_interleave_yuv420_mfd_uv_neon(
      job.y_out, job.uv_out, data.bytes(kLow) + strip.first * data.size.width,
      data.bytes(kHigh) + strip.first * data.size.width,
      data.bytes(kU) + strip.first / 2 * (data.size.width / 2),
      data.bytes(kV) + strip.first / 2 * (data.size.width / 2), job.width, job.rows, job.y_out,
      data.halves(kHalfU) + half, data.halves(kHalfV) + half, half_pitch(data), &tuning);
}

void plain_restore_planar_half(KernelData& data, KernelStrip strip) {
  restore_luma_plainly(data, strip, data.bytes(kY));
  const int pairs = data.size.width / 2;
  restore_chroma_plainly(data, strip, [&](int i, PlainPair pair) {
    const int at = i / pairs * half_pitch(data) + i % pairs;
    data.halves(kHalfU)[at] = pair.first;
    data.halves(kHalfV)[at] = pair.second;
  });
}

void make_restore_planar_chroma(KernelData& data) { add_planar(data); }

void run_restore_planar_chroma(KernelData& data, KernelStrip strip) {
  interleaving_tuning tuning = tuning_of(data);
  const int pairs = strip.first / 2 * (data.size.width / 2);
  uint8_t* uv = data.bytes(kUv) + 2 * pairs;
  restore_interleave_uv420_neon(nullptr, uv, nullptr, nullptr, data.bytes(kU) + pairs,
                                data.bytes(kV) + pairs, data.size.width, strip.end - strip.first,
                                uv, &tuning);
}

void plain_restore_planar_chroma(KernelData& data, KernelStrip strip) {
  store_pairs_plainly(data, strip, data.bytes(kUv));
}

void make_restore_packed(KernelData& data) {
  add_restored_planes(data, data.size.height);
  data.add_input(data.size.height, 2 * data.size.width);
}

void run_restore_packed(KernelData& data, KernelStrip strip) {
  interleaving_tuning tuning = tuning_of(data);
  const int at = strip.first * data.size.width;
  restore_interleave_yuv422_neon(data.bytes(kPacked) + 2 * at, data.bytes(kLow) + at,
                                 data.bytes(kHigh) + at, data.bytes(kU) + at / 2,
                                 data.bytes(kV) + at / 2, data.size.width, strip.end - strip.first,
                                 &tuning);
}

void plain_restore_packed(KernelData& data, KernelStrip strip) {
  restore_packed_plainly(data, strip, true);
}

void make_restore_packed_chroma(KernelData& data) { make_restore_packed(data); }

void run_restore_packed_chroma(KernelData& data, KernelStrip strip) {
  interleaving_tuning tuning = tuning_of(data);
  const int at = strip.first * data.size.width;
  restore_interleave_uv422_neon(data.bytes(kPacked) + 2 * at, nullptr, nullptr,
                                data.bytes(kU) + at / 2, data.bytes(kV) + at / 2, data.size.width,
                                strip.end - strip.first, &tuning);
}

void plain_restore_packed_chroma(KernelData& data, KernelStrip strip) {
  restore_packed_plainly(data, strip, false);
}
