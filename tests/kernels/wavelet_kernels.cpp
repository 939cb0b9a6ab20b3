// Rows of the wavelet path, each row of a plane on its own.
#include <algorithm>

#include "tests/kernels/kernel_list.h"
#include "tests/wavelet/plain_saturation.h"
#include "tests/wavelet/plain_shrinkage.h"
#include "tests/wavelet/sym4_plain.h"
#include "wavelet/kernels/border_rows.h"
#include "wavelet/kernels/haar_rows.h"
#include "wavelet/kernels/shrinkage_rows.h"
#include "wavelet/kernels/sym4_rows.h"

namespace {

constexpr auto kHalves = Plane::Samples::kHalves;
constexpr uint32_t kPad = 5;

// Numbers of any kind where bytes would alternate, coefficients where they would be random.
void add_halves(KernelData& data, int rows, int cols) {
  data.add_input(rows, cols, kHalves);
  const Plane& plane = data.planes.back();
  if (data.pattern == Pattern::kRandom) {
    const auto values = random_halves(plane.count(), -300, 300, data.random);
    std::copy(values.begin(), values.end(), plane.halves());
  } else if (data.pattern == Pattern::kAlternating) {
    for (size_t i = 0; i < plane.count(); ++i) {
      plane.halves()[i] = half_of_bits(static_cast<uint16_t>(data.random()));
    }
  }
}

_Float16* row_of(KernelData& data, size_t plane, int row) {
  return data.halves(plane) + static_cast<ptrdiff_t>(row) * data.planes[plane].cols();
}

// Sample `at` of the row, or of the column where the taps go down.
PlainLine line_of(KernelData& data, size_t plane, int row, int col, bool down) {
  return [&data, plane, row, col, down](int at) {
    return down ? row_of(data, plane, row + at)[col] : row_of(data, plane, row)[at];
  };
}

template <typename Body>
void for_samples(KernelData& data, KernelStrip strip, Body body) {
  for (int row = strip.first; row < strip.end; ++row) {
    for (int col = 0; col < data.size.width; ++col) body(row, col);
  }
}

PlainHalf weighed(const _Float16* row, int col, std::initializer_list<double> taps) {
  PlainHalf sum = 0.0;
  for (const double tap : taps) sum = sum + PlainHalf(row[col++]) * PlainHalf(tap);
  return sum;
}

const Curve& curve_of(const KernelData& data) { return kCurves[(data.variant + 1) % 9]; }

_Float16 shrink_scale(const KernelData& data) {
  const uint16_t kScales[] = {0x45D7, 0x49D7, 0x4FD7, 0x4200};
  return half_of_bits(kScales[data.variant]);
}

const _Float16 kThreshold = 3640;

}  // namespace

void make_sym4_analyse_row(KernelData& data) {
  add_halves(data, data.size.height, data.size.width);
  data.add_output(data.size.height, data.size.width / 2, kHalves);
  data.add_output(data.size.height, data.size.width / 2, kHalves);
}

void run_sym4_analyse_row(KernelData& data, KernelStrip strip) {
  for (int row = strip.first; row < strip.end; ++row) {
    sym4_analyse_row(row_of(data, 0, row), row_of(data, 1, row), row_of(data, 2, row),
                     data.size.width);
  }
}

void plain_sym4_analyse_row(KernelData& data, KernelStrip strip) {
  for (int row = strip.first; row < strip.end; ++row) {
    const PlainLine line = line_of(data, 0, row, 0, false);
    for (int k = 2; 2 * k + 3 < data.size.width; ++k) {
      row_of(data, 1, row)[k] = plain_sum(kPlainLow, 2 * k, line, line);
      row_of(data, 2, row)[k] = plain_sum(kPlainHigh, 2 * k, line, line);
    }
  }
}

// Row k of the outputs comes from the source rows 2k .. 2k + 7.
void make_sym4_analyse_rows(KernelData& data) {
  add_halves(data, 2 * data.size.height + 6, data.size.width);
  data.add_output(data.size.height, data.size.width, kHalves);
  data.add_output(data.size.height, data.size.width, kHalves);
}

void run_sym4_analyse_rows(KernelData& data, KernelStrip strip) {
  for (int row = strip.first; row < strip.end; ++row) {
    const _Float16* rows[kSym4AnalysisRows];
    for (int i = 0; i < kSym4AnalysisRows; ++i) rows[i] = row_of(data, 0, 2 * row + i);
    sym4_analyse_rows(rows, row_of(data, 1, row), row_of(data, 2, row), data.size.width);
  }
}

