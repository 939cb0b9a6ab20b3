#include "wavelet/sym4_inverse.h"

#include <algorithm>

#include "wavelet/kernels/sym4_rows.h"

namespace {

// The rows that the row pair k of a synthesis along the columns reads, from `column` on.
template <typename Row>
void gather_synthesis_rows(Row row, int k, int column,
                           const _Float16* (&rows)[kSym4SynthesisRows]) {
  for (int i = 0; i < kSym4SynthesisRows; ++i) rows[i] = row(k - 2 + i) + column;
}

auto rows_of(const row_store& store) {
  return [&store](int row) { return store.row(row); };
}

}  // namespace

Sym4InverseWalk::Sym4InverseWalk(const sym4_inverse& plane, PassTimes* times)
    : plane_(plane),
      end_(sym4_synthesis_end(plane.half_rows)),
      end2_(sym4_synthesis_end(plane.quarter_rows)),
      times_(times),
      pairs_{kSym4First, sym4_synthesis_end(plane.half)},
      columns_{0, plane.half},
      k_(kSym4First),
      row2_(kSym4First) {
  set_needed();
}

void Sym4InverseWalk::start(int k, span pairs) {
  k_ = k;
  pairs_ = pairs;
  columns_ = {pairs.first - 2, pairs.end + 2};
  // The first level's pair k reads the rows k - 2 .. k + 2 of the low band.
  row2_ = std::max(kSym4First, (k - 1) / 2);
  joined_ = row2_ - 2;
  set_needed();
}

// The next pair needs the second level's pairs up to the one with row k + 2; and that two rows
// more.
void Sym4InverseWalk::set_needed() {
  const int last_pair = std::min((k_ + 3) / 2, end2_ - 1);
  needed_ = last_pair >= row2_ ? last_pair + 3 : joined_;
}

void Sym4InverseWalk::join(const _Float16* band0) {
  const int row = joined_++;
  const row_store* bands = plane_.bands;
  times_->run(kInverseRowsLow, [&] {
    sym4_synthesise_row(band0, bands[1].row(row), plane_.low2.row(row), plane_.quarter);
  });
  times_->run(kInverseRowsHigh, [&] {
    sym4_synthesise_row(bands[2].row(row), bands[3].row(row), plane_.high2.row(row),
                        plane_.quarter);
  });
  if (joined_ >= row2_ + 3 && row2_ < end2_) join_middle_rows();
}

void Sym4InverseWalk::join_middle_rows() {
  times_->run(kInverseMiddle, [&] {
    const _Float16* low[kSym4SynthesisRows];
    const _Float16* high[kSym4SynthesisRows];
    gather_synthesis_rows(rows_of(plane_.low2), row2_, 0, low);
    gather_synthesis_rows(rows_of(plane_.high2), row2_, 0, high);
    sym4_synthesise_rows(low, high, plane_.middle.row(2 * row2_ - 1), plane_.middle.row(2 * row2_),
                         2 * plane_.quarter);
  });
  ++row2_;
}

void Sym4InverseWalk::make_pair() {
  const int column = columns_.first;
  const int count = columns_.size();
  _Float16* low_odd = plane_.first_low.row(0);
  _Float16* low_even = plane_.first_low.row(1);
  _Float16* high_odd = plane_.first_high.row(0);
  _Float16* high_even = plane_.first_high.row(1);
  const _Float16* low[kSym4SynthesisRows];
  const _Float16* high[kSym4SynthesisRows];
  times_->run(kInverseLow, [&] {
    gather_synthesis_rows([&](int row) { return middle_row(row); }, k_, column, low);
    gather_synthesis_rows(rows_of(plane_.bands[4]), k_, column, high);
    sym4_synthesise_rows(low, high, low_odd + column, low_even + column, count);
  });
  times_->run(kInverseHigh, [&] {
    gather_synthesis_rows(rows_of(plane_.bands[5]), k_, column, low);
    gather_synthesis_rows(rows_of(plane_.bands[6]), k_, column, high);
    sym4_synthesise_rows(low, high, high_odd + column, high_even + column, count);
  });
  times_->run(kInverseRows, [&] {
    sym4_synthesise_pairs(low_odd, high_odd, plane_.out.row(2 * k_ - 1), pairs_.first, pairs_.end);
    sym4_synthesise_pairs(low_even, high_even, plane_.out.row(2 * k_), pairs_.first, pairs_.end);
  });
  ++k_;
  set_needed();
}

const _Float16* Sym4InverseWalk::middle_row(int row) const {
  const bool written = row >= 2 * kSym4First - 1 && row < 2 * plane_.quarter_rows - 5;
  const bool whole = !written && row < plane_.whole_middle.kept;
  return whole ? plane_.whole_middle.row(row) : plane_.middle.row(row);
}
