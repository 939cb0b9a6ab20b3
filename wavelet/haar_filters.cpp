#include "wavelet/haar_filters.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "wavelet/kernels/haar_rows.h"

namespace {

constexpr _Float16 kL = kHaarLevel1Tap;
constexpr _Float16 kD = kHaarDirectionalTap;

constexpr _Float16 kAnalysisTaps[] = {kL,  kL,            // level 1 low
                                      -kL, kL,            // level 1 high
                                      kL,  0,   kL,       // level 2 low
                                      -kL, 0,   kL,       // level 2 high
                                      kD,  kD,  kD, kD,   // directional low
                                      -kD, -kD, kD, kD};  // directional high
constexpr int kSynthesisBase = 70;
constexpr _Float16 kSynthesisTaps[] = {kL,  kL,       // level 1 low
                                       -kL, kL,       // level 1 high
                                       kL,  0,  kL,   // level 2 low
                                       -kL, 0,  kL};  // level 2 high
static_assert(kSynthesisBase + std::size(kSynthesisTaps) == kHaarTaps);

struct tap_table {
  _Float16 taps[kHaarTaps];
};

constexpr tap_table make_table() {
  tap_table table{};
  std::copy(std::begin(kAnalysisTaps), std::end(kAnalysisTaps), table.taps);
  std::copy(std::begin(kSynthesisTaps), std::end(kSynthesisTaps), table.taps + kSynthesisBase);
  return table;
}

constexpr tap_table kTable = make_table();

constexpr analysis_tap kLevel1[] = {{0, 0, 2}, {1, 1, 3}};
constexpr analysis_tap kLevel2[] = {{0, 4, 7}, {1, 5, 8}, {2, 6, 9}};
constexpr analysis_tap kDirectional[] = {{-1, 10, 14}, {0, 11, 15}, {1, 12, 16}, {2, 13, 17}};

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

}  // namespace

const analysis_filter kHaarLevel1 = {kLevel1, true};
const analysis_filter kHaarLevel2 = {kLevel2, false};
const analysis_filter kHaarDirectional = {kDirectional, true};

const synthesis_filter kHaarJoin = {kLevel1Terms, kFromZero, kHalf};
const synthesis_filter kHaarJoinLevel2 = {kLevel2Terms, kFromZero, kHalf};
const synthesis_filter kHaarJoinPlain = {kLevel1Terms, kFromFirstTerm, kHalf};
const synthesis_filter kHaarJoinHighOnly = {kHighOnlyTerms, kFromFirstTerm, kHalf};
const synthesis_filter kHaarJoinColumns = {kDirectionalTerms, kFromZero, kHalf};
const synthesis_filter kHaarJoinRows = {kDirectionalTerms, kFromZero, kEighth};

const _Float16* haar_taps() { return kTable.taps; }

template <typename Sample>
void split_at(const analysis_filter& filter, const _Float16* taps, const sample_line<Sample>& line,
              int position, const haar_split& out, int count) {
  const int first = position + filter.taps.front().offset;
  const int last = position + filter.taps.back().offset;
  if (filter.adjacent && first >= 0 && last < line.length) {
    const Sample* near = line.at(first);
    if (last == first + 1) return split_level1_row(near, line.at(last), out.lo, out.hi, count);
    return split_directional_row(near, line.at(first + 1), line.at(first + 2), line.at(last),
                                 out.lo, out.hi, count);
  }
  split_tap<Sample> rows[kMaxSplitTaps];
  int used = 0;
  for (const analysis_tap& tap : filter.taps) {
    const int index = position + tap.offset;
    if (index < 0 || index >= line.length) continue;
    rows[used++] = {line.at(index), taps[tap.low], taps[tap.high]};
  }
  split_tapped_rows(rows, used, out.lo, out.hi, count);
}

template <typename Sample>
void split_row(const analysis_filter& filter, const _Float16* taps, const Sample* row, int length,
               const haar_split& out) {
  const sample_line<Sample> line = row_line(row, length);
  const int begin = std::min(-filter.taps.front().offset, length);
  const int end = std::max(begin, length - filter.taps.back().offset);
  for (int x = 0; x < begin; ++x) split_at(filter, taps, line, x, out.from(x), 1);
  if (end > begin) split_at(filter, taps, line, begin, out.from(begin), end - begin);
  for (int x = end; x < length; ++x) split_at(filter, taps, line, x, out.from(x), 1);
}

void join_at(const synthesis_filter& filter, const _Float16* taps, const band_lines& lines,
             int position, _Float16* out, int count) {
  tapped_row rows[kMaxTappedRows];
  int used = 0;
  for (const synthesis_tap& term : filter.terms) {
    const sample_line<_Float16>& line = term.high ? lines.hi : lines.lo;
    const int index = position + term.offset;
    if (index < 0 || index >= line.length) continue;
    rows[used++] = {line.at(index), taps[term.tap]};
  }
  sum_tapped_rows(rows, used, filter.start, filter.scale, out, count);
}

void join_row(const synthesis_filter& filter, const _Float16* taps, const band_lines& lines,
              int end, _Float16* out) {
  int before = 0;
  int after = 0;
  for (const synthesis_tap& term : filter.terms) {
    before = std::max(before, -term.offset);
    after = std::max(after, term.offset);
  }
  const int inner_begin = std::min(before, end);
  const int inner_end = std::max(inner_begin, std::min(end, lines.hi.length - after));
  for (int x = 0; x < inner_begin; ++x) join_at(filter, taps, lines, x, out + x, 1);
  if (inner_end > inner_begin) {
    join_at(filter, taps, lines, inner_begin, out + inner_begin, inner_end - inner_begin);
  }
  for (int x = inner_end; x < end; ++x) join_at(filter, taps, lines, x, out + x, 1);
}

#define VOREL_INSTANTIATE(Sample)                                                                  \
  template void split_at(const analysis_filter&, const _Float16*, const sample_line<Sample>&, int, \
                         const haar_split&, int);                                                  \
  template void split_row(const analysis_filter&, const _Float16*, const Sample*, int,             \
                          const haar_split&);
VOREL_INSTANTIATE(_Float16)
VOREL_INSTANTIATE(uint8_t)
#undef VOREL_INSTANTIATE
