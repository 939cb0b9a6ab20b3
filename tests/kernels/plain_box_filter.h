// The column box filter's rule, sample by sample.
#ifndef VOREL_TESTS_KERNELS_PLAIN_BOX_FILTER_H_
#define VOREL_TESTS_KERNELS_PLAIN_BOX_FILTER_H_

#include <algorithm>
#include <cstdint>

// The strip [first, end) of a plane of `height` rows.
struct PlainBoxFilter {
  const uint8_t* src;
  int width;
  int height;
  int tab_bit;
  int first;
  int end;

  // Of the smooth plane only every `low_step`th row.
  void filter(uint8_t* low, uint8_t* high, int low_step) const {
    for (int y = first; y < end; ++y) {
      for (int x = 0; x < width; ++x) {
        const int sample = src[y * width + x];
        const int smooth = smooth_at(y, x);
        if (y % low_step == 0) low[y * width + x] = static_cast<uint8_t>(smooth);
        high[y * width + x] = static_cast<uint8_t>(std::clamp(sample - smooth + 128, 0, 255));
      }
    }
  }

 private:
  int smooth_at(int y, int x) const {
    const int radius = ((1 << tab_bit) - 1) / 2;
    int sum = src[y * width + x];
    for (int i = y - radius; i <= y + radius; ++i) sum += src[mirrored(i) * width + x];
    return std::min((sum + radius + 1) >> tab_bit, 255);
  }

  // Which row is read for `row`. The mirrors are the strip's first and last row.
  int mirrored(int row) const {
    for (int images = 0; row < 0 || row >= height; ++images) {
      if (first == end - 1 && images == 1) return first;
      row = row < 0 ? 2 * first - row : 2 * (end - 1) - row;
    }
    return row;
  }
};

#endif  // VOREL_TESTS_KERNELS_PLAIN_BOX_FILTER_H_
