#include "wavelet/kernels/sym4_rows.h"

#include <algorithm>
#include <bit>
#include <cstddef>

#include "platform/vectorize.h"

namespace {

constexpr _Float16 half_bits(uint16_t bits) { return std::bit_cast<_Float16>(bits); }

// Magnitudes of the taps. A negative tap is a subtracted product.
constexpr _Float16 kTap0 = half_bits(0x2820);  // 0.0322265625
constexpr _Float16 kTap1 = half_bits(0x2274);  // 0.012603759765625
constexpr _Float16 kTap2 = half_bits(0x2E5A);  // 0.0992431640625
constexpr _Float16 kTap3 = half_bits(0x34C4);  // 0.2978515625
constexpr _Float16 kTap4 = half_bits(0x3A6E);  // 0.8037109375
constexpr _Float16 kTap5 = half_bits(0x37F6);  // 0.49755859375
constexpr _Float16 kTap6 = half_bits(0x2796);  // 0.029632568359375
constexpr _Float16 kTap7 = half_bits(0x2CD9);  // 0.07574462890625

// Outputs per step of a horizontal pass; the step's samples stay in the first-level cache.
constexpr int kChunk = 256;

struct bands {
  _Float16 low;
  _Float16 high;
};

// The samples 2k - 4 .. 2k + 3 in order. Two sums that grow in step keep more units busy than one
// after the other: 3.5 against 4.0 ms for a plane of 2064 x 1564 on x86-64.
inline bands analyse_rule(_Float16 s0, _Float16 s1, _Float16 s2, _Float16 s3, _Float16 s4,
                          _Float16 s5, _Float16 s6, _Float16 s7) {
  _Float16 low = s0 * kTap0;
  _Float16 high = s1 * kTap6;
  low = low - s1 * kTap1;
  high = high - s0 * kTap7;
  low = low - s2 * kTap2;
  high = high + s2 * kTap5;
  low = low + s3 * kTap3;
  high = high - s3 * kTap4;
  low = low + s4 * kTap4;
  high = high + s4 * kTap3;
  low = low + s5 * kTap5;
  high = high + s5 * kTap2;
  low = low - s6 * kTap6;
  high = high - s6 * kTap1;
  low = low - s7 * kTap7;
  high = high - s7 * kTap0;
  return {low, high};
}

struct sample_pair {
  _Float16 odd;   // sample 2k - 1
  _Float16 even;  // sample 2k
};

// Low samples k - 2 .. k + 2, then the high ones.
inline sample_pair synthesise_rule(_Float16 l0, _Float16 l1, _Float16 l2, _Float16 l3, _Float16 l4,
                                   _Float16 h0, _Float16 h1, _Float16 h2, _Float16 h3,
                                   _Float16 h4) {
  _Float16 odd = l1 * kTap5;
  _Float16 even = l2 * kTap4;
  odd = odd - l0 * kTap7;
  even = even - l1 * kTap6;
  odd = odd + l2 * kTap3;
  even = even - l3 * kTap2;
  odd = odd - l3 * kTap1;
  even = even + l4 * kTap0;
  odd = odd - h0 * kTap0;
  even = even - h1 * kTap1;
  odd = odd + h1 * kTap2;
  even = even + h2 * kTap3;
  odd = odd - h2 * kTap4;
  even = even + h3 * kTap5;
  odd = odd + h3 * kTap6;
  even = even - h4 * kTap7;
  return {odd, even};
}

// Both walks serve rows above each other and one row shifted against itself. They are not inlined:
// where the compiler sees that the rows are one, it replaces loads by register shuffles, which cost
// more (4.4 against 3.7 ms on x86-64).
[[gnu::noinline]] void walk_analysis(const _Float16* const* rows, _Float16* __restrict low,
                                     _Float16* __restrict high, int count) {
  const _Float16 *r0 = rows[0], *r1 = rows[1], *r2 = rows[2], *r3 = rows[3];
  const _Float16 *r4 = rows[4], *r5 = rows[5], *r6 = rows[6], *r7 = rows[7];
  VOREL_VECTORIZE
  for (int x = 0; x < count; ++x) {
    const bands result = analyse_rule(r0[x], r1[x], r2[x], r3[x], r4[x], r5[x], r6[x], r7[x]);
    low[x] = result.low;
    high[x] = result.high;
  }
}

[[gnu::noinline]] void walk_low_analysis(const _Float16* const* rows, _Float16* __restrict low,
                                         int count) {
  const _Float16 *r0 = rows[0], *r1 = rows[1], *r2 = rows[2], *r3 = rows[3];
  const _Float16 *r4 = rows[4], *r5 = rows[5], *r6 = rows[6], *r7 = rows[7];
  VOREL_VECTORIZE
  for (int x = 0; x < count; ++x) {
    low[x] = analyse_rule(r0[x], r1[x], r2[x], r3[x], r4[x], r5[x], r6[x], r7[x]).low;
  }
}

[[gnu::noinline]] void walk_synthesis(const _Float16* const* low, const _Float16* const* high,
                                      _Float16* __restrict odd, _Float16* __restrict even,
                                      int count) {
  const _Float16 *l0 = low[0], *l1 = low[1], *l2 = low[2], *l3 = low[3], *l4 = low[4];
  const _Float16 *h0 = high[0], *h1 = high[1], *h2 = high[2], *h3 = high[3], *h4 = high[4];
  VOREL_VECTORIZE
  for (int x = 0; x < count; ++x) {
    const sample_pair result =
        synthesise_rule(l0[x], l1[x], l2[x], l3[x], l4[x], h0[x], h1[x], h2[x], h3[x], h4[x]);
    odd[x] = result.odd;
    even[x] = result.even;
  }
}

// `high` may be null: the low band only.
template <typename Sample>
void analyse_row(const Sample* src, _Float16* low, _Float16* high, int width) {
  const int end = sym4_analysis_end(width);
  for (int first = kSym4First; first < end; first += kChunk) {
    const int count = std::min(kChunk, end - first);
    alignas(64) _Float16 even[kChunk + 3];
    alignas(64) _Float16 odd[kChunk + 3];
    const Sample* samples = src + (ptrdiff_t{2} * first - 4);
    VOREL_VECTORIZE
    for (int i = 0; i < count + 3; ++i) {
      even[i] = static_cast<_Float16>(samples[2 * i]);
      odd[i] = static_cast<_Float16>(samples[2 * i + 1]);
    }
    const _Float16* const rows[] = {even,     odd,     even + 1, odd + 1,
                                    even + 2, odd + 2, even + 3, odd + 3};
    if (high != nullptr) {
      walk_analysis(rows, low + first, high + first, count);
    } else {
      walk_low_analysis(rows, low + first, count);
    }
  }
}

}  // namespace

