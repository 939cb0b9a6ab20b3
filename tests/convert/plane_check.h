// Planes between unreadable pages, and how they differ.
#ifndef VOREL_TESTS_CONVERT_PLANE_CHECK_H_
#define VOREL_TESTS_CONVERT_PLANE_CHECK_H_

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "tests/support/guarded_plane.h"

using Bytes = std::vector<uint8_t>;
using Guard = GuardedBytes::Guard;

inline constexpr uint8_t kUntouched = 0xA5;

inline Bytes make_bytes(int count, Pattern pattern, std::mt19937& random) {
  Bytes bytes(static_cast<size_t>(count));
  fill_pattern(bytes.data(), bytes.size(), pattern, random);
  return bytes;
}

// A copy whose end or start touches an unreadable page.
struct Guarded : GuardedPlane<uint8_t> {
  Guarded(const Bytes& from, Guard guard) : GuardedPlane(from.size(), guard) {
    std::copy(from.begin(), from.end(), data());
  }
};

// Empty when the plane holds what is expected, else the first differing sample.
inline std::string difference(const GuardedPlane<uint8_t>& plane, const Bytes& expected,
                              const char* what) {
  if (plane.size() != expected.size()) return std::string(what) + ": size differs";
  for (size_t i = 0; i < expected.size(); ++i) {
    if (plane[i] != expected[i]) {
      return std::string(what) + ": sample " + std::to_string(i) + " is " +
             std::to_string(plane[i]) + ", expected " + std::to_string(expected[i]);
    }
  }
  return "";
}

#endif  // VOREL_TESTS_CONVERT_PLANE_CHECK_H_
