#include "wavelet/sym4_walk.h"

#include <algorithm>
#include <cstddef>

#include "wavelet/kernels/sym4_rows.h"

namespace {

constexpr int kRingRows = 8;

template <typename Sample>
Sample* row_of(Sample* plane, int row, int width) {
  return plane + ptrdiff_t{row} * width;
}

_Float16* row_of(const buffer& plane, int row, int width) {
  return row_of(static_cast<_Float16*>(plane.data), row, width);
}

// The last eight rows of a plane that is never there as a whole.
class RowRing {
 public:
  RowRing(_Float16* storage, int width) : storage_(storage), width_(width) {}

  _Float16* row(int index) const { return row_of(storage_, index % kRingRows, width_); }

  template <int N>
  void window(int first_row, const _Float16* (&rows)[N]) const {
    for (int i = 0; i < N; ++i) rows[i] = row(first_row + i);
  }

 private:
  _Float16* storage_;
  int width_;
};

void plane_window(const buffer& plane, int first_row, int width,
                  const _Float16* (&rows)[kSym4SynthesisRows]) {
  for (int i = 0; i < kSym4SynthesisRows; ++i) rows[i] = row_of(plane, first_row + i, width);
}

class ForwardWalk {
 public:
  ForwardWalk(const _Float16* src, const buffer* subbands, const sym4_work& work, int width,
              int height, sym4_times* times)
      : src_(src),
        subbands_(subbands),
        work_(work),
        width_(width),
        half_(width / 2),
        end_(sym4_analysis_end(height)),
        end2_(sym4_analysis_end(height / 2)),
        times_(times),
        low_(work.low, half_),
        high_(work.high, half_),
        low_low_(work.intermediate, half_) {}

  void run(bool second_level) {
    int source_row = 0;
    int row2 = kSym4First;
    for (int k = kSym4First; k < end_; ++k) {
      times_->horizontal.run([&] {
        for (; source_row < 2 * k + 4; ++source_row) split_source_row(source_row);
      });
      times_->vertical.run([&] { first_level_row(k, second_level); });
      if (!second_level) continue;
      // The last row may reach one row past those that are produced.
      const int available = k + 1 < end_ ? k : k + 1;
      for (; row2 < end2_ && 2 * row2 + 3 <= available; ++row2) second_level_row(row2);
    }
  }

 private:
  void split_source_row(int row) {
    sym4_analyse_row(row_of(src_, row, width_), low_.row(row), high_.row(row), width_);
  }

  void first_level_row(int k, bool second_level) {
    const _Float16* rows[kSym4AnalysisRows];
    low_.window(2 * k - 4, rows);
    _Float16* low_low = second_level ? low_low_.row(k) : row_of(subbands_[7], k, half_);
    sym4_analyse_rows(rows, low_low, row_of(subbands_[4], k, half_), half_);
    high_.window(2 * k - 4, rows);
    sym4_analyse_rows(rows, row_of(subbands_[5], k, half_), row_of(subbands_[6], k, half_), half_);
  }

  // There is one only from 16 rows on: the rows after the ring in `low` exist.
  void second_level_row(int row) {
    _Float16* low = row_of(work_.low, kRingRows, half_);
    _Float16* high = low + half_;
    times_->vertical.run([&] {
      const _Float16* rows[kSym4AnalysisRows];
      for (int i = 0; i < kSym4AnalysisRows; ++i) {
        const int source = 2 * row - 4 + i;
        // Rows that the first level does not write are read where a pass over whole planes reads
        // them: it keeps the low band in subband 6 for a while.
        const bool written = source >= kSym4First && source < end_;
        rows[i] = written ? low_low_.row(source) : row_of(subbands_[6], source, half_);
      }
      sym4_analyse_rows(rows, low, high, half_);
    });
    times_->horizontal.run([&] {
      const int quarter = half_ / 2;
      sym4_analyse_row(low, row_of(subbands_[0], row, quarter), row_of(subbands_[1], row, quarter),
                       half_);
      sym4_analyse_row(high, row_of(subbands_[2], row, quarter), row_of(subbands_[3], row, quarter),
                       half_);
    });
  }

  const _Float16* src_;
  const buffer* subbands_;
  sym4_work work_;
  int width_;
  int half_;
  int end_;   // of the first level's rows
  int end2_;  // of the second level's rows
  sym4_times* times_;
  RowRing low_;
  RowRing high_;
  RowRing low_low_;
};

class InverseWalk {
 public:
  InverseWalk(const buffer& band0, const buffer* subbands, _Float16* out, const sym4_work& work,
              int width, int height, sym4_times* times)
      : band0_(band0),
        subbands_(subbands),
        out_(out),
        work_(work),
        half_(width / 2),
        quarter_(static_cast<int>(band0.width)),
        rows2_(static_cast<int>(band0.height)),
        end_(sym4_synthesis_end(height / 2)),
        times_(times),
        low2_(work.low, 2 * quarter_),
        high2_(work.high, 2 * quarter_),
        middle_(work.intermediate, 2 * quarter_) {}

