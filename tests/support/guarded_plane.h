// Planes that end where memory ends, and their contents.
#ifndef VOREL_TESTS_SUPPORT_GUARDED_PLANE_H_
#define VOREL_TESTS_SUPPORT_GUARDED_PLANE_H_

#include <cstddef>
#include <cstdint>
#include <random>

// Memory of exactly `bytes` bytes whose end (or, on demand, start) touches an unreadable page: one
// access too far ends the test program.
class GuardedBytes {
 public:
  enum class Guard { kEnd, kStart };
  explicit GuardedBytes(size_t bytes, Guard guard = Guard::kEnd);
  ~GuardedBytes();
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;

  uint8_t* data() { return data_; }
  const uint8_t* data() const { return data_; }
  size_t size() const { return size_; }

 private:
  uint8_t* mapping_;
  size_t mapped_;
  uint8_t* data_;
  size_t size_;
};

// A guarded plane of `count` elements.
template <typename T>
class GuardedPlane {
 public:
  explicit GuardedPlane(size_t count, GuardedBytes::Guard guard = GuardedBytes::Guard::kEnd)
      : bytes_(count * sizeof(T), guard), count_(count) {}
  T* data() { return reinterpret_cast<T*>(bytes_.data()); }
  const T* data() const { return reinterpret_cast<const T*>(bytes_.data()); }
  size_t size() const { return count_; }
  T& operator[](size_t i) { return data()[i]; }
  const T& operator[](size_t i) const { return data()[i]; }

 private:
  GuardedBytes bytes_;
  size_t count_;
};

// Sample patterns that find faults in byte kernels.
enum class Pattern { kRandom, kLow, kHigh, kAlternating, kNear, kPicture };
inline constexpr Pattern kAllPatterns[] = {Pattern::kRandom, Pattern::kLow, Pattern::kHigh,
                                           Pattern::kAlternating, Pattern::kNear};

// Fills with random bytes, 0, 255, 0 and 255 in turn, or bytes that differ little from grey, or
// what looks like a picture to a benchmark: smooth, with noise on top.
void fill_pattern(uint8_t* data, size_t count, Pattern pattern, std::mt19937& random);

#endif  // VOREL_TESTS_SUPPORT_GUARDED_PLANE_H_
