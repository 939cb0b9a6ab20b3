// The terms of a filter in half precision: products of samples with taps, each rounded, and their
// sum, rounded after each term.
#ifndef VOREL_WAVELET_KERNELS_HALF_TERMS_H_
#define VOREL_WAVELET_KERNELS_HALF_TERMS_H_

#include <bit>
#include <cstdint>

// For any samples.
struct half_terms {
  using lane = _Float16;

  static lane product(lane sample, _Float16 tap) { return sample * tap; }
  static lane any_product(lane sample, _Float16 tap) { return sample * tap; }
  static lane round(lane sum) { return sum; }
};

// The same numbers without conversions, which are most of the work on x86-64. A float s is rounded
// to 11 bits by t - (t - s) with t = 2^13 * s: the last place of t - s is the eleventh of s, and as
// t is an even number of such places, ties go to the even neighbour. Just above a power of two the
// last place is the twelfth; there s is nearest to that power either way.
//
// What differs from half precision: nothing overflows, a zero is always positive, and `product` has
// 11 bits where half precision, below 2^-14, has fewer. So the samples' magnitudes are at most
// kGreatestSample, and of those given to `product` at least kSmallestSample; a sum that begins with
// such a product is never a negative zero. Sums need no such care: they are multiples of 2^-24, the
// last place of the smallest halves.
struct float_terms {
  using lane = float;

  static constexpr float kShift = 0x1p13f;

  static lane product(lane sample, _Float16 tap) {
    const float shifted = kShift * static_cast<float>(tap);
    const float difference = sample * (shifted - static_cast<float>(tap));  // a factor of 24 bits
    return __builtin_fmaf(sample, shifted, -difference);
  }

  // Here t is positive and at least 3/4, where the last place is 2^-24.
  static lane any_product(lane sample, _Float16 tap) {
    const float size = __builtin_elementwise_abs(sample) * (kShift * static_cast<float>(tap));
    const float shifted = size > 0.75f ? size : 0.75f;
    return __builtin_fmaf(sample, static_cast<float>(tap), shifted) - shifted;
  }

  static lane round(lane sum) { return __builtin_fmaf(sum, kShift, -(sum * (kShift - 1))); }
};

// Arm rounds at no cost.
#if defined(__aarch64__)
inline constexpr bool kFloatTermsPay = false;
#else
inline constexpr bool kFloatTermsPay = true;
#endif

// Eight terms of such samples stay below 2^15; the smallest product with a tap of at least 2^-7 is
// 2^-14.
inline constexpr _Float16 kGreatestSample = static_cast<_Float16>(0x1p12f);
inline constexpr _Float16 kSmallestSample = static_cast<_Float16>(0x1p-7f);

// The bits of a magnitude, which have the order of the magnitudes; numbers that are not finite come
// last.
inline uint16_t magnitude_bits(_Float16 sample) {
  return static_cast<uint16_t>(std::bit_cast<uint16_t>(sample) << 1);
}

#endif  // VOREL_WAVELET_KERNELS_HALF_TERMS_H_
