// The Symlet-4 transform by the book: one output at a time, from lists of terms in order.
#ifndef VOREL_TESTS_WAVELET_SYM4_PLAIN_H_
#define VOREL_TESTS_WAVELET_SYM4_PLAIN_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "tests/wavelet/plain_half.h"
#include "vorel/wavelet/buffer.h"

inline constexpr double kPlainTaps[8] = {0.0322265625,      0.012603759765625, 0.0992431640625,
                                         0.2978515625,      0.8037109375,      0.49755859375,
                                         0.029632568359375, 0.07574462890625};

// Adds (+1) or subtracts (-1) tap times the sample at `offset`.
struct PlainTap {
  int sign;
  int tap;
  int offset;
  bool high = false;  // synthesis: from the high band
};

// Offsets count from sample 2k.
inline const std::vector<PlainTap> kPlainLow = {{1, 0, -4}, {-1, 1, -3}, {-1, 2, -2}, {1, 3, -1},
                                                {1, 4, 0},  {1, 5, 1},   {-1, 6, 2},  {-1, 7, 3}};
inline const std::vector<PlainTap> kPlainHigh = {{1, 6, -3}, {-1, 7, -4}, {1, 5, -2}, {-1, 4, -1},
                                                 {1, 3, 0},  {1, 2, 1},   {-1, 1, 2}, {-1, 0, 3}};
// Offsets count from sample k of the bands; outputs 2k - 1 and 2k.
inline const std::vector<PlainTap> kPlainOdd = {
    {1, 5, -1},        {-1, 7, -2},      {1, 3, 0},        {-1, 1, 1},
    {-1, 0, -2, true}, {1, 2, -1, true}, {-1, 4, 0, true}, {1, 6, 1, true}};
inline const std::vector<PlainTap> kPlainEven = {
    {1, 4, 0},         {-1, 6, -1},     {-1, 2, 1},      {1, 0, 2},
    {-1, 1, -1, true}, {1, 3, 0, true}, {1, 5, 1, true}, {-1, 7, 2, true}};

// A line of samples: a row or a column.
using PlainLine = std::function<_Float16(int index)>;

inline _Float16 plain_sum(const std::vector<PlainTap>& terms, int centre, const PlainLine& low,
                          const PlainLine& high) {
  PlainHalf sum = 0.0;
  for (size_t i = 0; i < terms.size(); ++i) {
    const PlainTap& term = terms[i];
    const PlainHalf sample = (term.high ? high : low)(centre + term.offset);
    const PlainHalf product = sample * PlainHalf(kPlainTaps[term.tap]);
    if (i == 0) {
      sum = product;  // the first term is always added
    } else {
      sum = term.sign > 0 ? sum + product : sum - product;
    }
  }
  return sum;
}

// A plane whose samples start as `value`.
struct PlainPlane {
  int width;
  int height;
  std::vector<_Float16> samples;

  PlainPlane(int w, int h, _Float16 value = 0)
      : width(w), height(h), samples(static_cast<size_t>(w) * static_cast<size_t>(h), value) {}
  _Float16& at(int x, int y) { return samples[static_cast<size_t>(y) * width + x]; }
  _Float16 at(int x, int y) const { return samples[static_cast<size_t>(y) * width + x]; }
};

// The same as a transform takes it.
inline buffer record_of(PlainPlane& plane) {
  buffer record{};
  record.data = plane.samples.data();
  record.width = static_cast<uint32_t>(plane.width);
  record.height = static_cast<uint32_t>(plane.height);
  return record;
}

// Calls body(line, k) for every output k of every line that a pass along rows or columns writes.
template <typename Body>
void for_each_output(int lines, int size, bool analysis, Body body) {
  for (int line = 0; line < lines; ++line) {
    if (analysis) {
      // All eight taps inside: 2k - 4 >= 0 and 2k + 3 < size.
      for (int k = 2; 2 * k + 3 < size; ++k) body(line, k);
    } else {
      for (int k = 2; k + 2 < size; ++k) body(line, k);
    }
  }
}

