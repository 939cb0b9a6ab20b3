#include "bench/bench_picture.h"

#include <random>

std::vector<uint8_t> make_bench_plane(size_t bytes, uint32_t seed) {
  std::mt19937 random(seed);
  std::vector<uint8_t> plane(bytes);
  for (size_t i = 0; i < bytes; ++i) {
    plane[i] = static_cast<uint8_t>(96 + (i >> 6) % 64 + random() % 16);
  }
  return plane;
}
