// The filters of the undecimated Haar transform, along lines of samples.
//
// A tap outside its line adds nothing. Every product and every sum is rounded, in the order of the
// filter's taps.
#ifndef VOREL_WAVELET_HAAR_FILTERS_H_
#define VOREL_WAVELET_HAAR_FILTERS_H_

#include <cstddef>
#include <span>

#include "wavelet/row_store.h"

inline constexpr int kHaarTaps = 80;

// The table of kHaarTaps entries that the filters' taps are taken from: 0..17 analysis, 70..79
// synthesis; the entries between are 0 and not used.
[[nodiscard]] const _Float16* haar_taps();

// Neighbours of a row, one apart, or the rows of a plane or of a ring.
template <typename Sample>
struct sample_line {
  const Sample* first;
  ptrdiff_t stride;
  int length;
  int kept;  // sample i lies where i - kept lay

  [[nodiscard]] const Sample* at(int index) const {
    return first + (index < kept ? index : index % kept) * stride;
  }
};

template <typename Sample>
[[nodiscard]] sample_line<Sample> row_line(const Sample* row, int length) {
  return {row, 1, length, length > 0 ? length : 1};
}

// The rows of a plane of `height` rows, of which `rows` keeps some.
[[nodiscard]] inline sample_line<_Float16> column_line(const row_store& rows, int height) {
  return {rows.samples, rows.pitch, height, rows.kept};
}

// An analysis filter pair: where a tap's sample lies relative to the output, and the places of the
// low and the high filter's tap in the table.
struct analysis_tap {
  int offset;
  int low;
  int high;
};

struct analysis_filter {
  std::span<const analysis_tap> taps;  // ascending offsets
  bool adjacent;  // 2 and 4 neighbours have a kernel of their own, where all of them lie inside
};

extern const analysis_filter kHaarLevel1;
extern const analysis_filter kHaarLevel2;
extern const analysis_filter kHaarDirectional;

// Where the outputs of a split go.
struct haar_split {
  _Float16* lo;
  _Float16* hi;

  [[nodiscard]] haar_split from(ptrdiff_t sample) const { return {lo + sample, hi + sample}; }
};

// `count` adjacent outputs, the first of which stands at `position` of the line and goes to the
// beginning of `out`.
template <typename Sample>
void split_at(const analysis_filter& filter, const _Float16* taps, const sample_line<Sample>& line,
              int position, const haar_split& out, int count);

// All outputs of a row.
template <typename Sample>
void split_row(const analysis_filter& filter, const _Float16* taps, const Sample* row, int length,
               const haar_split& out);

// A term of a synthesis filter: which band's sample, where relative to the output, and its tap's
// place in the table.
struct synthesis_tap {
  bool high;
  int offset;
  int tap;
};

struct synthesis_filter {
  std::span<const synthesis_tap> terms;  // in the order in which they are added
  _Float16 start;
  _Float16 scale;
};

extern const synthesis_filter kHaarJoin;  // level 1, from +0
extern const synthesis_filter kHaarJoinLevel2;
extern const synthesis_filter kHaarJoinPlain;  // level 1, from the first term
extern const synthesis_filter kHaarJoinHighOnly;
extern const synthesis_filter kHaarJoinColumns;  // directional
extern const synthesis_filter kHaarJoinRows;     // directional

struct band_lines {
  sample_line<_Float16> lo;
  sample_line<_Float16> hi;
};

// `count` adjacent outputs, the first of which stands at `position` of the lines.
void join_at(const synthesis_filter& filter, const _Float16* taps, const band_lines& lines,
             int position, _Float16* out, int count);

// The outputs [0, end) of a row.
void join_row(const synthesis_filter& filter, const _Float16* taps, const band_lines& lines,
              int end, _Float16* out);

#endif  // VOREL_WAVELET_HAAR_FILTERS_H_
