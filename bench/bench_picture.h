// What the benchmarks' planes and frames hold.
#ifndef VOREL_BENCH_BENCH_PICTURE_H_
#define VOREL_BENCH_BENCH_PICTURE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

// Bytes that look like a picture to a kernel: smooth, with noise on top. The same on every machine.
std::vector<uint8_t> make_bench_plane(size_t bytes, uint32_t seed);

#endif  // VOREL_BENCH_BENCH_PICTURE_H_
