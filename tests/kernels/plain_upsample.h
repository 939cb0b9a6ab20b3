// The upsampling rule for one output.
#ifndef VOREL_TESTS_KERNELS_PLAIN_UPSAMPLE_H_
#define VOREL_TESTS_KERNELS_PLAIN_UPSAMPLE_H_

#include <algorithm>
#include <cstdint>

// A dense plane and its outputs per sample.
struct PlainUpsampling {
  const uint8_t* src;
  int cols;
  int rows;
  int across;
  int down;

  // The floor of the exact bilinear value.
  uint8_t at(int y, int x) const {
    const int row = y / down;
    const int col = x / across;
    const uint8_t* upper = src + row * cols;
    const uint8_t* lower = src + std::min(row + 1, rows - 1) * cols;
    const int next = std::min(col + 1, cols - 1);
    const int below = y % down;
    const int right = x % across;
    const int above = down - below;
    const int left = across - right;
    const int sum = above * left * upper[col] + above * right * upper[next] +
                    below * left * lower[col] + below * right * lower[next];
    return static_cast<uint8_t>(sum / (across * down));
  }
};

#endif  // VOREL_TESTS_KERNELS_PLAIN_UPSAMPLE_H_
