#include "wavelet/sym4_forward.h"

#include <algorithm>
#include <cstring>

#include "wavelet/kernels/sym4_rows.h"

namespace {

// The rows that output row k of an analysis along the columns reads, from `column` on.
template <typename Row>
void gather_analysis_rows(Row row, int k, int column, const _Float16* (&rows)[kSym4AnalysisRows]) {
  for (int i = 0; i < kSym4AnalysisRows; ++i) rows[i] = row(2 * k - 4 + i) + column;
}

}  // namespace

Sym4ForwardWalk::Sym4ForwardWalk(const sym4_forward& plane, PassTimes* times)
    : plane_(plane),
      half_(plane.width / 2),
      end_(sym4_analysis_end(plane.height)),
      end2_(plane.second_level ? sym4_analysis_end(plane.height / 2) : 0),
      times_(times),
      k_(kSym4First),
      row2_(kSym4First),
      detail_rows_{0, end_},
      detail_columns_{0, half_} {}

void Sym4ForwardWalk::start(int second_row, span detail_rows, span detail_columns) {
  row2_ = std::max(kSym4First, second_row);
  k_ = std::max(kSym4First, 2 * row2_ - 4);
  source_row_ = 2 * k_ - 4;
  detail_rows_ = detail_rows;
  detail_columns_ = detail_columns;
}

void Sym4ForwardWalk::advance() {
  times_->run(kForwardRows, [&] {
    for (; source_row_ < 2 * k_ + 4; ++source_row_) split_source_row(source_row_);
  });
  times_->run(kForwardLow, [&] { join_low_rows(); });
  if (has_details(k_)) {
    times_->run(kForwardHigh, [&] { join_high_rows(); });
  }
  // The last row of the second level may reach one row past those that are made.
  const int available = k_ + 1 < end_ ? k_ : k_ + 1;
  for (; row2_ < end2_ && 2 * row2_ + 3 <= available; ++row2_) second_level_row();
  ++k_;
}

void Sym4ForwardWalk::split_source_row(int row) {
  const int inner_row = std::clamp(row, plane_.inner.first, plane_.inner.end - 1);
  // Detail row k reads the rows 2k - 4 .. 2k + 3.
  const bool need_high = row >= 2 * detail_rows_.first - 4 && row < 2 * detail_rows_.end + 2;
  if (inner_row == last_row_ && (last_has_high_ || !need_high)) {
    const size_t bytes = static_cast<size_t>(half_) * sizeof(_Float16);
    std::memcpy(plane_.low.row(row), plane_.low.row(row - 1), bytes);
    std::memcpy(plane_.high.row(row), plane_.high.row(row - 1), bytes);
    return;
  }
  last_row_ = inner_row;
  last_has_high_ = need_high;
  const _Float16* src = plane_.src + ptrdiff_t{inner_row} * plane_.width;
  _Float16* high = need_high ? plane_.high.row(row) : nullptr;
  sym4_analyse_row(src, plane_.low.row(row), high, plane_.width);
}

void Sym4ForwardWalk::join_low_rows() {
  const _Float16* rows[kSym4AnalysisRows];
  gather_analysis_rows([&](int row) { return plane_.low.row(row); }, k_, 0, rows);
  const row_store& low_low = plane_.second_level ? plane_.low_low : plane_.bands[7];
  _Float16* details = has_details(k_) ? plane_.bands[4].row(k_) : nullptr;
  sym4_analyse_rows(rows, low_low.row(k_), details, half_);
}

void Sym4ForwardWalk::join_high_rows() {
  const _Float16* rows[kSym4AnalysisRows];
  const int column = detail_columns_.first;
  gather_analysis_rows([&](int row) { return plane_.high.row(row); }, k_, column, rows);
  sym4_analyse_rows(rows, plane_.bands[5].row(k_) + column, plane_.bands[6].row(k_) + column,
                    detail_columns_.size());
}

void Sym4ForwardWalk::second_level_row() {
  _Float16* low = plane_.second.row(0);
  _Float16* high = plane_.second.row(1);
  times_->run(kForwardLowLow, [&] {
    // Rows that the first level does not write are read where a pass over whole planes reads them:
    // it keeps the low band in subband 6 for a while.
    const auto row = [&](int source) {
      const bool written = source >= kSym4First && source < end_;
      return written ? plane_.low_low.row(source) : plane_.bands[6].row(source);
    };
    const _Float16* rows[kSym4AnalysisRows];
    gather_analysis_rows(row, row2_, 0, rows);
    sym4_analyse_rows(rows, low, high, half_);
  });
  times_->run(kForwardRowsLow, [&] {
    sym4_analyse_row(low, plane_.bands[0].row(row2_), plane_.bands[1].row(row2_), half_);
  });
  times_->run(kForwardRowsHigh, [&] {
    sym4_analyse_row(high, plane_.bands[2].row(row2_), plane_.bands[3].row(row2_), half_);
  });
}