inline void plain_analyse(const PlainPlane& src, bool along_columns, PlainPlane* low,
                          PlainPlane* high) {
  const int lines = along_columns ? src.width : src.height;
  const int size = along_columns ? src.height : src.width;
  for_each_output(lines, size, true, [&](int line, int k) {
    const PlainLine samples = [&](int i) {
      return along_columns ? src.at(line, i) : src.at(i, line);
    };
    const int x = along_columns ? line : k;
    const int y = along_columns ? k : line;
    low->at(x, y) = plain_sum(kPlainLow, 2 * k, samples, samples);
    high->at(x, y) = plain_sum(kPlainHigh, 2 * k, samples, samples);
  });
}

// `size` low and high samples along `lines` rows or columns.
inline void plain_synthesise(const PlainPlane& low, const PlainPlane& high, int lines, int size,
                             bool along_columns, PlainPlane* out) {
  for_each_output(lines, size, false, [&](int line, int k) {
    const auto line_of = [&](const PlainPlane& plane) -> PlainLine {
      return [&plane, line, along_columns](int i) {
        return along_columns ? plane.at(line, i) : plane.at(i, line);
      };
    };
    const auto store = [&](int position, _Float16 value) {
      (along_columns ? out->at(line, position) : out->at(position, line)) = value;
    };
    store(2 * k - 1, plain_sum(kPlainOdd, k, line_of(low), line_of(high)));
    store(2 * k, plain_sum(kPlainEven, k, line_of(low), line_of(high)));
  });
}

inline int rounded_up_half(int size) { return (size + 1) / 2; }

inline constexpr int kPlainSubbands = 8;

// The subbands of a plane; all samples start as `fill`.
struct PlainSubbands {
  PlainSubbands(int width, int height, _Float16 fill) {
    const int half = width / 2;
    const int half_rows = height / 2;
    for (int i = 0; i < kPlainSubbands; ++i) {
      planes.emplace_back(i < 4 ? rounded_up_half(half) : half,
                          i < 4 ? rounded_up_half(half_rows) : half_rows, fill);
    }
  }
  std::vector<PlainPlane> planes;
};

// The decomposition as passes over whole planes, by the book. Samples of working planes that no
// pass writes are `fill`.
inline void plain_forward(const PlainPlane& src, bool two_decompositions, PlainSubbands* bands,
                          _Float16 fill = kNotANumber) {
  const int half = src.width / 2;
  const int half_rows = src.height / 2;
  PlainPlane low(half, src.height, fill), high(half, src.height, fill);
  plain_analyse(src, false, &low, &high);
  PlainPlane low_low(half, half_rows, fill);
  plain_analyse(low, true, &low_low, &bands->planes[4]);
  plain_analyse(high, true, &bands->planes[5], &bands->planes[6]);
  if (!two_decompositions) {
    bands->planes[7] = low_low;
    return;
  }
  PlainPlane low2(half, half_rows / 2, fill), high2(half, half_rows / 2, fill);
  plain_analyse(low_low, true, &low2, &high2);
  plain_analyse(low2, false, &bands->planes[0], &bands->planes[1]);
  plain_analyse(high2, false, &bands->planes[2], &bands->planes[3]);
}

// The reconstruction likewise. The low band of the second level may be a column wider than needed.
inline void plain_inverse(const PlainPlane& band0, const PlainSubbands& bands,
                          bool two_decompositions, PlainPlane* out, _Float16 fill = kNotANumber) {
  const int half = out->width / 2;
  const int half_rows = out->height / 2;
  const int wide = two_decompositions ? 2 * band0.width : half;
  PlainPlane middle(wide, 2 * rounded_up_half(half_rows), fill);
  if (two_decompositions) {
    PlainPlane low(wide, band0.height, fill), high(wide, band0.height, fill);
    plain_synthesise(band0, bands.planes[1], band0.height, band0.width, false, &low);
    plain_synthesise(bands.planes[2], bands.planes[3], band0.height, band0.width, false, &high);
    plain_synthesise(low, high, wide, band0.height, true, &middle);
  } else {
    middle = band0;
  }
  PlainPlane low(half, out->height, fill), high(half, out->height, fill);
  plain_synthesise(middle, bands.planes[4], half, half_rows, true, &low);
  plain_synthesise(bands.planes[5], bands.planes[6], half, half_rows, true, &high);
  plain_synthesise(low, high, out->height, half, false, out);
}

#endif  // VOREL_TESTS_WAVELET_SYM4_PLAIN_H_
