#include "tools/tune/score.h"

#include <algorithm>
#include <cmath>

#include "tools/measure/metrics.h"
#include "tools/pictures/colour.h"

namespace tool {
namespace {

constexpr int kRowStep = 4;

double psnr_of(double mean_square) {
  // A picture that equals its truth would be infinitely good, which no mean survives.
  constexpr double kLeast = 1e-3;
  return 10.0 * std::log10(255.0 * 255.0 / std::max(kLeast, mean_square));
}

double luma_error(const Nv21Frame& a, const Nv21Frame& b) {
  uint64_t sum = 0;
  for (size_t i = 0; i < a.luma_bytes(); ++i) {
    const int difference = a.data[i] - b.data[i];
    sum += static_cast<uint64_t>(difference * difference);
  }
  return static_cast<double>(sum) / static_cast<double>(a.luma_bytes());
}

// Of the first (0) or the second (1) bytes of the pairs.
double chroma_error(const Nv21Frame& frame, const ChromaImage& truth, size_t component) {
  double sum = 0.0;
  for (size_t i = component; i < truth.pairs.size(); i += 2) {
    const double difference = frame.vu()[i] - static_cast<double>(truth.pairs[i]);
    sum += difference * difference;
  }
  return 2.0 * sum / static_cast<double>(truth.pairs.size());
}

RgbImage some_rows(const RgbImage& image) {
  RgbImage rows(image.width, (image.height + kRowStep - 1) / kRowStep);
  for (int y = 0; y < rows.height; ++y) {
    const uint8_t* row = image.row(y * kRowStep);
    std::copy(row, row + image.stride(), rows.row(y));
  }
  return rows;
}

double psnr_without_truth_noise(const Capture& capture, const Nv21Frame& frame, size_t component) {
  const double error = chroma_error(frame, capture.truth_chroma, component);
  if (capture.truth_noise_share == 0.0) return psnr_of(error);
  const double noise = chroma_error(capture.noisy, capture.truth_chroma, component);
  return psnr_of(error - capture.truth_noise_share * noise);
}

}  // namespace

Score& Score::operator+=(const Score& other) {
  psnr_y += other.psnr_y;
  psnr_u += other.psnr_u;
  psnr_v += other.psnr_v;
  ciede2000 += other.ciede2000;
  return *this;
}

Score& Score::operator/=(double count) {
  psnr_y /= count;
  psnr_u /= count;
  psnr_v /= count;
  ciede2000 /= count;
  return *this;
}

Score score_of(const Capture& capture, const Nv21Frame& frame) {
  Score score;
  score.psnr_y = psnr_of(luma_error(frame, capture.truth));
  score.psnr_v = psnr_without_truth_noise(capture, frame, 0);
  score.psnr_u = psnr_without_truth_noise(capture, frame, 1);
  const RgbImage rows = some_rows(nv21_to_rgb(frame));
  const double pixels = static_cast<double>(rows.width) * rows.height;
  score.ciede2000 = ciede2000_sum(rows, some_rows(nv21_to_rgb(capture.truth))) / pixels;
  return score;
}

}  // namespace tool
