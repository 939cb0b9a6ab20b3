#include <algorithm>
#include <cstddef>
#include <span>

#include "platform/stage_timer.h"
#include "vorel/wavelet/haar_transform.h"
#include "wavelet/kernels/haar_rows.h"

namespace {

// Which band's sample, where relative to the output, and its tap's place in the table.
struct synthesis_tap {
  bool high;
  int offset;
  int tap;
};

// Terms in the order in which they are added.
constexpr synthesis_tap kLevel1Terms[] = {
    {false, 0, 70}, {true, 0, 72}, {false, -1, 71}, {true, -1, 73}};
constexpr synthesis_tap kLevel2Terms[] = {{false, 0, 74}, {true, 0, 77},   {false, -1, 75},
                                          {true, -1, 78}, {false, -2, 76}, {true, -2, 79}};
constexpr synthesis_tap kDirectionalTerms[] = {{false, 2, 10},  {true, 2, 14},  {false, 1, 11},
                                               {true, 1, 15},   {false, 0, 12}, {true, 0, 16},
                                               {false, -1, 13}, {true, -1, 17}};
constexpr synthesis_tap kHighOnlyTerms[] = {{true, 0, 72}, {true, -1, 73}};

constexpr _Float16 kFromZero = 0;
constexpr _Float16 kFromFirstTerm = static_cast<_Float16>(-0.0f);
constexpr _Float16 kHalf = static_cast<_Float16>(0.5f);
constexpr _Float16 kEighth = static_cast<_Float16>(0.125f);

struct synthesis_filter {
  std::span<const synthesis_tap> terms;
  _Float16 start;
  _Float16 scale;
};

constexpr synthesis_filter kLevel1 = {kLevel1Terms, kFromZero, kHalf};
constexpr synthesis_filter kLevel2 = {kLevel2Terms, kFromZero, kHalf};
constexpr synthesis_filter kLevel1Dir = {kLevel1Terms, kFromFirstTerm, kHalf};
constexpr synthesis_filter kHighOnly = {kHighOnlyTerms, kFromFirstTerm, kHalf};
constexpr synthesis_filter kColumnsDir = {kDirectionalTerms, kFromZero, kHalf};
constexpr synthesis_filter kRowsDir = {kDirectionalTerms, kFromZero, kEighth};

// Both bands of a line of `length` samples (a row, or the rows of a plane), `stride` apart.
struct band_lines {
  const _Float16* lo;
  const _Float16* hi;
  ptrdiff_t stride;
  int length;
};

// `count` adjacent outputs whose first stands at `position` of the lines. Terms outside the lines
// are left out.
void join(const synthesis_filter& filter, const _Float16* taps, const band_lines& lines,
          int position, _Float16* out, int count) {
  tapped_row<_Float16> rows[kMaxTappedRows];
  int used = 0;
  for (const synthesis_tap& term : filter.terms) {
    const int at = position + term.offset;
    if (at < 0 || at >= lines.length) continue;
    const _Float16* band = term.high ? lines.hi : lines.lo;
    rows[used++] = {band + at * lines.stride, taps[term.tap]};
  }
  sum_tapped_rows(rows, used, filter.start, filter.scale, out, count);
}

// Outputs [0, end) of one row.
void join_row(const synthesis_filter& filter, const _Float16* taps, const _Float16* lo,
              const _Float16* hi, int length, int end, _Float16* out) {
  int before = 0;
  int after = 0;
  for (const synthesis_tap& term : filter.terms) {
    before = std::max(before, -term.offset);
    after = std::max(after, term.offset);
  }
  const band_lines lines = {lo, hi, 1, length};
  const int inner_begin = std::min(before, end);
  const int inner_end = std::max(inner_begin, std::min(end, length - after));
  for (int x = 0; x < inner_begin; ++x) join(filter, taps, lines, x, out + x, 1);
  if (inner_end > inner_begin) {
    join(filter, taps, lines, inner_begin, out + inner_begin, inner_end - inner_begin);
  }
  for (int x = inner_end; x < end; ++x) join(filter, taps, lines, x, out + x, 1);
}

// Whole rows [row_first, row_end); rows of the bands are `pitch` samples apart.
void join_rows(const synthesis_filter& filter, const _Float16* taps, const _Float16* lo,
               const _Float16* hi, _Float16* out, int width, int pitch, int row_first,
               int row_end) {
  for (int y = row_first; y < row_end && width > 0; ++y) {
    const ptrdiff_t in = ptrdiff_t{y} * pitch;
    join_row(filter, taps, lo + in, hi + in, width, width, out + ptrdiff_t{y} * width);
  }
}

// Along the columns, output rows [0, row_end); rows of the bands are `pitch` samples apart.
void join_columns(const synthesis_filter& filter, const _Float16* taps, const _Float16* lo,
                  const _Float16* hi, _Float16* out, int width, int pitch, int height,
                  int row_end) {
  const band_lines lines = {lo, hi, pitch, height};
  for (int y = 0; y < row_end && width > 0; ++y) {
    join(filter, taps, lines, y, out + ptrdiff_t{y} * width, width);
  }
}

_Float16* samples_of(const buffer& plane) { return static_cast<_Float16*>(plane.data); }

}  // namespace

