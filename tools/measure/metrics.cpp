#include "tools/measure/metrics.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <thread>
#include <vector>

#include "tools/measure/ciede2000.h"

namespace tool {
namespace {

constexpr double kPeak = 255.0;

// Adds the squared differences of every `step`-th byte.
void add_squares(PlaneError& error, const uint8_t* a, const uint8_t* b, size_t count, size_t step) {
  uint64_t squares = 0;  // 2^28 samples of at most 255^2 fit
  for (size_t i = 0; i < count; ++i) {
    const int difference = a[i * step] - b[i * step];
    squares += static_cast<uint64_t>(difference * difference);
  }
  error.squares += static_cast<double>(squares);
  error.samples += static_cast<double>(count);
}

// Sums of a block of bytes fit 32 bits.
constexpr size_t kBlock = size_t{1} << 16;

void add_changes(ChangeCount::Plane& plane, const uint8_t* before, const uint8_t* after,
                 size_t count) {
  for (size_t first = 0; first < count; first += kBlock) {
    const size_t end = std::min(first + kBlock, count);
    uint32_t changed = 0;
    uint32_t sum = 0;
    for (size_t i = first; i < end; ++i) {
      const uint8_t difference =
          static_cast<uint8_t>(std::max(before[i], after[i]) - std::min(before[i], after[i]));
      changed += difference != 0 ? 1 : 0;
      sum += difference;
    }
    plane.changed += changed;
    plane.sum += sum;
  }
  plane.total += static_cast<double>(count);
}

// Sum over the first or, from `bytes` + 1, the second bytes of pairs.
double pair_sum(const uint8_t* bytes, size_t pairs) {
  double total = 0.0;
  for (size_t first = 0; first < pairs; first += kBlock) {
    const size_t end = std::min(first + kBlock, pairs);
    uint32_t sum = 0;
    for (size_t i = first; i < end; ++i) sum += bytes[2 * i];
    total += sum;
  }
  return total;
}

}  // namespace

double PlaneError::psnr() const {
  if (squares == 0.0) return std::numeric_limits<double>::infinity();
  return 10.0 * std::log10(kPeak * kPeak * samples / squares);
}

double ciede2000_sum(const RgbImage& a, const RgbImage& b) {
  const LabConverter to_lab;
  std::vector<double> rows(static_cast<size_t>(a.height));
  const int threads = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, 16u));
  const auto work = [&](int first) {
    for (int y = first; y < a.height; y += threads) {
      rows[static_cast<size_t>(y)] = to_lab.difference_sum(a.row(y), b.row(y), a.width);
    }
  };
  {
    std::vector<std::jthread> workers;
    for (int i = 1; i < threads; ++i) workers.emplace_back(work, i);
    work(0);
  }
  // Summed in row order, so that the number of threads does not show.
  double sum = 0.0;
  for (const double row : rows) sum += row;
  return sum;
}

void PictureDistance::add(const Nv21Frame& frame, const RgbImage& image, const Nv21Frame& reference,
                          const RgbImage& reference_image) {
  const size_t chroma = frame.chroma_bytes() / 2;
  add_squares(y_, frame.y(), reference.y(), frame.luma_bytes(), 1);
  add_squares(v_, frame.vu(), reference.vu(), chroma, 2);
  add_squares(u_, frame.vu() + 1, reference.vu() + 1, chroma, 2);
  difference_sum_ += ciede2000_sum(image, reference_image);
  pixels_ += static_cast<double>(frame.luma_bytes());
}

double PictureDistance::mean_ciede2000() const {
  return pixels_ > 0.0 ? difference_sum_ / pixels_ : 0.0;
}

void ChangeCount::add(const Nv21Frame& before, const Nv21Frame& after) {
  add_changes(luma_, before.y(), after.y(), before.luma_bytes());
  add_changes(chroma_, before.vu(), after.vu(), before.chroma_bytes());
  const size_t pairs = before.chroma_bytes() / 2;
  shift_sum_.v += pair_sum(after.vu(), pairs) - pair_sum(before.vu(), pairs);
  shift_sum_.u += pair_sum(after.vu() + 1, pairs) - pair_sum(before.vu() + 1, pairs);
}

ChangeCount::Shift ChangeCount::chroma_shift() const {
  const double samples = chroma_.total / 2;
  if (samples == 0) return {};
  return {shift_sum_.u / samples, shift_sum_.v / samples};
}

}  // namespace tool