  void run() {
    int row2 = kSym4First;
    for (int k = kSym4First; k < end_; ++k) {
      // The ring holds 8 rows; those from k - 2 to at most k + 3 are in use.
      for (; row2 < sym4_synthesis_end(rows2_) && 2 * row2 - 1 <= k + 2; ++row2) {
        second_level_rows(row2);
      }
      first_level_rows(k);
    }
  }

 private:
  void second_level_rows(int k) {
    times_->horizontal.run([&] {
      for (; joined_ < k + 3; ++joined_) {
        sym4_synthesise_row(row_of(band0_, joined_, quarter_),
                            row_of(subbands_[1], joined_, quarter_), low2_.row(joined_), quarter_);
        sym4_synthesise_row(row_of(subbands_[2], joined_, quarter_),
                            row_of(subbands_[3], joined_, quarter_), high2_.row(joined_), quarter_);
      }
    });
    times_->vertical.run([&] {
      const _Float16* low[kSym4SynthesisRows];
      const _Float16* high[kSym4SynthesisRows];
      low2_.window(k - 2, low);
      high2_.window(k - 2, high);
      sym4_synthesise_rows(low, high, middle_.row(2 * k - 1), middle_.row(2 * k), 2 * quarter_);
    });
  }

  void first_level_rows(int k) {
    _Float16* low_odd = row_of(work_.low, kRingRows, 2 * quarter_);
    _Float16* low_even = low_odd + half_;
    _Float16* high_odd = row_of(work_.high, kRingRows, 2 * quarter_);
    _Float16* high_even = high_odd + half_;
    times_->vertical.run([&] {
      const _Float16* low[kSym4SynthesisRows];
      const _Float16* high[kSym4SynthesisRows];
      for (int i = 0; i < kSym4SynthesisRows; ++i) low[i] = middle_row(k - 2 + i);
      plane_window(subbands_[4], k - 2, half_, high);
      sym4_synthesise_rows(low, high, low_odd, low_even, half_);
      plane_window(subbands_[5], k - 2, half_, low);
      plane_window(subbands_[6], k - 2, half_, high);
      sym4_synthesise_rows(low, high, high_odd, high_even, half_);
    });
    times_->horizontal.run([&] {
      _Float16* out = row_of(out_, 2 * k - 1, 2 * half_);
      sym4_synthesise_row(low_odd, high_odd, out, half_);
      sym4_synthesise_row(low_even, high_even, out + 2 * half_, half_);
    });
  }

  // A row of the low band. One that the second level does not write is read where the intermediate
  // plane holds it, as a pass over whole planes does.
  const _Float16* middle_row(int row) const {
    const bool written = row >= 2 * kSym4First - 1 && row < 2 * rows2_ - 5;
    const bool in_plane = (int64_t{row} + 1) * 2 * quarter_ <= work_.intermediate_samples;
    return written || !in_plane ? middle_.row(row) : row_of(work_.intermediate, row, 2 * quarter_);
  }

  const buffer& band0_;
  const buffer* subbands_;
  _Float16* out_;
  sym4_work work_;
  int half_;     // columns of the first level's bands
  int quarter_;  // columns of the second level's bands
  int rows2_;    // of the second level's bands
  int end_;      // of the first level's row pairs
  int joined_ = 0;
  sym4_times* times_;
  RowRing low2_;
  RowRing high2_;
  RowRing middle_;
};

}  // namespace

bool sym4_can_walk_forward(const sym4_work& work, int width, int height) {
  // Rings with fewer rows are not filled, and without full ones there is no second level.
  const int64_t half = width / 2;
  return work.outer_samples >= half * std::min(height, kRingRows + 2) &&
         work.intermediate_samples >= half * std::min(height / 2, kRingRows);
}

bool sym4_can_walk_inverse(const sym4_work& work, const buffer& band0, int width) {
  const int64_t half = width / 2;
  const int64_t ring = 2 * int64_t{band0.width} * kRingRows;
  return 2 * int64_t{band0.width} >= half && work.outer_samples >= ring + 2 * half &&
         work.intermediate_samples >= ring;
}

void sym4_walk_forward(const _Float16* src, const buffer* subbands, const sym4_work& work,
                       int width, int height, bool second_level, sym4_times* times) {
  ForwardWalk(src, subbands, work, width, height, times).run(second_level);
}

void sym4_walk_inverse(const buffer& band0, const buffer* subbands, _Float16* out,
                       const sym4_work& work, int width, int height, sym4_times* times) {
  InverseWalk(band0, subbands, out, work, width, height, times).run();
}
