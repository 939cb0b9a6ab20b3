// The plane of kernel tests and benchmarks: rows without gaps, of bytes or of half-precision
// samples, that end (or start) at an unreadable page.
#ifndef VOREL_TESTS_SUPPORT_PLANES_H_
#define VOREL_TESTS_SUPPORT_PLANES_H_

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>

#include "tests/support/guarded_plane.h"
#include "vorel/wavelet/buffer.h"

class Plane {
 public:
  enum class Samples { kBytes, kHalves };

  Plane(int rows, int cols, Samples samples, GuardedBytes::Guard guard)
      : rows_(std::max(rows, 0)),
        cols_(std::max(cols, 0)),
        samples_(samples),
        memory_(std::make_unique<GuardedBytes>(count() * sample_bytes(), guard)) {}

  int rows() const { return rows_; }
  int cols() const { return cols_; }
  Samples samples() const { return samples_; }
  size_t count() const { return static_cast<size_t>(rows_) * static_cast<size_t>(cols_); }
  uint8_t* bytes() const { return memory_->data(); }
  _Float16* halves() const { return reinterpret_cast<_Float16*>(memory_->data()); }

  // The plane as the wavelet path describes it.
  buffer record() const {
    buffer plane{};
    plane.data = bytes();
    plane.height = static_cast<uint32_t>(rows_);
    plane.width = static_cast<uint32_t>(cols_);
    plane.borrowed = true;
    return plane;
  }

  void fill(uint8_t byte) { std::fill_n(bytes(), memory_->size(), byte); }

  // Bytes by the pattern; halves are these values, exact.
  void fill(Pattern pattern, std::mt19937& random) {
    if (samples_ == Samples::kBytes) return fill_pattern(bytes(), count(), pattern, random);
    std::unique_ptr<uint8_t[]> values(new uint8_t[count()]);
    fill_pattern(values.get(), count(), pattern, random);
    std::copy_n(values.get(), count(), halves());
  }

  // Empty when all bits are equal, else the first sample that differs.
  std::string difference(const Plane& expected) const {
    const size_t size = sample_bytes();
    if (std::memcmp(bytes(), expected.bytes(), count() * size) == 0) return "";
    for (size_t i = 0; i < count(); ++i) {
      if (std::memcmp(bytes() + i * size, expected.bytes() + i * size, size) == 0) continue;
      // What is no number is so with any bits.
      if (is_not_a_number(i) && expected.is_not_a_number(i)) continue;
      const size_t cols = static_cast<size_t>(cols_);
      return "row " + std::to_string(i / cols) + " column " + std::to_string(i % cols) + " is " +
             text(i) + ", expected " + expected.text(i);
    }
    return "";
  }

 private:
  size_t sample_bytes() const { return samples_ == Samples::kBytes ? 1 : sizeof(_Float16); }
  bool is_not_a_number(size_t i) const {
    return samples_ == Samples::kHalves && halves()[i] != halves()[i];
  }
  std::string text(size_t i) const {
    return samples_ == Samples::kBytes ? std::to_string(bytes()[i])
                                       : std::to_string(static_cast<float>(halves()[i]));
  }

  int rows_;
  int cols_;
  Samples samples_;
  std::unique_ptr<GuardedBytes> memory_;
};

#endif  // VOREL_TESTS_SUPPORT_PLANES_H_
