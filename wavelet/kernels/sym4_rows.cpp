#include "wavelet/kernels/sym4_rows.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "platform/vectorize.h"
#include "wavelet/kernels/half.h"
#include "wavelet/kernels/half_terms.h"
#include "wavelet/kernels/sym4_rule.h"

namespace {

// Outputs per step of a pass; a horizontal step's samples stay in the first-level cache.
constexpr int kChunk = 256;

// Outputs at either end of a row that have a step of their own: the outermost samples may be some
// that no pass writes, which no float terms take.
constexpr int kEdge = 16;

// The walks serve rows above each other and one row shifted against itself. They are not inlined:
// where the compiler sees that the rows are one, it replaces loads by register shuffles, which cost
// more (4.4 against 3.7 ms on x86-64).
template <typename Terms>
[[gnu::noinline]] void walk_analysis(const _Float16* const* rows, _Float16* __restrict low,
                                     _Float16* __restrict high, int count) {
  const _Float16 *r0 = rows[0], *r1 = rows[1], *r2 = rows[2], *r3 = rows[3];
  const _Float16 *r4 = rows[4], *r5 = rows[5], *r6 = rows[6], *r7 = rows[7];
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < count; ++x) {
    const bands result =
        analyse_rule<Terms>(r0[x], r1[x], r2[x], r3[x], r4[x], r5[x], r6[x], r7[x]);
    low[x] = result.low;
    high[x] = result.high;
  }
}

template <typename Terms>
[[gnu::noinline]] void walk_low_analysis(const _Float16* const* rows, _Float16* __restrict low,
                                         int count) {
  const _Float16 *r0 = rows[0], *r1 = rows[1], *r2 = rows[2], *r3 = rows[3];
  const _Float16 *r4 = rows[4], *r5 = rows[5], *r6 = rows[6], *r7 = rows[7];
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < count; ++x) {
    low[x] = analyse_rule<Terms>(r0[x], r1[x], r2[x], r3[x], r4[x], r5[x], r6[x], r7[x]).low;
  }
}

template <typename Terms>
[[gnu::noinline]] void walk_synthesis(const _Float16* const* low, const _Float16* const* high,
                                      _Float16* __restrict odd, _Float16* __restrict even,
                                      int count) {
  const _Float16 *l0 = low[0], *l1 = low[1], *l2 = low[2], *l3 = low[3], *l4 = low[4];
  const _Float16 *h0 = high[0], *h1 = high[1], *h2 = high[2], *h3 = high[3], *h4 = high[4];
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < count; ++x) {
    const sample_pair result = synthesise_rule<Terms>(l0[x], l1[x], l2[x], l3[x], l4[x], h0[x],
                                                      h1[x], h2[x], h3[x], h4[x]);
    odd[x] = result.odd;
    even[x] = result.even;
  }
}

// Whether the magnitudes of a row lie between these. Columns of planes that nobody reads may hold
// anything, also what was never written: whatever the answer is then, both forms give the same
// bits.
__attribute__((no_sanitize("memory"))) bool all_between(_Float16 smallest, _Float16 greatest,
                                                        const _Float16* row, int count) {
  uint16_t least = UINT16_MAX;
  uint16_t most = 0;
  VOREL_VECTORIZE
  for (int x = 0; x < count; ++x) {
    const uint16_t bits = magnitude_bits(row[x]);
    least = std::min(least, bits);
    most = std::max(most, bits);
  }
  return least >= magnitude_bits(smallest) && most <= magnitude_bits(greatest);
}

// Whether float terms take the samples of all rows.
bool suit_products(std::span<const _Float16* const> rows, int count) {
  return kFloatTermsPay && std::ranges::all_of(rows, [&](const _Float16* row) {
           return all_between(kSmallestSample, kGreatestSample, row, count);
         });
}

bool suit_any_products(std::span<const _Float16* const> rows, int count) {
  return kFloatTermsPay && std::ranges::all_of(rows, [&](const _Float16* row) {
           return all_between(0, kGreatestSample, row, count);
         });
}

