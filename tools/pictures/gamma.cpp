#include "tools/pictures/gamma.h"

#include <cstddef>

namespace tool {
namespace {

// Steps of the encoding table. The curve is steepest at black, where one byte spans
// 65536 / (255 * 12.92) = 19.9 steps, so bytes are met within a twentieth.
constexpr int kEncodeSteps = 1 << 16;

// Fifth root of a number in 0..1, by Newton's method from above.
double fifth_root(double x) {
  double root = 1.0;
  for (int i = 0; i < 64; ++i) {
    const double fourth = root * root * root * root;
    root = (4.0 * root + x / fourth) / 5.0;
  }
  return root;
}

}  // namespace

double decode_srgb(double value) {
  if (value <= 0.04045) return value / 12.92;
  const double base = (value + 0.055) / 1.055;
  const double root = fifth_root(base);
  return base * base * root * root;  // base to the power of 2.4
}

GammaTables::GammaTables() : encode_(kEncodeSteps + 1) {
  for (int i = 0; i < 256; ++i) decode_[static_cast<size_t>(i)] = decode_srgb(i / 255.0);
  int byte = 0;
  double next = decode_srgb(0.5 / 255.0);
  for (int i = 0; i <= kEncodeSteps; ++i) {
    const double light = static_cast<double>(i) / kEncodeSteps;
    while (byte < 255 && light >= next) {
      ++byte;
      next = decode_srgb((byte + 0.5) / 255.0);
    }
    encode_[static_cast<size_t>(i)] = static_cast<uint8_t>(byte);
  }
}

uint8_t GammaTables::encode(double light) const {
  if (!(light > 0.0)) return 0;
  if (light >= 1.0) return 255;
  return encode_[static_cast<size_t>(light * kEncodeSteps + 0.5)];
}

}  // namespace tool
