#include "tools/pictures/noise_model.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "tools/pictures/gamma.h"

namespace tool {
namespace {

// A phone's main sensor with small photosites.
constexpr double kFullWell = 5000.0;     // electrons at white, gain 1
constexpr double kReadNoise = 1.8;       // electrons
constexpr double kMaxAnalogGain = 16.0;  // the rest of the gain is digital, after the converter
constexpr double kWhiteCode = 1023.0;    // 10-bit converter
constexpr double kBlackCode = 64.0;

// Daylight: how much more light of each colour makes the sensor answer like its green.
constexpr double kWhiteBalance[3] = {1.95, 1.0, 1.62};

// Sensor colours to linear sRGB, after white balance. Rows sum to 1: grey stays grey.
constexpr double kColourMatrix[3][3] = {
    {1.66, -0.53, -0.13}, {-0.19, 1.41, -0.22}, {0.02, -0.55, 1.53}};

struct Matrix3 {
  double m[3][3];
};

Matrix3 inverse(const double (&a)[3][3]) {
  Matrix3 adjugate{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const int r0 = (j + 1) % 3;
      const int r1 = (j + 2) % 3;
      const int c0 = (i + 1) % 3;
      const int c1 = (i + 2) % 3;
      adjugate.m[i][j] = a[r0][c0] * a[r1][c1] - a[r0][c1] * a[r1][c0];
    }
  }
  const double determinant =
      a[0][0] * adjugate.m[0][0] + a[0][1] * adjugate.m[1][0] + a[0][2] * adjugate.m[2][0];
  for (auto& row : adjugate.m) {
    for (double& value : row) value /= determinant;
  }
  return adjugate;
}

double transform(const double (&row)[3], const double* colour) {
  return row[0] * colour[0] + row[1] * colour[1] + row[2] * colour[2];
}

// Colour of a photosite: R G over G B.
int bayer_colour(int x, int y) { return (x & 1) + (y & 1); }

// One sample per photosite, 1 = white at gain 1 before white balance; noise makes some negative.
class Mosaic {
 public:
  Mosaic(int width, int height)
      : width_(width), height_(height), samples_(static_cast<size_t>(width) * height) {}
  double& at(int x, int y) { return samples_[static_cast<size_t>(y) * width_ + x]; }

  // Mean of the samples of `colour` among the 3 x 3 photosites around a place, or the place's own
  // sample when it has that colour. Borders mirror without repeating the edge, which keeps the
  // pattern; a picture of one row or column has neighbours on two sides only.
  double interpolated(int x, int y, int colour) const {
    if (bayer_colour(x, y) == colour) return sample(x, y);
    double sum = 0.0;
    int count = 0;
    for (int dy = -1; dy <= 1; ++dy) {
      for (int dx = -1; dx <= 1; ++dx) {
        const int nx = mirror(x + dx, width_);
        const int ny = mirror(y + dy, height_);
        if (bayer_colour(nx, ny) != colour) continue;
        sum += sample(nx, ny);
        ++count;
      }
    }
    return count > 0 ? sum / count : 0.0;
  }

 private:
  static int mirror(int i, int size) {
    if (size == 1) return 0;
    if (i < 0) return -i;
    return i < size ? i : 2 * size - 2 - i;
  }
  double sample(int x, int y) const { return samples_[static_cast<size_t>(y) * width_ + x]; }

  int width_;
  int height_;
  std::vector<double> samples_;
};

// Mixes the bits of a counter; every input gives another output.
uint64_t mix(uint64_t x) {
  x += 0x9E3779B97F4A7C15u;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
  return x ^ (x >> 31);
}

// What the converter makes of a photosite's light: electrons with their noise, amplified,
// quantised and clipped, then brought back to the scale of the light.
double expose(double light, double noise, double gain) {
  const double electrons = std::max(light, 0.0) * kFullWell / gain;
  const double noisy = electrons + std::sqrt(electrons + kReadNoise * kReadNoise) * noise;
  const double analog = std::min(gain, kMaxAnalogGain);
  const double span = kWhiteCode - kBlackCode;
  const double code = std::floor(kBlackCode + noisy * analog / kFullWell * span + 0.5);
  const double clipped = std::clamp(code, 0.0, kWhiteCode);
  return (clipped - kBlackCode) / span * (gain / analog);
}

Mosaic capture(const RgbImage& image, const NoiseSettings& settings, const GammaTables& gamma) {
  const Matrix3 to_sensor = inverse(kColourMatrix);
  Mosaic mosaic(image.width, image.height);
  for (int y = 0; y < image.height; ++y) {
    const uint8_t* row = image.row(y);
    for (int x = 0; x < image.width; ++x) {
      const uint8_t* pixel = row + 3 * static_cast<size_t>(x);
      const double linear[3] = {gamma.decode(pixel[0]), gamma.decode(pixel[1]),
                                gamma.decode(pixel[2])};
      const int colour = bayer_colour(x, y);
      const double light = transform(to_sensor.m[colour], linear) / kWhiteBalance[colour];
      const uint64_t site =
          static_cast<uint64_t>(y) * static_cast<uint64_t>(image.width) + static_cast<uint64_t>(x);
      mosaic.at(x, y) =
          expose(light, photosite_noise(settings.seed, settings.frame, site), settings.gain);
    }
  }
  return mosaic;
}

}  // namespace

double photosite_noise(uint64_t seed, uint64_t frame, uint64_t site) {
  // Twelve uniform 16-bit numbers: their sum has the mean 393210 and the variance 65536^2 - 1.
  const uint64_t key = mix(mix(seed) ^ frame);
  int64_t sum = 0;
  for (uint64_t i = 0; i < 3; ++i) {
    for (uint64_t bits = mix(key ^ mix(3 * site + i)); bits != 0; bits >>= 16) {
      sum += static_cast<int64_t>(bits & 0xFFFF);
    }
  }
  return static_cast<double>(sum - 393210) / 65536.0;
}

RgbImage add_camera_noise(const RgbImage& image, const NoiseSettings& settings) {
  const GammaTables gamma;
  const Mosaic mosaic = capture(image, settings, gamma);
  RgbImage result(image.width, image.height);
  for (int y = 0; y < image.height; ++y) {
    uint8_t* row = result.row(y);
    for (int x = 0; x < image.width; ++x) {
      double balanced[3];
      for (int colour = 0; colour < 3; ++colour) {
        // White is what all channels reach: beyond it highlights would turn magenta.
        balanced[colour] = std::min(mosaic.interpolated(x, y, colour) * kWhiteBalance[colour], 1.0);
      }
      for (size_t channel = 0; channel < 3; ++channel) {
        row[3 * static_cast<size_t>(x) + channel] =
            gamma.encode(transform(kColourMatrix[channel], balanced));
      }
    }
  }
  return result;
}

}  // namespace tool
