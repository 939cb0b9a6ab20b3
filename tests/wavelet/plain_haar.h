// The Haar kernels sample by sample, from lists of their taps.
#ifndef VOREL_TESTS_WAVELET_PLAIN_HAAR_H_
#define VOREL_TESTS_WAVELET_PLAIN_HAAR_H_

#include <memory>
#include <vector>

#include "tests/support/guarded_plane.h"
#include "tests/wavelet/plain_half.h"
#include "vorel/wavelet/haar_transform.h"

inline constexpr double kL = 0.70703125;
inline constexpr double kD = 0.5;

// A dense plane with its end at an unreadable page.
struct Plane {
  int width;
  int height;
  std::unique_ptr<GuardedPlane<_Float16>> samples;

  Plane(int w, int h)
      : width(w),
        height(h),
        samples(std::make_unique<GuardedPlane<_Float16>>(static_cast<size_t>(w) * h)) {
    fill(7);
  }
  size_t size() const { return samples->size(); }
  void fill(_Float16 value) { std::fill_n(data(), size(), value); }
  void fill(const std::vector<_Float16>& values) {
    std::copy(values.begin(), values.end(), data());
  }
  _Float16& at(int x, int y) { return (*samples)[static_cast<size_t>(y) * width + x]; }
  _Float16* data() const { return samples->data(); }
  std::vector<uint16_t> bits() const {
    return half_bits(std::vector<_Float16>(data(), data() + size()));
  }
  buffer record() {
    return {data(), static_cast<uint32_t>(height), static_cast<uint32_t>(width), 0, 0, 0, 0, 0,
            true};
  }
};

enum class Samples { kChroma, kSignedZeros };

inline Plane random_plane(int width, int height, uint32_t seed, Samples kind = Samples::kChroma) {
  std::mt19937 random(seed);
  Plane plane(width, height);
  if (kind == Samples::kChroma) {
    plane.fill(random_halves(plane.size(), -300, 300, random));
    return plane;
  }
  for (size_t i = 0; i < plane.size(); ++i) {
    plane.data()[i] = half_of_bits(random() % 2 ? 0x8000 : 0);
  }
  return plane;
}

using SplitMethod = void (HaarTransform::*)(_Float16*, _Float16*, _Float16*, int, int);

struct PlainSplitTap {
  int offset;
  double low;
  double high;
};

struct PlainSplit {
  const char* name;
  SplitMethod method;
  bool along_columns;
  std::vector<PlainSplitTap> taps;
  int spare_columns;  // at the right: neither read nor written
  int spare_rows;     // at the bottom: not written
  int least_height;
};

inline const std::vector<PlainSplitTap> kLevel1Taps = {{0, kL, -kL}, {1, kL, kL}};
inline const std::vector<PlainSplitTap> kLevel2Taps = {{0, kL, -kL}, {1, 0, 0}, {2, kL, kL}};
inline const std::vector<PlainSplitTap> kDirectionalTaps = {
    {-1, kD, -kD}, {0, kD, -kD}, {1, kD, kD}, {2, kD, kD}};

inline const PlainSplit kSplits[] = {
    {"fwt", &HaarTransform::fwt, false, kLevel1Taps, 0, 0, 1},
    {"fwtVert", &HaarTransform::fwtVert, true, kLevel1Taps, 0, 0, 1},
    {"fwtL2", &HaarTransform::fwtL2, false, kLevel2Taps, 0, 0, 1},
    {"fwtVertL2", &HaarTransform::fwtVertL2, true, kLevel2Taps, 0, 0, 1},
    {"fwtL2Dir", &HaarTransform::fwtL2Dir, false, kDirectionalTaps, 1, 1, 1},
    {"fwtVertL2Dir", &HaarTransform::fwtVertL2Dir, true, kDirectionalTaps, 0, 1, 3},
};

