#include "tools/pictures/noise_model.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "tests/tools/test_pictures.h"
#include "tools/pictures/gamma.h"

namespace {

using tool::NoiseSettings;
using tool::RgbImage;

RgbImage flat(int width, int height, uint8_t r, uint8_t g, uint8_t b) {
  RgbImage image(width, height);
  for (size_t i = 0; i < image.pixels.size(); i += 3) {
    image.pixels[i] = r;
    image.pixels[i + 1] = g;
    image.pixels[i + 2] = b;
  }
  return image;
}

struct Statistics {
  double mean;
  double deviation;
};

Statistics channel_statistics(const RgbImage& image, size_t channel) {
  double sum = 0;
  double squares = 0;
  const auto count = static_cast<double>(image.pixels.size() / 3);
  for (size_t i = channel; i < image.pixels.size(); i += 3) {
    sum += image.pixels[i];
    squares += static_cast<double>(image.pixels[i]) * image.pixels[i];
  }
  const double mean = sum / count;
  return {mean, std::sqrt(squares / count - mean * mean)};
}

double mean_light(const RgbImage& image, size_t channel) {
  double sum = 0;
  for (size_t i = channel; i < image.pixels.size(); i += 3) {
    sum += tool::decode_srgb(image.pixels[i] / 255.0);
  }
  return 3 * sum / static_cast<double>(image.pixels.size());
}

// Correlation of the differences between two channels, or of one with its neighbour `step` pixels
// on.
double correlation(const RgbImage& image, size_t a, size_t b, size_t step) {
  const double mean_a = channel_statistics(image, a).mean;
  const double mean_b = channel_statistics(image, b).mean;
  double ab = 0;
  double aa = 0;
  double bb = 0;
  for (size_t i = 0; i + 3 * step + 2 < image.pixels.size(); i += 3) {
    const double da = image.pixels[i + a] - mean_a;
    const double db = image.pixels[i + 3 * step + b] - mean_b;
    ab += da * db;
    aa += da * da;
    bb += db * db;
  }
  return ab / std::sqrt(aa * bb);
}

TEST(Gamma, FollowsTheSrgbCurve) {
  for (int i = 0; i <= 1000; ++i) {
    const double value = i / 1000.0;
    const double expected =
        value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    ASSERT_NEAR(tool::decode_srgb(value), expected, 1e-12) << value;
  }
}

TEST(Gamma, EncodingUndoesDecoding) {
  const tool::GammaTables gamma;
  for (int i = 0; i < 256; ++i) {
    EXPECT_EQ(gamma.encode(gamma.decode(static_cast<uint8_t>(i))), i);
  }
  EXPECT_EQ(gamma.encode(-0.1), 0);
  EXPECT_EQ(gamma.encode(1.5), 255);
  EXPECT_EQ(gamma.encode(std::nan("")), 0);
}

TEST(NoiseModel, BytesAreTheSameOnEveryMachine) {
  const RgbImage image = gradient_picture(61, 43);
  const std::map<int, uint64_t> expected{
      {1, 0x119BD037AB9F644D}, {16, 0x5F3B0D2B4FC646F1}, {200, 0x9C2CCA7C3D02E275}};
  for (const auto& [gain, value] : expected) {
    EXPECT_EQ(digest(tool::add_camera_noise(image, {gain, 7, 2}).pixels), value) << gain;
  }
}

TEST(NoiseModel, RandomNumbersAreStandardNormalAndDependOnEverything) {
  double sum = 0;
  double squares = 0;
  double fourths = 0;
  constexpr int kCount = 200000;
  for (uint64_t i = 0; i < kCount; ++i) {
    const double z = tool::photosite_noise(1, 0, i);
    sum += z;
    squares += z * z;
    fourths += z * z * z * z;
  }
  EXPECT_NEAR(sum / kCount, 0, 0.01);
  EXPECT_NEAR(squares / kCount, 1, 0.02);
  EXPECT_NEAR(fourths / kCount, 2.9, 0.1) << "3 - 6 / (5 * 12) for a sum of twelve";
  EXPECT_NE(tool::photosite_noise(1, 0, 5), tool::photosite_noise(2, 0, 5));
  EXPECT_NE(tool::photosite_noise(1, 0, 5), tool::photosite_noise(1, 1, 5));
  EXPECT_EQ(tool::photosite_noise(1, 0, 5), tool::photosite_noise(1, 0, 5));
}

TEST(NoiseModel, GreyStaysGreyOnAverageAndNoiseGrowsWithGain) {
  const RgbImage image = flat(128, 128, 118, 118, 118);
  const double light = tool::decode_srgb(118 / 255.0);
  double before = 0;
  for (const int gain : {1, 4, 16, 64}) {
    const RgbImage noisy = tool::add_camera_noise(image, {gain, 3, 0});
    for (size_t channel = 0; channel < 3; ++channel) {
      EXPECT_NEAR(mean_light(noisy, channel), light, 0.04 * light) << "gain " << gain;
    }
    const double deviation = channel_statistics(noisy, 1).deviation;
    EXPECT_GT(deviation, before * 1.5) << "gain " << gain;
    before = deviation;
  }
}

TEST(NoiseModel, ShotNoiseFollowsTheLight) {
  // In linear light the variance of green is (light + read noise) * gain / full well, less what the
  // demosaicing averages away; twice the gain doubles it.
  const auto variance = [](int gain) {
    const double deviation =
        channel_statistics(tool::add_camera_noise(flat(160, 160, 128, 128, 128), {gain, 5, 0}), 1)
            .deviation;
    return deviation * deviation;
  };
  EXPECT_NEAR(variance(8) / variance(4), 2.0, 0.2);
}

TEST(NoiseModel, ColourSurvivesLowGain) {
  const RgbImage image = flat(64, 64, 150, 90, 60);
  const RgbImage developed = tool::add_camera_noise(image, {1, 1, 0});
  EXPECT_NEAR(channel_statistics(developed, 0).mean, 150, 2);
  EXPECT_NEAR(channel_statistics(developed, 1).mean, 90, 2);
  EXPECT_NEAR(channel_statistics(developed, 2).mean, 60, 2);
}

TEST(NoiseModel, NoiseIsColouredAndCoarse) {
  const RgbImage noisy = tool::add_camera_noise(flat(200, 200, 100, 100, 100), {16, 9, 0});
  EXPECT_LT(correlation(noisy, 0, 2, 0), 0.5) << "red and blue differ: the noise has colour";
  EXPECT_GT(correlation(noisy, 0, 0, 1), 0.3) << "neighbours are alike: the grain is coarse";
  EXPECT_LT(std::abs(correlation(noisy, 0, 0, 5)), 0.05) << "no pattern farther away";
}

TEST(NoiseModel, FramesOfAVideoAndSeedsDiffer) {
  const RgbImage image = gradient_picture(32, 32);
  const std::vector<uint8_t> first = tool::add_camera_noise(image, {16, 1, 0}).pixels;
  EXPECT_NE(tool::add_camera_noise(image, {16, 1, 1}).pixels, first);
  EXPECT_NE(tool::add_camera_noise(image, {16, 2, 0}).pixels, first);
  EXPECT_EQ(tool::add_camera_noise(image, {16, 1, 0}).pixels, first);
}

TEST(NoiseModel, TinyPicturesHaveNoNeighboursToMirror) {
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 7}, {7, 1}, {2, 2}, {3, 2}}) {
    const RgbImage noisy = tool::add_camera_noise(flat(width, height, 200, 200, 200), {4, 1, 0});
    EXPECT_EQ(noisy.pixels.size(), 3 * static_cast<size_t>(width * height));
  }
}

}  // namespace
