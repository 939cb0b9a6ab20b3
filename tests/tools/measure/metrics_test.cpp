#include "tools/measure/metrics.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>
#include <random>

#include "tests/tools/test_pictures.h"
#include "tools/measure/ciede2000.h"
#include "tools/measure/distance_table.h"
#include "tools/pictures/gamma.h"

namespace {

using testing::HasSubstr;
using tool::Lab;
using tool::Nv21Frame;
using tool::PictureDistance;
using tool::RgbImage;

TEST(Ciede2000, MatchesThePublishedPairs) {
  // Pairs of Sharma, Wu and Dalal (2005), chosen for hue wrap-around, the grey axis, the rotation
  // term, and large and small differences.
  const struct {
    Lab a;
    Lab b;
    double difference;
  } kPairs[] = {
      {{50, 2.6772, -79.7751}, {50, 0, -82.7485}, 2.0425},
      {{50, 3.1571, -77.2803}, {50, 0, -82.7485}, 2.8615},
      {{50, -1.3802, -84.2814}, {50, 0, -82.7485}, 1.0000},
      {{50, 0, 0}, {50, -1, 2}, 2.3669},
      {{50, 2.4900, -0.0010}, {50, -2.4900, 0.0009}, 7.1792},
      {{50, 2.4900, -0.0010}, {50, -2.4900, 0.0010}, 7.1792},
      {{50, 2.4900, -0.0010}, {50, -2.4900, 0.0011}, 7.2195},
      {{50, -0.0010, 2.4900}, {50, 0.0009, -2.4900}, 4.8045},
      {{50, -0.0010, 2.4900}, {50, 0.0011, -2.4900}, 4.7461},
      {{50, 2.5000, 0}, {50, 0, -2.5000}, 4.3065},
      {{50, 2.5000, 0}, {73, 25, -18}, 27.1492},
      {{50, 2.5000, 0}, {61, -5, 29}, 22.8977},
      {{50, 2.5000, 0}, {56, -27, -3}, 31.9030},
      {{50, 2.5000, 0}, {58, 24, 15}, 19.4535},
      {{60.2574, -34.0099, 36.2677}, {60.4626, -34.1751, 39.4387}, 1.2644},
      {{63.0109, -31.0961, -5.8663}, {62.8187, -29.7946, -4.0864}, 1.2630},
      {{22.7233, 20.0904, -46.6940}, {23.0331, 14.9730, -42.5619}, 2.0373},
      {{90.8027, -2.0831, 1.4410}, {91.1528, -1.6435, 0.0447}, 1.4441},
      {{2.0776, 0.0795, -1.1350}, {0.9033, -0.0636, -0.5514}, 0.9082},
  };
  for (const auto& pair : kPairs) {
    EXPECT_NEAR(tool::ciede2000(pair.a, pair.b), pair.difference, 5e-5);
    EXPECT_NEAR(tool::ciede2000(pair.b, pair.a), pair.difference, 5e-5);
  }
}

TEST(Ciede2000, LabOfKnownColours) {
  const tool::LabConverter to_lab;
  const auto expect = [&](std::array<uint8_t, 3> rgb, Lab expected) {
    const Lab lab = to_lab(rgb.data());
    EXPECT_NEAR(lab.l, expected.l, 0.02);
    EXPECT_NEAR(lab.a, expected.a, 0.02);
    EXPECT_NEAR(lab.b, expected.b, 0.02);
  };
  expect({255, 255, 255}, {100, 0, 0});
  expect({0, 0, 0}, {0, 0, 0});
  expect({255, 0, 0}, {53.24, 80.09, 67.20});
  expect({0, 0, 255}, {32.30, 79.19, -107.86});
  expect({119, 119, 119}, {50.03, 0, 0});
}

// The definition, hue by hue in degrees.
double textbook_difference(const Lab& first, const Lab& second) {
  constexpr double kDegree = std::numbers::pi / 180;
  const auto weight = [](double c) { return std::sqrt(1 / (1 + std::pow(25 / c, 7))); };
  const double mean_c = (std::hypot(first.a, first.b) + std::hypot(second.a, second.b)) / 2;
  const double stretch = 1.5 - 0.5 * weight(mean_c);
  const double c1 = std::hypot(stretch * first.a, first.b);
  const double c2 = std::hypot(stretch * second.a, second.b);
  const auto hue = [&](const Lab& lab) {
    const double angle = std::atan2(lab.b, stretch * lab.a) / kDegree;
    return angle < 0 ? angle + 360 : angle;
  };
  const double h1 = hue(first);
  const double h2 = hue(second);
  const double apart = h2 - h1;
  const double turn = apart > 180 ? apart - 360 : apart < -180 ? apart + 360 : apart;
  const double h = h1 + turn / 2 + (h1 + turn / 2 < 0 ? 360 : h1 + turn / 2 >= 360 ? -360 : 0);
  const auto cosine = [&](double times, double shift) {
    return std::cos((times * h + shift) * kDegree);
  };
  const double t =
      1 - 0.17 * cosine(1, -30) + 0.24 * cosine(2, 0) + 0.32 * cosine(3, 6) - 0.20 * cosine(4, -63);
  const double c = (c1 + c2) / 2;
  const double l50 = std::pow((first.l + second.l) / 2 - 50, 2);
  const double l_term = (second.l - first.l) / (1 + 0.015 * l50 / std::sqrt(20 + l50));
  const double c_term = (c2 - c1) / (1 + 0.045 * c);
  const double h_term = 2 * std::sqrt(c1 * c2) * std::sin(turn / 2 * kDegree) / (1 + 0.015 * c * t);
  const double rotation =
      -2 * weight(c) * std::sin(60 * std::exp(-std::pow((h - 275) / 25, 2)) * kDegree);
  return std::sqrt(l_term * l_term + c_term * c_term + h_term * h_term +
                   rotation * c_term * h_term);
}

TEST(Ciede2000, RowsMatchTheTextbook) {
  const tool::LabConverter to_lab;
  const auto curve = [](double t) {
    return t > 216.0 / 24389 ? std::cbrt(t) : t * 841 / 108 + 4.0 / 29;
  };
  const auto textbook_lab = [&](const uint8_t* rgb) {
    const double r = tool::decode_srgb(rgb[0] / 255.0);
    const double g = tool::decode_srgb(rgb[1] / 255.0);
    const double b = tool::decode_srgb(rgb[2] / 255.0);
    const double x = curve((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / 0.95047);
    const double y = curve(0.2126729 * r + 0.7151522 * g + 0.0721750 * b);
    const double z = curve((0.0193339 * r + 0.1191920 * g + 0.9503041 * b) / 1.08883);
    return Lab{116 * y - 16, 500 * (x - y), 200 * (y - z)};
  };
  std::mt19937 random(1);
  for (const int width : {1, 2, 127, 128, 129, 3000}) {
    RgbImage a(width, 1);
    for (uint8_t& byte : a.pixels) byte = static_cast<uint8_t>(random());
    RgbImage b = a;
    // Every third pixel is equal, every third near, every third any other.
    for (size_t i = 0; i < b.pixels.size(); ++i) {
      const auto kind = i / 3 % 3;
      if (kind == 1) b.pixels[i] = static_cast<uint8_t>(b.pixels[i] ^ (random() & 7));
      if (kind == 2) b.pixels[i] = static_cast<uint8_t>(random());
    }
    double sum = 0;
    for (size_t i = 0; i < a.pixels.size(); i += 3) {
      const Lab first = textbook_lab(&a.pixels[i]);
      const Lab second = textbook_lab(&b.pixels[i]);
      const double difference = tool::ciede2000(to_lab(&a.pixels[i]), to_lab(&b.pixels[i]));
      EXPECT_NEAR(difference, textbook_difference(first, second), 1e-7)
          << first.a << " " << first.b;
      sum += difference;
    }
    EXPECT_EQ(to_lab.difference_sum(a.row(0), b.row(0), width), sum) << width;
  }
}

TEST(Metrics, PsnrOfPlanesWorkedOutByHand) {
  const Nv21Frame reference = patterned_frame(16, 4);
  Nv21Frame other = reference;
  other.y()[5] = static_cast<uint8_t>(other.y()[5] + 8);    // 64 over 64 samples: mean square 1
  other.vu()[2] = static_cast<uint8_t>(other.vu()[2] + 4);  // V: 16 over 16 samples: 1
  const RgbImage image(16, 4);
  PictureDistance distance;
  distance.add(other, image, reference, image);
  EXPECT_NEAR(distance.psnr_y(), 20 * std::log10(255.0), 1e-9);
  EXPECT_NEAR(distance.psnr_v(), 20 * std::log10(255.0), 1e-9);
  EXPECT_TRUE(std::isinf(distance.psnr_u()));
  EXPECT_EQ(distance.mean_ciede2000(), 0);

  distance.add(reference, image, reference, image);  // a second frame halves the mean square
  EXPECT_NEAR(distance.psnr_y(), 20 * std::log10(255.0) + 10 * std::log10(2.0), 1e-9);
}

TEST(Metrics, MeanColourDifferenceIsThatOfThePixels) {
  RgbImage a(3, 40);
  RgbImage b = a;
  b.row(17)[0] = 255;  // one red pixel of 120
  const tool::LabConverter to_lab;
  const double red = tool::ciede2000(to_lab(a.row(17)), to_lab(b.row(17)));
  EXPECT_NEAR(tool::ciede2000_sum(a, b), red, 1e-9);
  const Nv21Frame frame(3, 40);
  PictureDistance distance;
  distance.add(frame, a, frame, b);
  EXPECT_NEAR(distance.mean_ciede2000(), red / 120, 1e-9);
}

TEST(Metrics, ChangeCountsSamplesAndTheirDistance) {
  const Nv21Frame before = patterned_frame(16, 4);
  Nv21Frame after = before;
  after.y()[0] = static_cast<uint8_t>(after.y()[0] + 6);
  for (size_t i = 0; i < 8; ++i) after.vu()[i] = static_cast<uint8_t>(after.vu()[i] - 2);
  tool::ChangeCount change;
  change.add(before, after);
  EXPECT_DOUBLE_EQ(change.luma().share_percent(), 100.0 / 64);
  EXPECT_DOUBLE_EQ(change.luma().mean(), 6.0 / 64);
  EXPECT_DOUBLE_EQ(change.chroma().share_percent(), 25.0);
  EXPECT_DOUBLE_EQ(change.chroma().mean(), 16.0 / 32);
}

// Distances of frames whose V differs from the reference by `steps`.
PictureDistance distance_of(int steps) {
  const Nv21Frame reference = patterned_frame(16, 4);
  Nv21Frame other = reference;
  for (size_t i = 0; i < 32; i += 2) other.vu()[i] = static_cast<uint8_t>(other.vu()[i] + steps);
  RgbImage image(16, 4);
  RgbImage changed = image;
  changed.pixels[0] = static_cast<uint8_t>(40 * steps);
  PictureDistance distance;
  distance.add(other, changed, reference, image);
  return distance;
}

TEST(DistanceTable, MarksWhatGotBetterAndWorse) {
  const std::string table =
      tool::distance_table({{"a", distance_of(2)}, {"b", distance_of(1)}, {"c", distance_of(4)}});
  // 20 log10(255 / steps): 42.11, 48.13, 36.09.
  EXPECT_THAT(table,
              HasSubstr("PSNR V, dB       42.11  48.13 (+6.02 better)  36.09 (-6.02 worse)"));
  EXPECT_THAT(table, HasSubstr("PSNR Y, dB       equal  equal (same)"));
  EXPECT_THAT(table,
              testing::ContainsRegex("CIEDE2000, mean .*\\(-.* better\\) .*\\(\\+.* worse\\)"));
}

TEST(DistanceTable, JsonHasNumbersAndNullForEqualPlanes) {
  const std::string json = tool::distance_json("t.png", {{"a \"b\".png", distance_of(1)}});
  EXPECT_THAT(json, HasSubstr("\"reference\": \"t.png\""));
  EXPECT_THAT(json, HasSubstr("\"file\": \"a \\\"b\\\".png\""));
  EXPECT_THAT(json, HasSubstr("\"psnr_y\": null"));
  EXPECT_THAT(json, HasSubstr("\"psnr_v\": 48.13"));
}

}  // namespace
