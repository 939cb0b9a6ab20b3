// Half-precision arithmetic that vectorises on every machine.
//
// Rules compute with `half_lane` and round after every operation with `round_half`. Arm has the
// arithmetic: there a lane is a half-precision number and rounding is part of each operation.
// x86-64 has only conversions, and clang takes half-precision comparisons and selects apart into
// single samples there: a lane is a float, and rounding goes to half precision and back.
// Both give the same bits: a float has 24 bits, at least twice the 11 of a half and two more, so
// that rounding a sum, difference, product or quotient of halves twice equals rounding it once.
#ifndef VOREL_WAVELET_KERNELS_HALF_H_
#define VOREL_WAVELET_KERNELS_HALF_H_

#if defined(__aarch64__)
using half_lane = _Float16;

inline half_lane round_half(half_lane value) { return value; }
inline half_lane magnitude(half_lane value) { return __builtin_elementwise_abs(value); }
#else
using half_lane = float;

inline half_lane round_half(half_lane value) {
  return static_cast<half_lane>(static_cast<_Float16>(value));
}

// The absolute value by arithmetic: after the builtin, clang compares halves again.
inline half_lane magnitude(half_lane value) {
  const half_lane opposite = 0 - value;
  return value > opposite ? value : opposite;
}
#endif

// Comparing with this constant stays a comparison of lanes; with 0, clang compares halves on
// x86-64.
inline constexpr half_lane kSmallestHalf = static_cast<half_lane>(0x1p-24f);

// Asks for vectors of eight lanes, one Arm register. The compiler's own choice for x86-64 is four:
// it overrates the conversions.
#define VOREL_VECTORIZE_HALF \
  _Pragma("clang loop vectorize(enable) vectorize_width(8) interleave_count(2)")

#endif  // VOREL_WAVELET_KERNELS_HALF_H_
