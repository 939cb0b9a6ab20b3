#include "tools/measure/patch_noise.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include "tools/files/failure.h"

namespace tool {
namespace {

constexpr double kCoarse = 1.0 / 16;  // cycles per sample

using Complex = std::complex<double>;

// exp(-2 pi i k n / size) for n = 0, 1, …
std::vector<Complex> wave(int k, int size) {
  std::vector<Complex> values;
  values.reserve(static_cast<size_t>(size));
  for (int n = 0; n < size; ++n) {
    values.push_back(std::polar(1.0, -2 * std::numbers::pi * k * n / size));
  }
  return values;
}

// Energy of the coarse frequencies: the few terms of the Fourier transform, rows first. Negative
// horizontal frequencies mirror the positive ones.
double coarse_energy(const std::vector<double>& noise, int width, int height) {
  double energy = 0;
  std::vector<Complex> columns(static_cast<size_t>(height));
  for (int k = 0; k < kCoarse * width; ++k) {
    const std::vector<Complex> along_row = wave(k, width);
    for (int y = 0; y < height; ++y) {
      Complex sum = 0;
      const double* row = noise.data() + static_cast<size_t>(y) * static_cast<size_t>(width);
      for (int x = 0; x < width; ++x) sum += row[x] * along_row[static_cast<size_t>(x)];
      columns[static_cast<size_t>(y)] = sum;
    }
    const int most = static_cast<int>(kCoarse * height);
    for (int l = -most; l <= most; ++l) {
      if (std::hypot(static_cast<double>(k) / width, static_cast<double>(l) / height) >= kCoarse) {
        continue;
      }
      const std::vector<Complex> along_column = wave(l, height);
      Complex sum = 0;
      for (size_t y = 0; y < columns.size(); ++y) sum += columns[y] * along_column[y];
      energy += (k == 0 ? 1 : 2) * std::norm(sum);
    }
  }
  return energy;
}

}  // namespace

PatchNoise measure_patch(const PatchView& patch) {
  std::vector<double> noise;
  double sum = 0;
  for (int y = 0; y < patch.height; ++y) {
    const uint8_t* row = patch.samples + static_cast<size_t>(y) * patch.stride;
    for (int x = 0; x < patch.width; ++x) {
      noise.push_back(row[static_cast<size_t>(x) * patch.step]);
      sum += noise.back();
    }
  }
  const auto count = static_cast<double>(noise.size());
  const double mean = sum / count;
  double squares = 0;
  for (double& value : noise) {
    value -= mean;
    squares += value * value;
  }
  const double share =
      squares > 0 ? coarse_energy(noise, patch.width, patch.height) / (count * squares) : 0;
  return {mean, std::sqrt(squares / count), share};
}

PatchPlanes measure_patch(const Nv21Frame& frame, const Crop& patch) {
  const auto width = static_cast<size_t>(frame.width);
  const auto x = static_cast<size_t>(patch.x);
  const uint8_t* luma = frame.y() + static_cast<size_t>(patch.y) * width + x;
  const auto chroma_x = static_cast<size_t>((patch.x + 1) / 2);
  const auto chroma_y = static_cast<size_t>((patch.y + 1) / 2);
  const auto stride = static_cast<size_t>(frame.chroma_stride());
  const uint8_t* pair = frame.vu() + chroma_y * stride + 2 * chroma_x;
  const int chroma_width = std::max((patch.x + patch.width) / 2 - (patch.x + 1) / 2, 1);
  const int chroma_height = std::max((patch.y + patch.height) / 2 - (patch.y + 1) / 2, 1);
  return {measure_patch(PatchView{luma, width, 1, patch.width, patch.height}),
          measure_patch(PatchView{pair + 1, stride, 2, chroma_width, chroma_height}),
          measure_patch(PatchView{pair, stride, 2, chroma_width, chroma_height})};
}

void check_area(const char* option, const Crop& area, Size size, const std::string& path) {
  if (area.width <= size.width - area.x && area.height <= size.height - area.y && area.width >= 2 &&
      area.height >= 2) {
    return;
  }
  throw usage_error(std::string(option) + " does not lie in " + path + ", which is " +
                    size_text(size) + ", or is less than 2 x 2");
}

}  // namespace tool
