// Vectors of 32 bytes, and the same samples in wider lanes. Vector types and not plain loops,
// because no loop becomes the table look-up instruction that both machines have.
#ifndef VOREL_PLATFORM_BYTE_LANES_H_
#define VOREL_PLATFORM_BYTE_LANES_H_

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

#include <cstdint>

inline constexpr int32_t kLanes = 32;

using ByteLanes = uint8_t __attribute__((vector_size(kLanes)));
using HalfLanes = uint16_t __attribute__((vector_size(2 * kLanes)));
using WordLanes = uint32_t __attribute__((vector_size(4 * kLanes)));
// A vector of bytes seen as pairs.
using PairLanes = uint16_t __attribute__((vector_size(kLanes)));

inline ByteLanes load_lanes(const uint8_t* src) {
  ByteLanes lanes;
  __builtin_memcpy(&lanes, src, sizeof lanes);
  return lanes;
}

inline void store_lanes(const ByteLanes& lanes, uint8_t* dst) {
  __builtin_memcpy(dst, &lanes, sizeof lanes);
}

inline ByteLanes absolute_difference(ByteLanes a, ByteLanes b) {
  return __builtin_elementwise_max(a, b) - __builtin_elementwise_min(a, b);
}

#if defined(__x86_64__)

// Table of 16 bytes, in the form that look_up() needs.
using ByteTable = __m256i;

inline ByteTable load_table(const uint8_t* entries) {
  return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(entries)));
}

// The entry of each index; 0 for an index of 16 or more.
inline ByteLanes look_up(ByteTable table, ByteLanes index) {
  // The instruction reads 4 bits of the index and gives 0 when the top bit is set.
  const __m256i marked = _mm256_adds_epu8(reinterpret_cast<__m256i>(index), _mm256_set1_epi8(0x70));
  return reinterpret_cast<ByteLanes>(_mm256_shuffle_epi8(table, marked));
}

// Upper half of the 32-bit products.
inline PairLanes multiply_high(PairLanes a, PairLanes b) {
  return reinterpret_cast<PairLanes>(
      _mm256_mulhi_epu16(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)));
}

inline PairLanes shift_right(PairLanes lanes, int bits) {
  return reinterpret_cast<PairLanes>(
      _mm256_srl_epi16(reinterpret_cast<__m256i>(lanes), _mm_cvtsi32_si128(bits)));
}

#elif defined(__aarch64__)

using ByteTable = uint8x16_t;

inline ByteTable load_table(const uint8_t* entries) { return vld1q_u8(entries); }

inline ByteLanes look_up(ByteTable table, ByteLanes index) {
  uint8x16_t halves[2];
  __builtin_memcpy(halves, &index, sizeof halves);
  halves[0] = vqtbl1q_u8(table, halves[0]);
  halves[1] = vqtbl1q_u8(table, halves[1]);
  ByteLanes entries;
  __builtin_memcpy(&entries, halves, sizeof entries);
  return entries;
}

inline PairLanes multiply_high(PairLanes a, PairLanes b) {
  using Wide = uint32_t __attribute__((vector_size(2 * kLanes)));
  return __builtin_convertvector(
      (__builtin_convertvector(a, Wide) * __builtin_convertvector(b, Wide)) >> 16, PairLanes);
}

inline PairLanes shift_right(PairLanes lanes, int bits) {
  return lanes >> static_cast<uint16_t>(bits);
}

#endif

#endif  // VOREL_PLATFORM_BYTE_LANES_H_
