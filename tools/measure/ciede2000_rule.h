// The colour difference without branches and calls, so that a loop over it becomes vector code. No
// angle is ever computed but one: sines and cosines of hues follow from the hues' unit vectors.
#ifndef VOREL_TOOLS_MEASURE_CIEDE2000_RULE_H_
#define VOREL_TOOLS_MEASURE_CIEDE2000_RULE_H_

#include "tools/measure/ciede2000.h"

// Also part of functions that are compiled for more than one processor.
#define VOREL_RULE [[gnu::always_inline]] inline

namespace tool {

// Linear light of a pixel, 0 to 1.
struct Light {
  double r;
  double g;
  double b;
};

VOREL_RULE double root(double x) { return __builtin_elementwise_sqrt(x); }

// Linear near 0, a cube root above: a polynomial in the square root that is right to 4e-4, and one
// step of Halley's, which leaves 4e-11.
VOREL_RULE double lab_curve(double t) {
  constexpr double kDelta = 6.0 / 29.0;
  const double s = root(t);
  double y = -1.81132;
  y = y * s + 6.57691;
  y = y * s - 9.72164;
  y = y * s + 7.68035;
  y = y * s - 3.75471;
  y = y * s + 1.98232;
  y = y * s + 0.0479736;
  const double cube = y * y * y;
  const double cube_root = y * (cube + 2.0 * t) / (2.0 * cube + t);
  return t > kDelta * kDelta * kDelta ? cube_root : t / (3.0 * kDelta * kDelta) + 4.0 / 29.0;
}

VOREL_RULE Lab lab_of(const Light& light) {
  // Rows divided by their sums, D65's white.
  const double x = lab_curve((0.4124564 * light.r + 0.3575761 * light.g + 0.1804375 * light.b) *
                             (1.0 / 0.95047));
  const double y = lab_curve(0.2126729 * light.r + 0.7151522 * light.g + 0.0721750 * light.b);
  const double z = lab_curve((0.0193339 * light.r + 0.1191920 * light.g + 0.9503041 * light.b) *
                             (1.0 / 1.08883));
  return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

// sqrt(c^7 / (c^7 + 25^7))
VOREL_RULE double chroma_weight(double c) {
  constexpr double kPower25To7 = 6103515625.0;
  const double c7 = c * c * c * c * c * c * c;
  return root(c7 / (c7 + kPower25To7));
}

// Sine of 60 degrees * exp(-((h - 275) / 25)^2) for a hue h from 0 to 360 degrees.
VOREL_RULE double blue_sine(double cosine, double sine) {
  constexpr double kCos275 = 0.08715574274765817;
  constexpr double kSin275 = -0.9961946980917455;
  constexpr double kDegrees = 57.29577951308232;
  const double c = cosine * kCos275 + sine * kSin275;
  const double s = sine * kCos275 - cosine * kSin275;
  // Tangents of half, a quarter and an eighth of the angle to 275 degrees. An angle near 180, where
  // the first is large, weighs nothing.
  const double half = s / (1.0 + c > 1e-9 ? 1.0 + c : 1e-9);
  const double quarter = half / (1.0 + root(1.0 + half * half));
  const double t = quarter / (1.0 + root(1.0 + quarter * quarter));
  const double t2 = t * t;
  double arc = 1.0 / 15;
  arc = 1.0 / 13 - arc * t2;
  arc = 1.0 / 11 - arc * t2;
  arc = 1.0 / 9 - arc * t2;
  arc = 1.0 / 7 - arc * t2;
  arc = 1.0 / 5 - arc * t2;
  arc = 1.0 / 3 - arc * t2;
  const double from_blue = 8.0 * kDegrees / 25.0 * (t - arc * t2 * t);
  // exp(-x) = (exp(-x / 64))^64
  const double x = from_blue * from_blue / 64.0;
  double e = 1.0;
  for (int n = 11; n >= 1; --n) e = 1.0 - e * x * (1.0 / n);
  for (int n = 0; n < 6; ++n) e *= e;
  // Hues from 0 to 95 degrees lie more than 180 below 275, not just above it.
  const double angle = cosine > 0.0 && sine >= 0.0 ? 0.0 : 60.0 / kDegrees * e;
  const double a2 = angle * angle;
  double sum = 1.0;
  for (int n = 14; n >= 2; n -= 2) sum = 1.0 - sum * a2 * (1.0 / (n * (n + 1)));
  return angle * sum;
}

VOREL_RULE double ciede2000_rule(const Lab& first, const Lab& second) {
  // Chroma and hue, with a* stretched near the grey axis.
  const double mean_c = (root(first.a * first.a + first.b * first.b) +
                         root(second.a * second.a + second.b * second.b)) /
                        2.0;
  const double stretch = 1.5 - 0.5 * chroma_weight(mean_c);
  const double a1 = first.a * stretch;
  const double a2 = second.a * stretch;
  const double c1 = root(a1 * a1 + first.b * first.b);
  const double c2 = root(a2 * a2 + second.b * second.b);
  // Unit vectors of the hues; zero for grey.
  const double inverse1 = c1 > 0.0 ? 1.0 / c1 : 0.0;
  const double inverse2 = c2 > 0.0 ? 1.0 / c2 : 0.0;
  const double cos1 = a1 * inverse1;
  const double sin1 = first.b * inverse1;
  const double cos2 = a2 * inverse2;
  const double sin2 = second.b * inverse2;

  const double delta_l = second.l - first.l;
  const double delta_c = c2 - c1;
  // 2 sqrt(c1 c2) times the sine of half the angle between them, which is half the vectors'
  // distance. Of opposite hues the greater minus the lesser is 180.
  const double turn = cos1 * sin2 - sin1 * cos2;
  const bool first_is_less = sin1 > 0.0 || (sin1 == 0.0 && cos1 > 0.0);
  const bool is_positive = turn > 0.0 || (turn == 0.0 && first_is_less);
  const double apart_a = cos2 - cos1;
  const double apart_b = sin2 - sin1;
  const double distance = root(c1 * c2 * (apart_a * apart_a + apart_b * apart_b));
  const double delta_h = is_positive ? distance : -distance;

  // The mean hue halves the angle. Of opposite hues it is 90 degrees past the lesser.
  const double sum_a = cos1 + cos2;
  const double sum_b = sin1 + sin2;
  const double length2 = sum_a * sum_a + sum_b * sum_b;
  const double scale = 1.0 / root(length2 > 0.0 ? length2 : 1.0);
  const double past_a = first_is_less ? -sin1 : sin1;
  const double past_b = first_is_less ? cos1 : -cos1;
  const double ch = length2 > 0.0 ? sum_a * scale : past_a;
  const double sh = length2 > 0.0 ? sum_b * scale : past_b;

  // Weights at the mean colour: cosines of h - 30, 2 h, 3 h + 6 and 4 h - 63 degrees.
  const double ch2 = ch * ch - sh * sh;
  const double sh2 = 2.0 * sh * ch;
  const double ch3 = ch2 * ch - sh2 * sh;
  const double sh3 = sh2 * ch + ch2 * sh;
  const double ch4 = ch2 * ch2 - sh2 * sh2;
  const double sh4 = 2.0 * sh2 * ch2;
  const double t = 1.0 - 0.17 * (ch * 0.8660254037844386 + sh * 0.5) + 0.24 * ch2 +
                   0.32 * (ch3 * 0.9945218953682733 - sh3 * 0.10452846326765347) -
                   0.20 * (ch4 * 0.45399049973954675 + sh4 * 0.8910065241883679);
  const double c = (c1 + c2) / 2.0;
  const double l = (first.l + second.l) / 2.0 - 50.0;
  const double l50 = l * l;
  const double weight_l = 1.0 + 0.015 * l50 / root(20.0 + l50);
  const double weight_c = 1.0 + 0.045 * c;
  const double weight_h = 1.0 + 0.015 * c * t;

  // Chroma and hue interact in the blue region: the sine of twice the angle there, at most 60
  // degrees.
  const double rotation = -2.0 * chroma_weight(c) * blue_sine(ch, sh);
  const double l_term = delta_l / weight_l;
  const double c_term = delta_c / weight_c;
  const double h_term = delta_h / weight_h;
  const double square =
      l_term * l_term + c_term * c_term + h_term * h_term + rotation * c_term * h_term;
  return root(square > 0.0 ? square : 0.0);
}

}  // namespace tool

#undef VOREL_RULE

#endif  // VOREL_TOOLS_MEASURE_CIEDE2000_RULE_H_
