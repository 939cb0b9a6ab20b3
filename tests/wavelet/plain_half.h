// Half precision by the book: each operation in double precision, rounded once to 11 bits. Knows
// nothing of the compiler's half-precision type but how to look at its bits.
#ifndef VOREL_TESTS_WAVELET_PLAIN_HALF_H_
#define VOREL_TESTS_WAVELET_PLAIN_HALF_H_

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

// Nearest half-precision number, ties to even. Double has more than twice a half's bits, so the
// rounding before this one changes nothing.
inline double nearest_half(double value) {
  if (value == 0 || !std::isfinite(value)) return value;
  // The distance of halves around the value: 2^-10 of its power of two, at least 2^-24.
  const uint64_t exponent = (std::bit_cast<uint64_t>(value) >> 52) & 0x7FF;
  const uint64_t step_exponent = std::max<uint64_t>(exponent, 1023 - 14) - 10;
  const double quantum = std::bit_cast<double>(step_exponent << 52);
  // Added to this, a double has no bits below the quantum.
  const double shift = 0x1.8p52 * quantum;
  const double rounded = std::copysign((value + shift) - shift, value);
  if (std::fabs(rounded) < 65536.0) return rounded;
  return std::copysign(std::numeric_limits<double>::infinity(), value);
}

struct PlainHalf {
  double value;

  PlainHalf(double number) : value(nearest_half(number)) {}
  PlainHalf(_Float16 number) : value(static_cast<double>(number)) {}
  operator _Float16() const { return static_cast<_Float16>(static_cast<float>(value)); }

  friend PlainHalf operator+(PlainHalf a, PlainHalf b) { return a.value + b.value; }
  friend PlainHalf operator-(PlainHalf a, PlainHalf b) { return a.value - b.value; }
  friend PlainHalf operator*(PlainHalf a, PlainHalf b) { return a.value * b.value; }
  friend PlainHalf operator/(PlainHalf a, PlainHalf b) { return a.value / b.value; }
};

inline _Float16 half_of_bits(uint16_t bits) { return std::bit_cast<_Float16>(bits); }

// Bits of a number; one pattern for everything that is none.
inline uint16_t half_bits(_Float16 number) {
  return number != number ? uint16_t{0x7E00} : std::bit_cast<uint16_t>(number);
}

inline std::vector<uint16_t> half_bits(const std::vector<_Float16>& plane) {
  std::vector<uint16_t> bits;
  for (const _Float16 sample : plane) bits.push_back(half_bits(sample));
  return bits;
}

inline const _Float16 kNotANumber = half_of_bits(0x7E00);

// Chroma-like samples, with fractions, some zeros of both signs and some subnormal numbers.
inline std::vector<_Float16> random_halves(size_t count, double low, double high,
                                           std::mt19937& random) {
  constexpr double kNumbers = 4294967296;  // the generator's
  std::vector<_Float16> plane;
  plane.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    const unsigned kind = random() % 16;
    if (kind == 0) {
      plane.push_back(half_of_bits(random() % 2 ? 0x8000 : 0));
    } else if (kind == 1) {
      plane.push_back(half_of_bits(static_cast<uint16_t>(random() % 1024 | (random() & 0x8000))));
    } else {
      plane.push_back(PlainHalf(low + (high - low) * (random() / kNumbers)));
    }
  }
  return plane;
}

#endif  // VOREL_TESTS_WAVELET_PLAIN_HALF_H_
