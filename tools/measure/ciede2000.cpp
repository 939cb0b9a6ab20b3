#include "tools/measure/ciede2000.h"

#include <cmath>
#include <numbers>

#include "tools/pictures/gamma.h"

namespace tool {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
constexpr double kPower25To7 = 6103515625.0;

// White of D65, as the sum of the matrix rows below.
constexpr double kWhite[3] = {0.95047, 1.0, 1.08883};

double power7(double x) { return x * x * x * x * x * x * x; }

// Hue angle in degrees, 0 for grey.
double hue(double a, double b) {
  if (a == 0.0 && b == 0.0) return 0.0;
  const double angle = std::atan2(b, a) / kDegree;
  return angle < 0.0 ? angle + 360.0 : angle;
}

double hue_difference(double h1, double h2, double chroma_product) {
  if (chroma_product == 0.0) return 0.0;
  const double difference = h2 - h1;
  if (difference > 180.0) return difference - 360.0;
  return difference < -180.0 ? difference + 360.0 : difference;
}

double mean_hue(double h1, double h2, double chroma_product) {
  if (chroma_product == 0.0) return h1 + h2;
  if (std::fabs(h1 - h2) <= 180.0) return (h1 + h2) / 2.0;
  return h1 + h2 < 360.0 ? (h1 + h2 + 360.0) / 2.0 : (h1 + h2 - 360.0) / 2.0;
}

double lab_curve(double t) {
  constexpr double kDelta = 6.0 / 29.0;
  return t > kDelta * kDelta * kDelta ? std::cbrt(t) : t / (3.0 * kDelta * kDelta) + 4.0 / 29.0;
}

}  // namespace

double ciede2000(const Lab& first, const Lab& second) {
  // Chroma and hue, with a* stretched near the grey axis.
  const double mean_c7 =
      power7((std::hypot(first.a, first.b) + std::hypot(second.a, second.b)) / 2);
  const double stretch = 1.5 - 0.5 * std::sqrt(mean_c7 / (mean_c7 + kPower25To7));
  const double a1 = first.a * stretch;
  const double a2 = second.a * stretch;
  const double c1 = std::hypot(a1, first.b);
  const double c2 = std::hypot(a2, second.b);
  const double h1 = hue(a1, first.b);
  const double h2 = hue(a2, second.b);

  const double delta_l = second.l - first.l;
  const double delta_c = c2 - c1;
  const double delta_h =
      2.0 * std::sqrt(c1 * c2) * std::sin(hue_difference(h1, h2, c1 * c2) / 2.0 * kDegree);

  // Weights at the mean colour.
  const double c = (c1 + c2) / 2.0;
  const double h = mean_hue(h1, h2, c1 * c2);
  const double t = 1.0 - 0.17 * std::cos((h - 30.0) * kDegree) +
                   0.24 * std::cos(2.0 * h * kDegree) + 0.32 * std::cos((3.0 * h + 6.0) * kDegree) -
                   0.20 * std::cos((4.0 * h - 63.0) * kDegree);
  const double l50 = ((first.l + second.l) / 2.0 - 50.0) * ((first.l + second.l) / 2.0 - 50.0);
  const double weight_l = 1.0 + 0.015 * l50 / std::sqrt(20.0 + l50);
  const double weight_c = 1.0 + 0.045 * c;
  const double weight_h = 1.0 + 0.015 * c * t;

  // Chroma and hue interact in the blue region.
  const double from_blue = (h - 275.0) / 25.0;
  const double angle = 60.0 * std::exp(-from_blue * from_blue) * kDegree;
  const double c7 = power7(c);
  const double rotation = -2.0 * std::sqrt(c7 / (c7 + kPower25To7)) * std::sin(angle);

  const double l_term = delta_l / weight_l;
  const double c_term = delta_c / weight_c;
  const double h_term = delta_h / weight_h;
  return std::sqrt(l_term * l_term + c_term * c_term + h_term * h_term +
                   rotation * c_term * h_term);
}

LabConverter::LabConverter() {
  for (size_t i = 0; i < light_.size(); ++i)
    light_[i] = decode_srgb(static_cast<double>(i) / 255.0);
}

Lab LabConverter::operator()(const uint8_t* rgb) const {
  const double r = light_[rgb[0]];
  const double g = light_[rgb[1]];
  const double b = light_[rgb[2]];
  const double x = lab_curve((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / kWhite[0]);
  const double y = lab_curve((0.2126729 * r + 0.7151522 * g + 0.0721750 * b) / kWhite[1]);
  const double z = lab_curve((0.0193339 * r + 0.1191920 * g + 0.9503041 * b) / kWhite[2]);
  return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

}  // namespace tool