void HaarTransform::iwt(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  join_rows(kLevel1, taps, lo, hi, out, width, width, 0, height);
}

void HaarTransform::iwtPitch(_Float16* lo, _Float16* hi, _Float16* out, int width, int height,
                             int p) {
  join_rows(kLevel1, taps, lo, hi, out, width, width - p, 1, height);
}

void HaarTransform::iwtVert(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  join_columns(kLevel1, taps, lo, hi, out, width, width, height, height);
}

void HaarTransform::iwtVertPitch(_Float16* lo, _Float16* hi, _Float16* out, int width, int height,
                                 int p) {
  join_columns(kLevel1, taps, lo, hi, out, width, width + p, height, height - 1);
}

void HaarTransform::iwtL2(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  join_rows(kLevel2, taps, lo, hi, out, width, width, 0, height);
}

void HaarTransform::iwtVertL2(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  join_columns(kLevel2, taps, lo, hi, out, width, width, height, height);
}

void HaarTransform::iwtL2Dir(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  for (int y = 0; y < height - 1 && width >= 3; ++y) {
    const ptrdiff_t in = ptrdiff_t{y} * width;
    // Kept: one row down and one column to the right; columns 0 and width - 1 are left alone.
    join_row(kRowsDir, taps, lo + in, hi + in, width, width - 2, out + in + width + 1);
  }
  timer.log("HaarTransform::iwtL2Dir");
}

void HaarTransform::iwtVertL2Dir(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  // Kept: the last two rows are left alone.
  join_columns(kColumnsDir, taps, lo, hi, out, width, width, height, height - 2);
  timer.log("HaarTransform::iwtL2VertDir");
}

void HaarTransform::iwtDir(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  join_rows(kLevel1Dir, taps, lo, hi, out, width, width, 0, height);
  timer.log("HaarTransform::iwtDir");
}

void HaarTransform::iwtVertDir(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  join_columns(kLevel1Dir, taps, lo, hi, out, width, width, height, height);
  timer.log("HaarTransform::iwtVertDir");
}

void HaarTransform::iwtVertDirSingle(_Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  join_columns(kHighOnly, taps, nullptr, hi, out, width, width, height, height);
  timer.log("HaarTransform::iwtVertDirSingle");
}

void HaarTransform::SubbandsSum2SubBands(_Float16* a, _Float16* b, _Float16* out, int width,
                                         int height) {
  const StageTimer timer(debug_);
  for (int y = 1; y < height && width > 0; ++y) {
    const ptrdiff_t row = ptrdiff_t{y} * width;
    add_rows(a + row, b + row, out + row, width);
  }
  timer.log("HaarTransform::SubbandsSum2SubBands");
}

void HaarTransform::inverseUnHaarRunAllSubbands(buffer* subbands, buffer* out, unsigned int width,
                                                unsigned int height) {
  const StageTimer timer(debug_);
  const int cols = static_cast<int>(width);
  const int rows = static_cast<int>(height);
  _Float16* low = samples_of(lowScratch_);
  _Float16* high = samples_of(highScratch_);
  _Float16* directional = samples_of(directional_);
  _Float16* column = samples_of(column_);

  iwtVertL2Dir(samples_of(subbands[0]), samples_of(subbands[2]), low, cols, rows);
  iwtVertL2Dir(samples_of(subbands[1]), samples_of(subbands[3]), high, cols, rows);
  iwtL2Dir(low, high, directional, cols, rows);

  // The level-1 low band is gone, the directional reconstruction stands in for it: only details.
  iwtVertDirSingle(samples_of(subbands[4]), column, cols, rows);
  iwtVertDir(samples_of(subbands[5]), samples_of(subbands[6]), high, cols, rows);
  iwtDir(column, high, low, cols, rows);
  SubbandsSum2SubBands(low, directional, samples_of(*out), cols, rows);
  timer.log("HaarTransform::inverseUnHaarRunAllSubbands");
}
