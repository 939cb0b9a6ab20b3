#include "wavelet/kernels/border_rows.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

#include "platform/vectorize.h"

namespace {

// The nine samples are added in row order from +0, then scaled, each step rounded.
constexpr _Float16 kNinth = std::bit_cast<_Float16>(uint16_t{0x2F1C});  // 0.111083984375

inline _Float16 mean_rule(const _Float16* above, const _Float16* at, const _Float16* below,
                          size_t left, size_t x, size_t right) {
  _Float16 sum = 0;
  sum = sum + above[left];
  sum = sum + above[x];
  sum = sum + above[right];
  sum = sum + at[left];
  sum = sum + at[x];
  sum = sum + at[right];
  sum = sum + below[left];
  sum = sum + below[x];
  sum = sum + below[right];
  return sum * kNinth;
}

// 0 to 255 are exact in half precision.
inline _Float16 sample_of(uint8_t pixel) { return static_cast<_Float16>(pixel); }

void split_pairs(const uint8_t* __restrict pairs, _Float16* __restrict first,
                 _Float16* __restrict second, size_t count) {
  VOREL_VECTORIZE
  for (size_t x = 0; x < count; ++x) {
    first[x] = sample_of(pairs[2 * x]);
    second[x] = sample_of(pairs[2 * x + 1]);
  }
}

}  // namespace

void pad_pairs_row(const uint8_t* pairs, _Float16* first, _Float16* second, const border_cut& cut) {
  const uint8_t* last = pairs + (size_t{cut.inner} - 1) * 2;
  std::fill_n(first, cut.pad, sample_of(pairs[0]));
  std::fill_n(second, cut.pad, sample_of(pairs[1]));
  _Float16* inner_first = first + cut.pad;
  _Float16* inner_second = second + cut.pad;
  split_pairs(pairs, inner_first, inner_second, cut.inner);
  const uint32_t right = cut.width - cut.pad - cut.inner;
  std::fill_n(inner_first + cut.inner, right, sample_of(last[0]));
  std::fill_n(inner_second + cut.inner, right, sample_of(last[1]));
}

void pad_row(const _Float16* inner, _Float16* row, const border_cut& cut) {
  _Float16* own_inner = row + cut.pad;
  if (inner != own_inner) std::memcpy(own_inner, inner, size_t{cut.inner} * sizeof(_Float16));
  std::fill_n(row, cut.pad, own_inner[0]);
  std::fill_n(own_inner + cut.inner, cut.width - cut.pad - cut.inner, own_inner[cut.inner - 1]);
}

void mean_3x3_row(const _Float16* above, const _Float16* at, const _Float16* below,
                  _Float16* __restrict out, uint32_t width) {
  const size_t last = size_t{width} - 1;
  out[0] = mean_rule(above, at, below, 0, 0, std::min<size_t>(1, last));
  VOREL_VECTORIZE
  for (size_t x = 1; x < last; ++x) out[x] = mean_rule(above, at, below, x - 1, x, x + 1);
  if (last > 0) out[last] = mean_rule(above, at, below, last - 1, last, last);
}