void plain_sym4_analyse_rows(KernelData& data, KernelStrip strip) {
  for_samples(data, strip, [&](int row, int col) {
    const PlainLine line = line_of(data, 0, 2 * row + 4, col, true);
    row_of(data, 1, row)[col] = plain_sum(kPlainLow, 0, line, line);
    row_of(data, 2, row)[col] = plain_sum(kPlainHigh, 0, line, line);
  });
}

void make_sym4_synthesise_row(KernelData& data) {
  add_halves(data, data.size.height, data.size.width);
  add_halves(data, data.size.height, data.size.width);
  data.add_output(data.size.height, 2 * data.size.width, kHalves);
}

void run_sym4_synthesise_row(KernelData& data, KernelStrip strip) {
  for (int row = strip.first; row < strip.end; ++row) {
    sym4_synthesise_row(row_of(data, 0, row), row_of(data, 1, row), row_of(data, 2, row),
                        data.size.width);
  }
}

void plain_sym4_synthesise_row(KernelData& data, KernelStrip strip) {
  for (int row = strip.first; row < strip.end; ++row) {
    const PlainLine low = line_of(data, 0, row, 0, false);
    const PlainLine high = line_of(data, 1, row, 0, false);
    for (int k = 2; k + 2 < data.size.width; ++k) {
      row_of(data, 2, row)[2 * k - 1] = plain_sum(kPlainOdd, k, low, high);
      row_of(data, 2, row)[2 * k] = plain_sum(kPlainEven, k, low, high);
    }
  }
}

// The pair of output rows k comes from the rows k .. k + 4 of both bands.
void make_sym4_synthesise_rows(KernelData& data) {
  add_halves(data, data.size.height + 4, data.size.width);
  add_halves(data, data.size.height + 4, data.size.width);
  data.add_output(2 * data.size.height, data.size.width, kHalves);
}

void run_sym4_synthesise_rows(KernelData& data, KernelStrip strip) {
  for (int row = strip.first; row < strip.end; ++row) {
    const _Float16* low[kSym4SynthesisRows];
    const _Float16* high[kSym4SynthesisRows];
    for (int i = 0; i < kSym4SynthesisRows; ++i) {
      low[i] = row_of(data, 0, row + i);
      high[i] = row_of(data, 1, row + i);
    }
    sym4_synthesise_rows(low, high, row_of(data, 2, 2 * row), row_of(data, 2, 2 * row + 1),
                         data.size.width);
  }
}

void plain_sym4_synthesise_rows(KernelData& data, KernelStrip strip) {
  for_samples(data, strip, [&](int row, int col) {
    const PlainLine low = line_of(data, 0, row + 2, col, true);
    const PlainLine high = line_of(data, 1, row + 2, col, true);
    row_of(data, 2, 2 * row)[col] = plain_sum(kPlainOdd, 0, low, high);
    row_of(data, 2, 2 * row + 1)[col] = plain_sum(kPlainEven, 0, low, high);
  });
}

// Pairs of near and of four neighbours, three samples beyond the outputs.
void make_haar_level1(KernelData& data) {
  add_halves(data, data.size.height, data.size.width + 3);
  data.add_output(data.size.height, data.size.width, kHalves);
  data.add_output(data.size.height, data.size.width, kHalves);
}

void run_haar_level1(KernelData& data, KernelStrip strip) {
  for (int row = strip.first; row < strip.end; ++row) {
    const _Float16* src = row_of(data, 0, row);
    split_level1_row(src, src + 1, row_of(data, 1, row), row_of(data, 2, row), data.size.width);
  }
}

void plain_haar_level1(KernelData& data, KernelStrip strip) {
  constexpr double t = 0.70703125;
  for_samples(data, strip, [&](int row, int col) {
    row_of(data, 1, row)[col] = weighed(row_of(data, 0, row), col, {t, t});
    row_of(data, 2, row)[col] = weighed(row_of(data, 0, row), col, {-t, t});
  });
}

void make_haar_directional(KernelData& data) { make_haar_level1(data); }

