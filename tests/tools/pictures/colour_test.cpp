#include "tools/pictures/colour.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "tests/tools/test_pictures.h"
#include "tools/files/failure.h"

namespace {

using tool::Colour;
using tool::Matrix;
using tool::Nv21Frame;
using tool::Range;
using tool::RgbImage;

// Weights of R and B in luma.
struct Weights {
  double r;
  double b;
};

Weights weights_of(Colour colour) {
  return colour.matrix == Matrix::kBt601 ? Weights{0.299, 0.114} : Weights{0.2126, 0.0722};
}

// One pixel by the definition: {Y, U, V}.
std::array<double, 3> yuv_of(double r, double g, double b, Colour colour) {
  const Weights w = weights_of(colour);
  const double y = w.r * r + (1 - w.r - w.b) * g + w.b * b;
  const double u = (b - y) / (2 * (1 - w.b));
  const double v = (r - y) / (2 * (1 - w.r));
  if (colour.range == Range::kFull) return {y, u + 128, v + 128};
  return {16 + y * 219 / 255, 128 + u * 224 / 255, 128 + v * 224 / 255};
}

std::array<double, 3> rgb_of(double y, double u, double v, Colour colour) {
  const Weights w = weights_of(colour);
  u -= 128;
  v -= 128;
  if (colour.range == Range::kLimited) {
    y = (y - 16) * 255 / 219;
    u = u * 255 / 224;
    v = v * 255 / 224;
  }
  const double r = y + 2 * (1 - w.r) * v;
  const double b = y + 2 * (1 - w.b) * u;
  const double g = (y - w.r * r - w.b * b) / (1 - w.r - w.b);
  return {std::clamp(r, 0.0, 255.0), std::clamp(g, 0.0, 255.0), std::clamp(b, 0.0, 255.0)};
}

constexpr Colour kAllColours[] = {{Range::kFull, Matrix::kBt601},
                                  {Range::kLimited, Matrix::kBt601},
                                  {Range::kFull, Matrix::kBt709},
                                  {Range::kLimited, Matrix::kBt709}};

TEST(Colour, ToYuvFollowsTheDefinitionWithinRounding) {
  const RgbImage image = gradient_picture(64, 48);
  for (const Range range : {Range::kFull, Range::kLimited}) {
    const Colour colour{range, Matrix::kBt601};
    const Nv21Frame frame = tool::rgb_to_nv21(image, colour);
    double bias[3] = {};
    for (int y = 0; y < 48; y += 2) {
      for (int x = 0; x < 64; x += 2) {
        double mean[3] = {};
        for (int i = 0; i < 4; ++i) {
          const uint8_t* pixel = image.row(y + i / 2) + 3 * (x + i % 2);
          for (int c = 0; c < 3; ++c) mean[c] += pixel[c] / 4.0;
          const double luma = yuv_of(pixel[0], pixel[1], pixel[2], colour)[0];
          ASSERT_NEAR(frame.y()[(y + i / 2) * 64 + x + i % 2], luma, 1.1) << x << "," << y;
        }
        const auto chroma = yuv_of(mean[0], mean[1], mean[2], colour);
        const uint8_t* vu = frame.vu() + y / 2 * 64 + x;
        ASSERT_NEAR(vu[1], chroma[1], 2.5) << x << "," << y;
        ASSERT_NEAR(vu[0], chroma[2], 2.5) << x << "," << y;
        bias[1] += vu[1] - chroma[1];
        bias[2] += vu[0] - chroma[2];
      }
    }
    // A steady colour cast would be worse than single steps.
    EXPECT_LT(std::abs(bias[1]) / (32 * 24), 0.8);
    EXPECT_LT(std::abs(bias[2]) / (32 * 24), 0.8);
  }
}

TEST(Colour, ToRgbFollowsTheDefinitionForEveryKindOfYuv) {
  for (const Colour colour : kAllColours) {
    // libyuv's blue reaches no farther than twice the distance of U from grey. Only limited range
    // asks for more, with BT.709 for 2.112 times.
    const double scale = colour.range == Range::kLimited ? 255.0 / 224 : 1.0;
    const double missing_blue = std::max(0.0, 2 * (1 - weights_of(colour).b) * scale - 2.0);
    for (int u = 48; u <= 208; u += 40) {
      for (int v = 48; v <= 208; v += 40) {
        Nv21Frame frame(256, 2, colour);
        for (int x = 0; x < 256; ++x) frame.y()[x] = frame.y()[256 + x] = static_cast<uint8_t>(x);
        for (int x = 0; x < 256; x += 2) {
          frame.vu()[x] = static_cast<uint8_t>(v);
          frame.vu()[x + 1] = static_cast<uint8_t>(u);
        }
        const RgbImage image = tool::nv21_to_rgb(frame);
        for (int x = 0; x < 256; ++x) {
          const auto expected = rgb_of(x, u, v, colour);
          for (size_t c = 0; c < 3; ++c) {
            const double tolerance = 2.1 + (c == 2 ? missing_blue * std::abs(u - 128) : 0.0);
            ASSERT_NEAR(image.pixels[static_cast<size_t>(x) * 3 + c], expected[c], tolerance)
                << "luma " << x << " u " << u << " v " << v << " channel " << c;
          }
        }
      }
    }
  }
}

TEST(Colour, GreyHasNoColourInEitherDirection) {
  RgbImage image(32, 2);
  for (size_t i = 0; i < image.pixels.size(); ++i)
    image.pixels[i] = static_cast<uint8_t>(i / 3 * 4);
  const Nv21Frame frame = tool::rgb_to_nv21(image, {});
  EXPECT_THAT(std::vector<uint8_t>(frame.vu(), frame.vu() + frame.chroma_bytes()),
              testing::Each(128));
  const RgbImage back = tool::nv21_to_rgb(frame);
  for (size_t i = 0; i < back.pixels.size(); i += 3) {
    EXPECT_EQ(back.pixels[i], back.pixels[i + 1]);
    EXPECT_EQ(back.pixels[i], back.pixels[i + 2]);
    EXPECT_NEAR(back.pixels[i], image.pixels[i], 1);
  }
}

TEST(Colour, OddSizesHaveChromaForTheLastColumnAndRow) {
  RgbImage image(3, 3);
  std::fill(image.pixels.begin(), image.pixels.end(), 0);
  uint8_t* corner = image.row(2) + 6;
  corner[0] = 255;
  for (const Range range : {Range::kFull, Range::kLimited}) {
    const Nv21Frame frame = tool::rgb_to_nv21(image, {range, Matrix::kBt601});
    ASSERT_EQ(frame.data.size(), 9u + 8u);
    const auto red = yuv_of(255, 0, 0, {range, Matrix::kBt601});
    EXPECT_NEAR(frame.vu()[6], red[2], 2) << "the corner's V";
    EXPECT_NEAR(frame.vu()[7], red[1], 2) << "the corner's U";
    EXPECT_EQ(frame.vu()[0], 128);
  }
}

TEST(Colour, ChromaIsInterpolatedBetweenSampleCentres) {
  Nv21Frame frame(4, 2);
  std::fill_n(frame.y(), 8, uint8_t{128});
  const uint8_t vu[] = {128, 128, 192, 128};
  std::copy_n(vu, 4, frame.vu());
  const RgbImage image = tool::nv21_to_rgb(frame);
  // V of the four columns: 128, 3/4 and 1/4 of the way between the centres, 192.
  const double expected_v[] = {128, 144, 176, 192};
  for (int x = 0; x < 4; ++x) {
    EXPECT_NEAR(image.pixels[static_cast<size_t>(x) * 3], rgb_of(128, 128, expected_v[x], {})[0],
                2);
  }
}

TEST(Colour, ToBt709IsRefusedBecauseNothingConvertsToIt) {
  const RgbImage image(2, 2);
  EXPECT_THROW(static_cast<void>(tool::rgb_to_nv21(image, {Range::kFull, Matrix::kBt709})),
               tool::Failure);
}

TEST(Colour, FramesAreConvertedOnlyWhenTheirYuvDiffers) {
  const Nv21Frame frame = patterned_frame(16, 4);
  EXPECT_EQ(tool::as_nv21({frame, {}}, {}).data, frame.data);
  const Nv21Frame limited = tool::as_nv21({frame, {}}, {Range::kLimited, Matrix::kBt601});
  EXPECT_EQ(limited.colour.range, Range::kLimited);
  EXPECT_NE(limited.data, frame.data);
}

}  // namespace