inline void split_plainly(const PlainSplit& split, Plane& src, Plane& lo, Plane& hi) {
  if (src.height < split.least_height) return;
  const int columns = src.width - split.spare_columns;
  const int length = split.along_columns ? src.height : columns;
  for (int y = 0; y < src.height - split.spare_rows; ++y) {
    for (int x = 0; x < columns; ++x) {
      PlainHalf low = 0.0;
      PlainHalf high = 0.0;
      for (const PlainSplitTap& tap : split.taps) {
        const int at = (split.along_columns ? y : x) + tap.offset;
        if (at < 0 || at >= length) continue;
        const PlainHalf sample = split.along_columns ? src.at(x, at) : src.at(at, y);
        low = low + sample * PlainHalf(tap.low);
        high = high + sample * PlainHalf(tap.high);
      }
      lo.at(x, y) = low;
      hi.at(x, y) = high;
    }
  }
}

// One band's term; the sample comes from the high band or from the low one.
struct PlainJoinTerm {
  bool high;
  int offset;
  double tap;
};

struct PlainJoin {
  const char* name;
  SplitMethod method;
  bool along_columns;
  std::vector<PlainJoinTerm> terms;
  bool from_zero;
  double scale;
  int shift;  // columns and rows by which outputs move
  int spare;  // outputs that are missing at the end of a line
  int least_length;
};

inline const std::vector<PlainJoinTerm> kLevel1Terms = {
    {false, 0, kL}, {true, 0, -kL}, {false, -1, kL}, {true, -1, kL}};
inline const std::vector<PlainJoinTerm> kLevel2Terms = {
    {false, 0, kL}, {true, 0, -kL}, {false, -1, 0}, {true, -1, 0}, {false, -2, kL}, {true, -2, kL}};
inline const std::vector<PlainJoinTerm> kDirectionalTerms = {
    {false, 2, kD}, {true, 2, -kD}, {false, 1, kD},  {true, 1, -kD},
    {false, 0, kD}, {true, 0, kD},  {false, -1, kD}, {true, -1, kD}};

inline const PlainJoin kJoins[] = {
    {"iwt", &HaarTransform::iwt, false, kLevel1Terms, true, 0.5, 0, 0, 1},
    {"iwtVert", &HaarTransform::iwtVert, true, kLevel1Terms, true, 0.5, 0, 0, 1},
    {"iwtL2", &HaarTransform::iwtL2, false, kLevel2Terms, true, 0.5, 0, 0, 1},
    {"iwtVertL2", &HaarTransform::iwtVertL2, true, kLevel2Terms, true, 0.5, 0, 0, 1},
    {"iwtDir", &HaarTransform::iwtDir, false, kLevel1Terms, false, 0.5, 0, 0, 1},
    {"iwtVertDir", &HaarTransform::iwtVertDir, true, kLevel1Terms, false, 0.5, 0, 0, 1},
    {"iwtL2Dir", &HaarTransform::iwtL2Dir, false, kDirectionalTerms, true, 0.125, 1, 2, 3},
    {"iwtVertL2Dir", &HaarTransform::iwtVertL2Dir, true, kDirectionalTerms, true, 0.5, 0, 2, 3},
};

inline void join_plainly(const PlainJoin& join, Plane& lo, Plane& hi, Plane& out) {
  const int length = join.along_columns ? lo.height : lo.width;
  if (length < join.least_length) return;
  const int columns = join.along_columns ? lo.width : lo.width - join.spare;
  const int rows = join.along_columns ? lo.height - join.spare : lo.height - join.shift;
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < columns; ++x) {
      PlainHalf sum = join.from_zero ? 0.0 : -0.0;
      for (const PlainJoinTerm& term : join.terms) {
        const int at = (join.along_columns ? y : x) + term.offset;
        if (at < 0 || at >= length) continue;
        Plane& band = term.high ? hi : lo;
        const PlainHalf sample = join.along_columns ? band.at(x, at) : band.at(at, y);
        sum = sum + sample * PlainHalf(term.tap);
      }
      out.at(x + join.shift, y + join.shift) = sum * PlainHalf(join.scale);
    }
  }
}

#endif  // VOREL_TESTS_WAVELET_PLAIN_HAAR_H_
