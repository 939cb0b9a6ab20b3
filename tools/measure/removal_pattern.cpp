#include "tools/measure/removal_pattern.h"

#include <cmath>
#include <vector>

namespace tool {
namespace {

constexpr int kPlanes = 2;

constexpr int kMean = 4;        // samples a side of a mean
constexpr int kDirections = 4;  // differences of means a side, of which a direction is told

// Distances at which noise, however filtered, has nothing in common with itself.
constexpr int kNear = 5;
constexpr int kFar = 16;
constexpr int kRows = 32;  // about as many of a plane are looked at: plenty for a correlation

struct Plane {
  Plane(int w, int h)
      : samples(static_cast<size_t>(w) * static_cast<size_t>(h)), width(w), height(h) {}

  int16_t* row(int y) { return &samples[static_cast<size_t>(y) * static_cast<size_t>(width)]; }
  [[nodiscard]] const int16_t* row(int y) const {
    return &samples[static_cast<size_t>(y) * static_cast<size_t>(width)];
  }

  std::vector<int16_t> samples;
  int width;
  int height;
};

Plane removed_plane(const FrameView& noisy, const FrameView& denoised, int plane) {
  Plane removed(noisy.width / 2, noisy.height / 2);
  for (int y = 0; y < removed.height; ++y) {
    const uint8_t* before = noisy.chroma + static_cast<size_t>(y) * noisy.chroma_stride + plane;
    const uint8_t* after =
        denoised.chroma + static_cast<size_t>(y) * denoised.chroma_stride + plane;
    int16_t* row = removed.row(y);
    for (int x = 0; x < removed.width; ++x) {
      row[x] = static_cast<int16_t>(before[2 * x] - after[2 * x]);
    }
  }
  return removed;
}

// Sums in place of means: at most 16 * 255.
Plane means_of(const Plane& removed) {
  Plane means(removed.width / kMean, removed.height / kMean);
  for (int y = 0; y < means.height * kMean; ++y) {
    int16_t* row = means.row(y / kMean);
    for (int x = 0; x < means.width * kMean; ++x) {
      row[x / kMean] = static_cast<int16_t>(row[x / kMean] + removed.row(y)[x]);
    }
  }
  return means;
}

// Of the structure tensor of both planes: 1 where all differences have one direction, 0 where they
// have none.
double direction_at(const Plane (&means)[kPlanes], int x0, int y0) {
  double across = 0;
  double down = 0;
  double both = 0;
  for (const Plane& plane : means) {
    for (int y = y0; y < y0 + kDirections; ++y) {
      const int16_t* above = plane.row(y);
      const int16_t* below = plane.row(y + 1);
      for (int x = x0; x < x0 + kDirections; ++x) {
        const double falling = above[x] - below[x + 1];
        const double rising = above[x + 1] - below[x];
        across += (rising - falling) * (rising - falling);
        down += (rising + falling) * (rising + falling);
        both += (rising - falling) * (rising + falling);
      }
    }
  }
  const double all = across + down;
  return all > 0 ? std::hypot(across - down, 2 * both) / all : 0;
}

double directed(const Plane (&means)[kPlanes]) {
  double sum = 0;
  int blocks = 0;
  for (int y = 0; y + kDirections < means[0].height; y += kDirections) {
    for (int x = 0; x + kDirections < means[0].width; x += kDirections) {
      sum += direction_at(means, x, y);
      ++blocks;
    }
  }
  return blocks > 0 ? sum / blocks : 0;
}

int step_of_rows(const Plane& plane) {
  return (plane.height - kFar) / kRows | 1;  // odd: out of step with patterns of an even pitch
}

// Sum of the products of the samples looked at with those `below` and `right` of them.
double products(const Plane& removed, int below, int right) {
  double sum = 0;
  for (int y = 0; y < removed.height - kFar; y += step_of_rows(removed)) {
    const int16_t* here = removed.row(y);
    const int16_t* there = removed.row(y + below) + right;
    // Fits: a frame is less than 65536 pixels wide, 32768 * 255 * 255 < 2^31.
    int32_t row = 0;
    for (int x = kFar; x < removed.width - kFar; ++x) row += here[x] * there[x];
    sum += row;
  }
  return sum;
}

// What a constant adds to each of these sums: a shift of colour is no pattern.
double products_of_means(const Plane& removed) {
  double sum = 0;
  for (const int16_t sample : removed.samples) sum += sample;
  const double mean = sum / static_cast<double>(removed.samples.size());
  const int step = step_of_rows(removed);
  const int rows = (removed.height - kFar + step - 1) / step;
  return mean * mean * rows * (removed.width - 2 * kFar);
}

double repeated(const Plane (&removed)[kPlanes]) {
  if (removed[0].width <= 2 * kFar || removed[0].height <= kFar) return 0;
  const double constant = products_of_means(removed[0]) + products_of_means(removed[1]);
  const auto covariance = [&](int below, int right) {
    return products(removed[0], below, right) + products(removed[1], below, right) - constant;
  };
  const double energy = covariance(0, 0);
  if (energy <= 0) return 0;
  double squares = 0;
  int distances = 0;
  for (int below = 0; below <= kFar; ++below) {
    for (int right = below > 0 ? -kFar : 0; right <= kFar; ++right) {
      const int distance = below * below + right * right;
      if (distance <= kNear * kNear || distance > kFar * kFar) continue;
      const double correlation = covariance(below, right) / energy;
      squares += correlation * correlation;
      ++distances;
    }
  }
  return std::sqrt(squares / distances);
}

}  // namespace

RemovalPattern measure_removal_pattern(const FrameView& noisy, const FrameView& denoised) {
  const Plane removed[kPlanes] = {removed_plane(noisy, denoised, 0),
                                  removed_plane(noisy, denoised, 1)};
  return {directed({means_of(removed[0]), means_of(removed[1])}), repeated(removed)};
}

}  // namespace tool
