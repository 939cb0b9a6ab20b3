// One output of the Symlet-4 transform, in either kind of terms (half_terms.h).
#ifndef VOREL_WAVELET_KERNELS_SYM4_RULE_H_
#define VOREL_WAVELET_KERNELS_SYM4_RULE_H_

#include <bit>
#include <cstdint>

constexpr _Float16 tap_of_bits(uint16_t bits) { return std::bit_cast<_Float16>(bits); }

// Magnitudes of the taps. A negative tap is a subtracted product.
inline constexpr _Float16 kTap0 = tap_of_bits(0x2820);  // 0.0322265625
inline constexpr _Float16 kTap1 = tap_of_bits(0x2274);  // 0.012603759765625
inline constexpr _Float16 kTap2 = tap_of_bits(0x2E5A);  // 0.0992431640625
inline constexpr _Float16 kTap3 = tap_of_bits(0x34C4);  // 0.2978515625
inline constexpr _Float16 kTap4 = tap_of_bits(0x3A6E);  // 0.8037109375
inline constexpr _Float16 kTap5 = tap_of_bits(0x37F6);  // 0.49755859375
inline constexpr _Float16 kTap6 = tap_of_bits(0x2796);  // 0.029632568359375
inline constexpr _Float16 kTap7 = tap_of_bits(0x2CD9);  // 0.07574462890625

// Not deduced from what is passed.
template <typename Terms>
using lane_of = typename Terms::lane;

struct bands {
  _Float16 low;
  _Float16 high;
};

// The samples 2k - 4 .. 2k + 3 in order. Two sums that grow in step keep more units busy than one
// after the other: 3.5 against 4.0 ms for a plane of 2064 x 1564 on x86-64.
template <typename Terms>
[[gnu::always_inline]] inline bands analyse_rule(lane_of<Terms> s0, lane_of<Terms> s1,
                                                 lane_of<Terms> s2, lane_of<Terms> s3,
                                                 lane_of<Terms> s4, lane_of<Terms> s5,
                                                 lane_of<Terms> s6, lane_of<Terms> s7) {
  lane_of<Terms> low = Terms::product(s0, kTap0);
  lane_of<Terms> high = Terms::product(s1, kTap6);
  low = Terms::round(low - Terms::product(s1, kTap1));
  high = Terms::round(high - Terms::product(s0, kTap7));
  low = Terms::round(low - Terms::product(s2, kTap2));
  high = Terms::round(high + Terms::product(s2, kTap5));
  low = Terms::round(low + Terms::product(s3, kTap3));
  high = Terms::round(high - Terms::product(s3, kTap4));
  low = Terms::round(low + Terms::product(s4, kTap4));
  high = Terms::round(high + Terms::product(s4, kTap3));
  low = Terms::round(low + Terms::product(s5, kTap5));
  high = Terms::round(high + Terms::product(s5, kTap2));
  low = Terms::round(low - Terms::product(s6, kTap6));
  high = Terms::round(high - Terms::product(s6, kTap1));
  low = low - Terms::product(s7, kTap7);
  high = high - Terms::product(s7, kTap0);
  return {static_cast<_Float16>(low), static_cast<_Float16>(high)};
}

struct sample_pair {
  _Float16 odd;   // sample 2k - 1
  _Float16 even;  // sample 2k
};

// Low samples k - 2 .. k + 2, then the high ones, which are of any size.
template <typename Terms>
[[gnu::always_inline]] inline sample_pair synthesise_rule(lane_of<Terms> l0, lane_of<Terms> l1,
                                                          lane_of<Terms> l2, lane_of<Terms> l3,
                                                          lane_of<Terms> l4, lane_of<Terms> h0,
                                                          lane_of<Terms> h1, lane_of<Terms> h2,
                                                          lane_of<Terms> h3, lane_of<Terms> h4) {
  lane_of<Terms> odd = Terms::product(l1, kTap5);
  lane_of<Terms> even = Terms::product(l2, kTap4);
  odd = Terms::round(odd - Terms::product(l0, kTap7));
  even = Terms::round(even - Terms::product(l1, kTap6));
  odd = Terms::round(odd + Terms::product(l2, kTap3));
  even = Terms::round(even - Terms::product(l3, kTap2));
  odd = Terms::round(odd - Terms::product(l3, kTap1));
  even = Terms::round(even + Terms::product(l4, kTap0));
  odd = Terms::round(odd - Terms::any_product(h0, kTap0));
  even = Terms::round(even - Terms::any_product(h1, kTap1));
  odd = Terms::round(odd + Terms::any_product(h1, kTap2));
  even = Terms::round(even + Terms::any_product(h2, kTap3));
  odd = Terms::round(odd - Terms::any_product(h2, kTap4));
  even = Terms::round(even + Terms::any_product(h3, kTap5));
  odd = odd + Terms::any_product(h3, kTap6);
  even = even - Terms::any_product(h4, kTap7);
  return {static_cast<_Float16>(odd), static_cast<_Float16>(even)};
}

#endif  // VOREL_WAVELET_KERNELS_SYM4_RULE_H_
