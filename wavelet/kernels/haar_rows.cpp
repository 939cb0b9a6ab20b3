#include "wavelet/kernels/haar_rows.h"

#include <cstdint>

#include "platform/vectorize.h"
#include "wavelet/kernels/half.h"

namespace {

constexpr half_lane kLevel1Tap = static_cast<half_lane>(kHaarLevel1Tap);
constexpr half_lane kDirectionalTap = static_cast<half_lane>(kHaarDirectionalTap);

half_lane add_product(half_lane sum, half_lane sample, half_lane tap) {
  return round_half(sum + round_half(sample * tap));
}

template <int kRows>
void sum_rows(const tapped_row* rows, _Float16 start, _Float16 scale, _Float16* __restrict out,
              int width) {
  const _Float16* samples[kRows];
  half_lane taps[kRows];
  for (int i = 0; i < kRows; ++i) {
    samples[i] = rows[i].samples;
    taps[i] = static_cast<half_lane>(rows[i].tap);
  }
  const half_lane first = static_cast<half_lane>(start);
  const half_lane factor = static_cast<half_lane>(scale);
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < width; ++x) {
    half_lane sum = first;
    VOREL_UNROLL
    for (int i = 0; i < kRows; ++i) {
      sum = add_product(sum, static_cast<half_lane>(samples[i][x]), taps[i]);
    }
    out[x] = static_cast<_Float16>(sum * factor);
  }
}

template <int kRows, typename Sample>
void split_rows(const split_tap<Sample>* rows, _Float16* __restrict lo, _Float16* __restrict hi,
                int width) {
  const Sample* samples[kRows];
  half_lane low[kRows];
  half_lane high[kRows];
  for (int i = 0; i < kRows; ++i) {
    samples[i] = rows[i].samples;
    low[i] = static_cast<half_lane>(rows[i].low);
    high[i] = static_cast<half_lane>(rows[i].high);
  }
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < width; ++x) {
    half_lane low_sum = 0;
    half_lane high_sum = 0;
    VOREL_UNROLL
    for (int i = 0; i < kRows; ++i) {
      const half_lane sample = static_cast<half_lane>(samples[i][x]);
      low_sum = add_product(low_sum, sample, low[i]);
      high_sum = add_product(high_sum, sample, high[i]);
    }
    lo[x] = static_cast<_Float16>(low_sum);
    hi[x] = static_cast<_Float16>(high_sum);
  }
}

}  // namespace

void sum_tapped_rows(const tapped_row* rows, int row_count, _Float16 start, _Float16 scale,
                     _Float16* out, int width) {
  switch (row_count) {
    case 1:
      return sum_rows<1>(rows, start, scale, out, width);
    case 2:
      return sum_rows<2>(rows, start, scale, out, width);
    case 4:
      return sum_rows<4>(rows, start, scale, out, width);
    case 6:
      return sum_rows<6>(rows, start, scale, out, width);
    case 8:
      return sum_rows<8>(rows, start, scale, out, width);
  }
}

template <typename Sample>
void split_tapped_rows(const split_tap<Sample>* rows, int row_count, _Float16* lo, _Float16* hi,
                       int width) {
  switch (row_count) {
    case 1:
      return split_rows<1>(rows, lo, hi, width);
    case 2:
      return split_rows<2>(rows, lo, hi, width);
    case 3:
      return split_rows<3>(rows, lo, hi, width);
  }
}

template <typename Sample>
void split_level1_row(const Sample* near, const Sample* far, _Float16* __restrict lo,
                      _Float16* __restrict hi, int width) {
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < width; ++x) {
    const half_lane first = round_half(static_cast<half_lane>(near[x]) * kLevel1Tap);
    const half_lane second = round_half(static_cast<half_lane>(far[x]) * kLevel1Tap);
    // Adding to and subtracting from 0 is exact; it makes a zero positive.
    lo[x] = static_cast<_Float16>((0 + first) + second);
    hi[x] = static_cast<_Float16>((0 - first) + second);
  }
}

template <typename Sample>
void split_directional_row(const Sample* before, const Sample* at, const Sample* after,
                           const Sample* second_after, _Float16* __restrict lo,
                           _Float16* __restrict hi, int width) {
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < width; ++x) {
    const half_lane first = round_half(static_cast<half_lane>(before[x]) * kDirectionalTap);
    const half_lane second = round_half(static_cast<half_lane>(at[x]) * kDirectionalTap);
    const half_lane third = round_half(static_cast<half_lane>(after[x]) * kDirectionalTap);
    const half_lane fourth = round_half(static_cast<half_lane>(second_after[x]) * kDirectionalTap);
    // The high sum begins with the negated terms: the negated sum is the same number, and taking it
    // from 0 makes a zero positive, as starting from +0 does.
    const half_lane head = round_half((0 + first) + second);
    lo[x] = static_cast<_Float16>(round_half(head + third) + fourth);
    hi[x] = static_cast<_Float16>(round_half((0 - head) + third) + fourth);
  }
}

void add_rows(const _Float16* a, const _Float16* b, _Float16* __restrict out, int width) {
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < width; ++x) {
    out[x] = static_cast<_Float16>(static_cast<half_lane>(a[x]) + static_cast<half_lane>(b[x]));
  }
}

#define VOREL_INSTANTIATE(Sample)                                                                 \
  template void split_tapped_rows(const split_tap<Sample>*, int, _Float16*, _Float16*, int);      \
  template void split_level1_row(const Sample*, const Sample*, _Float16*, _Float16*, int);        \
  template void split_directional_row(const Sample*, const Sample*, const Sample*, const Sample*, \
                                      _Float16*, _Float16*, int);
VOREL_INSTANTIATE(_Float16)
VOREL_INSTANTIATE(uint8_t)
#undef VOREL_INSTANTIATE