// Most of a picture's low bands are in floats, its details are not.
template <typename Terms>
void analyse_chunk(const _Float16* const* rows, _Float16* low, _Float16* high, int count) {
  if (high != nullptr) {
    walk_analysis<Terms>(rows, low, high, count);
  } else {
    walk_low_analysis<Terms>(rows, low, count);
  }
}

void analyse_chunk(bool in_floats, const _Float16* const* rows, _Float16* low, _Float16* high,
                   int count) {
  if (kFloatTermsPay && in_floats) {
    analyse_chunk<float_terms>(rows, low, high, count);
  } else {
    analyse_chunk<half_terms>(rows, low, high, count);
  }
}

void synthesise_chunk(bool in_floats, const _Float16* const* low, const _Float16* const* high,
                      _Float16* odd, _Float16* even, int count) {
  if (kFloatTermsPay && in_floats) {
    walk_synthesis<float_terms>(low, high, odd, even, count);
  } else {
    walk_synthesis<half_terms>(low, high, odd, even, count);
  }
}

// `samples` from a column on, or null.
_Float16* from_column(_Float16* samples, int column) {
  return samples != nullptr ? samples + column : nullptr;
}

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
    const bool in_floats = suit_products({{even, odd}}, count + 3);
    analyse_chunk(in_floats, rows, low + first, from_column(high, first), count);
  }
}

// The steps of a pass along the columns; those between the ends are whole vectors.
template <typename Step>
void for_chunks(int width, Step step) {
  const int edge = std::min(kEdge, width);
  const int end = edge + std::max(0, width - 2 * kEdge) / kEdge * kEdge;
  step(0, edge);
  for (int first = edge; first < end; first += kChunk) step(first, std::min(kChunk, end - first));
  if (end < width) step(end, width - end);
}

template <int kRows>
struct shifted_rows {
  const _Float16* rows[kRows];

  shifted_rows(const _Float16* const (&from)[kRows], int columns) {
    for (int i = 0; i < kRows; ++i) rows[i] = from[i] + columns;
  }
};

}  // namespace

void sym4_analyse_rows(const _Float16* const (&rows)[kSym4AnalysisRows], _Float16* low,
                       _Float16* high, int width) {
  if (!kFloatTermsPay) return analyse_chunk<half_terms>(rows, low, high, width);
  for_chunks(width, [&](int first, int count) {
    const shifted_rows<kSym4AnalysisRows> at(rows, first);
    analyse_chunk(suit_products(at.rows, count), at.rows, low + first, from_column(high, first),
                  count);
  });
}

void sym4_analyse_row(const _Float16* src, _Float16* low, _Float16* high, int width) {
  analyse_row(src, low, high, width);
}

void sym4_analyse_row(const uint8_t* src, _Float16* low, _Float16* high, int width) {
  analyse_row(src, low, high, width);
}

void sym4_synthesise_rows(const _Float16* const (&low)[kSym4SynthesisRows],
                          const _Float16* const (&high)[kSym4SynthesisRows], _Float16* odd,
                          _Float16* even, int width) {
  if (!kFloatTermsPay) return walk_synthesis<half_terms>(low, high, odd, even, width);
  for_chunks(width, [&](int first, int count) {
    const shifted_rows<kSym4SynthesisRows> low_at(low, first);
    const shifted_rows<kSym4SynthesisRows> high_at(high, first);
    const bool in_floats =
        suit_products(low_at.rows, count) && suit_any_products(high_at.rows, count);
    synthesise_chunk(in_floats, low_at.rows, high_at.rows, odd + first, even + first, count);
  });
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
    const bool in_floats = suit_products({{l}}, count + 4) && suit_any_products({{h}}, count + 4);
    synthesise_chunk(in_floats, lows, highs, odd, even, count);
    _Float16* pairs = out + (ptrdiff_t{2} * first - 1);
    VOREL_VECTORIZE
    for (int i = 0; i < count; ++i) {
      pairs[2 * i] = odd[i];
      pairs[2 * i + 1] = even[i];
    }
  }
}
