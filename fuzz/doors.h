// The exported functions that no frame goes through, each compared with the plain form of its rule.
// Planes have exactly the samples that a function is told of.
#ifndef VOREL_FUZZ_DOORS_H_
#define VOREL_FUZZ_DOORS_H_

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "tests/wavelet/plain_half.h"

void try_spatial_doors(FuzzedDataProvider& input);
void try_haar_doors(FuzzedDataProvider& input);
void try_sym4_doors(FuzzedDataProvider& input);
void try_denoise_doors(FuzzedDataProvider& input);
void try_chroma_doors(FuzzedDataProvider& input);
void try_debug_doors(FuzzedDataProvider& input);

// Bytes of the input over and over.
inline std::vector<uint8_t> any_bytes(FuzzedDataProvider& input, size_t count) {
  std::vector<uint8_t> given =
      input.ConsumeBytes<uint8_t>(input.ConsumeIntegralInRange<size_t>(1, 40));
  if (given.empty()) given.push_back(128);
  std::vector<uint8_t> bytes(count);
  for (size_t i = 0; i < count; ++i) bytes[i] = given[i % given.size()];
  return bytes;
}

// Chroma-like numbers, or any bits: infinite ones and those that are none among them.
inline std::vector<_Float16> any_halves(FuzzedDataProvider& input, size_t count) {
  const bool any_bits = input.ConsumeIntegralInRange(0, 3) == 0;
  std::mt19937 random(input.ConsumeIntegral<uint16_t>());
  if (!any_bits) return random_halves(count, -300, 700, random);
  std::vector<_Float16> samples(count);
  for (_Float16& sample : samples) sample = half_of_bits(static_cast<uint16_t>(random()));
  return samples;
}

inline _Float16 any_half(FuzzedDataProvider& input) {
  if (input.ConsumeIntegralInRange(0, 3) == 0)
    return half_of_bits(input.ConsumeIntegral<uint16_t>());
  return static_cast<_Float16>(input.ConsumeIntegralInRange(-1600, 1600) / 16.0f);
}

[[noreturn]] inline void differ(const char* what, size_t index, double actual, double expected) {
  std::fprintf(stderr, "%s: sample %zu is %g, expected %g\n", what, index, actual, expected);
  std::abort();
}

inline void require_same(const char* what, const std::vector<uint8_t>& actual,
                         const std::vector<uint8_t>& expected) {
  for (size_t i = 0; i < expected.size(); ++i) {
    if (actual[i] != expected[i]) differ(what, i, actual[i], expected[i]);
  }
}

// The same bits, or both no number.
inline void require_same(const char* what, const _Float16* actual, const _Float16* expected,
                         size_t count) {
  for (size_t i = 0; i < count; ++i) {
    if (half_bits(actual[i]) == half_bits(expected[i])) continue;
    differ(what, i, static_cast<double>(actual[i]), static_cast<double>(expected[i]));
  }
}

inline void require_same(const char* what, const std::vector<_Float16>& actual,
                         const std::vector<_Float16>& expected) {
  require_same(what, actual.data(), expected.data(), expected.size());
}

#endif  // VOREL_FUZZ_DOORS_H_