void sym4_analyse_rows(const _Float16* const (&rows)[kSym4AnalysisRows], _Float16* low,
                       _Float16* high, int width) {
  walk_analysis(rows, low, high, width);
}

void sym4_analyse_row(const _Float16* src, _Float16* low, _Float16* high, int width) {
  analyse_row(src, low, high, width);
}

void sym4_analyse_row_low(const _Float16* src, _Float16* low, int width) {
  analyse_row<_Float16>(src, low, nullptr, width);
}

void sym4_analyse_row(const uint8_t* src, _Float16* low, _Float16* high, int width) {
  analyse_row(src, low, high, width);
}

void sym4_synthesise_rows(const _Float16* const (&low)[kSym4SynthesisRows],
                          const _Float16* const (&high)[kSym4SynthesisRows], _Float16* odd,
                          _Float16* even, int width) {
  walk_synthesis(low, high, odd, even, width);
}

void sym4_synthesise_pairs(const _Float16* low, const _Float16* high, _Float16* out, int k_first,
                           int k_end) {
  for (int first = k_first; first < k_end; first += kChunk) {
    const int count = std::min(kChunk, k_end - first);
    alignas(64) _Float16 odd[kChunk];
    alignas(64) _Float16 even[kChunk];
    const _Float16* l = low + (first - 2);
    const _Float16* h = high + (first - 2);
    const _Float16* const lows[] = {l, l + 1, l + 2, l + 3, l + 4};
    const _Float16* const highs[] = {h, h + 1, h + 2, h + 3, h + 4};
    walk_synthesis(lows, highs, odd, even, count);
    _Float16* pairs = out + (ptrdiff_t{2} * first - 1);
    VOREL_VECTORIZE
    for (int i = 0; i < count; ++i) {
      pairs[2 * i] = odd[i];
      pairs[2 * i + 1] = even[i];
    }
  }
}