void run_haar_directional(KernelData& data, KernelStrip strip) {
  for (int row = strip.first; row < strip.end; ++row) {
    const _Float16* src = row_of(data, 0, row);
    split_directional_row(src, src + 1, src + 2, src + 3, row_of(data, 1, row),
                          row_of(data, 2, row), data.size.width);
  }
}

void plain_haar_directional(KernelData& data, KernelStrip strip) {
  for_samples(data, strip, [&](int row, int col) {
    row_of(data, 1, row)[col] = weighed(row_of(data, 0, row), col, {0.5, 0.5, 0.5, 0.5});
    row_of(data, 2, row)[col] = weighed(row_of(data, 0, row), col, {-0.5, -0.5, 0.5, 0.5});
  });
}

// Multipliers from 1 on, and coefficients in place.
void make_shrink(KernelData& data) {
  data.add_input(data.size.height, data.size.width, kHalves);
  for (size_t i = 0; i < data.planes[0].count(); ++i) {
    _Float16& multiplier = data.halves(0)[i];
    multiplier = static_cast<_Float16>(1 + static_cast<float>(multiplier) / 50);
  }
  add_halves(data, data.size.height, data.size.width);
}

void run_shrink(KernelData& data, KernelStrip strip) {
  const shrink_gain gain = make_shrink_gain(kThreshold, shrink_scale(data));
  for (int row = strip.first; row < strip.end; ++row) {
    shrink_row(gain, row_of(data, 0, row), row_of(data, 1, row), data.size.width);
  }
}

void plain_shrink(KernelData& data, KernelStrip strip) {
  for_samples(data, strip, [&](int row, int col) {
    _Float16& coefficient = row_of(data, 1, row)[col];
    coefficient =
        plain_shrink(coefficient, kThreshold, row_of(data, 0, row)[col], shrink_scale(data));
  });
}

// Where samples lie near neutral, the last one of a row does not.
void make_saturate(KernelData& data) {
  add_halves(data, data.size.height, data.size.width);
  add_halves(data, data.size.height, data.size.width);
  data.add_output(data.size.height, 2 * data.size.width);
  if (data.pattern != Pattern::kNear) return;
  for (int row = 0; row < data.size.height; ++row) row_of(data, 1, row)[data.size.width - 1] = 220;
}

void run_saturate(KernelData& data, KernelStrip strip) {
  for (int row = strip.first; row < strip.end; ++row) {
    saturate_row(curve_of(data).halves(), row_of(data, 0, row), row_of(data, 1, row),
                 data.bytes(2) + 2 * row * data.size.width, data.size.width);
  }
}

void plain_saturate(KernelData& data, KernelStrip strip) {
  const int width = data.size.width;
  for (int row = strip.first; row < strip.end; ++row) {
    const std::vector<_Float16> first(row_of(data, 0, row), row_of(data, 0, row) + width);
    const std::vector<_Float16> second(row_of(data, 1, row), row_of(data, 1, row) + width);
    const std::vector<uint8_t> pairs = saturate_plainly(curve_of(data), first, second);
    std::copy(pairs.begin(), pairs.end(), data.bytes(2) + 2 * row * width);
  }
}

void make_pad_pairs(KernelData& data) {
  const int width = data.size.width + 2 * static_cast<int>(kPad) + 1;
  data.add_input(data.size.height, 2 * data.size.width);
  data.add_output(data.size.height, width, kHalves);
  data.add_output(data.size.height, width, kHalves);
}

void run_pad_pairs(KernelData& data, KernelStrip strip) {
  const border_cut cut{kPad, static_cast<uint32_t>(data.size.width),
                       static_cast<uint32_t>(data.planes[1].cols())};
  for (int row = strip.first; row < strip.end; ++row) {
    pad_pairs_row(data.bytes(0) + 2 * row * data.size.width, row_of(data, 1, row),
                  row_of(data, 2, row), cut);
  }
}

void plain_pad_pairs(KernelData& data, KernelStrip strip) {
  for (int row = strip.first; row < strip.end; ++row) {
    for (int col = 0; col < data.planes[1].cols(); ++col) {
      const int inner = std::clamp(col - static_cast<int>(kPad), 0, data.size.width - 1);
      const uint8_t* pair = data.bytes(0) + 2 * (row * data.size.width + inner);
      row_of(data, 1, row)[col] = pair[0];
      row_of(data, 2, row)[col] = pair[1];
    }
  }
}
