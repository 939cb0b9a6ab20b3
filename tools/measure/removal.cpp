#include "tools/measure/removal.h"

#include <cmath>

namespace tool {
namespace {

constexpr int kSide = 8;  // chroma samples
constexpr int kSamples = kSide * kSide;

// Where nothing happens rounding to whole steps would decide, so it is drowned.
constexpr double kLumaFloor = 4;  // of a block's sum of squares
constexpr double kEnergyFloor = 0.05;
constexpr double kTextureFloor = 0.1;

// A block's sums over its samples; luma is the sum of the four pixels of a chroma sample.
struct BlockSums {
  int64_t removed[2] = {};  // of each plane
  int64_t removed_squares[2] = {};
  int64_t removed_luma[2] = {};
  int64_t luma = 0;
  int64_t luma_squares = 0;
  int64_t left[2] = {};
  int64_t left_squares[2] = {};
  int untouched = 0;
};

BlockSums sums_of(const FrameView& noisy, const FrameView& denoised, int x0, int y0) {
  BlockSums sums;
  for (int y = y0; y < y0 + kSide; ++y) {
    const uint8_t* luma = noisy.luma + static_cast<size_t>(2 * y) * noisy.luma_stride + 2 * x0;
    const uint8_t* before = noisy.chroma + static_cast<size_t>(y) * noisy.chroma_stride + 2 * x0;
    const uint8_t* after =
        denoised.chroma + static_cast<size_t>(y) * denoised.chroma_stride + 2 * x0;
    for (int x = 0; x < 2 * kSide; x += 2) {
      const int four =
          luma[x] + luma[x + 1] + luma[noisy.luma_stride + x] + luma[noisy.luma_stride + x + 1];
      sums.luma += four;
      sums.luma_squares += four * four;
      int changed = 0;
      for (int plane = 0; plane < 2; ++plane) {
        const int left = after[x + plane];
        const int removed = before[x + plane] - left;
        sums.removed[plane] += removed;
        sums.removed_squares[plane] += removed * removed;
        sums.removed_luma[plane] += removed * four;
        sums.left[plane] += left;
        sums.left_squares[plane] += left * left;
        changed |= removed;
      }
      sums.untouched += changed == 0;
    }
  }
  return sums;
}

// Sum of the products of deviations from the means.
double about_means(int64_t products, int64_t first, int64_t second) {
  return static_cast<double>(products) - static_cast<double>(first * second) / kSamples;
}

class Correlation {
 public:
  void add(double x, double y) {
    x_ += x;
    y_ += y;
    xx_ += x * x;
    yy_ += y * y;
    xy_ += x * y;
  }

  // Of `count` pairs; 0 where one of both does not vary.
  [[nodiscard]] double value(double count) const {
    constexpr double kVaries = 1e-6;
    const double x_variance = xx_ / count - x_ / count * (x_ / count);
    const double y_variance = yy_ / count - y_ / count * (y_ / count);
    if (x_variance < kVaries || y_variance < kVaries) return 0;
    return (xy_ / count - x_ / count * (y_ / count)) / std::sqrt(x_variance * y_variance);
  }

 private:
  double x_ = 0;
  double y_ = 0;
  double xx_ = 0;
  double yy_ = 0;
  double xy_ = 0;
};

}  // namespace

Removal measure_removal(const FrameView& noisy, const FrameView& denoised) {
  double blocks = 0;
  double untouched = 0;
  double squares = 0;
  double along_luma = 0;
  Correlation with_texture;
  for (int y = 0; y + kSide <= noisy.height / 2; y += kSide) {
    for (int x = 0; x + kSide <= noisy.width / 2; x += kSide) {
      const BlockSums sums = sums_of(noisy, denoised, x, y);
      // Back from sums of four pixels to their means.
      const double luma = about_means(sums.luma_squares, sums.luma, sums.luma) / 16 + kLumaFloor;
      double removed = 0;
      double texture = 0;
      for (int plane = 0; plane < 2; ++plane) {
        const double common =
            about_means(sums.removed_luma[plane], sums.removed[plane], sums.luma) / 4;
        along_luma += common * common / luma;
        removed += static_cast<double>(sums.removed_squares[plane]);
        texture += about_means(sums.left_squares[plane], sums.left[plane], sums.left[plane]);
      }
      with_texture.add(std::log(removed / (2 * kSamples) + kEnergyFloor),
                       std::log(texture / kSamples + kTextureFloor));
      squares += removed;
      untouched += sums.untouched;
      ++blocks;
    }
  }
  if (squares == 0) return {0, 1, 0, 0, {}};
  return {squares / (2 * kSamples * blocks), untouched / (kSamples * blocks), along_luma / squares,
          with_texture.value(blocks), measure_removal_pattern(noisy, denoised)};
}

}  // namespace tool
