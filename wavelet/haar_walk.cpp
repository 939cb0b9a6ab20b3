#include "wavelet/haar_walk.h"

#include <algorithm>
#include <iterator>

#include "wavelet/haar_filters.h"
#include "wavelet/kernels/haar_rows.h"

HaarWalk::HaarWalk(int width, int height, const shrink_gain (&gains)[kHaarBands],
                   const haar_rows& rows, PassTimes* times)
    : width_(width),
      height_(height),
      directional_end_(height < 3 ? 0 : height - 1),
      rows_(rows),
      times_(times) {
  std::copy(std::begin(gains), std::end(gains), gains_);
}

void HaarWalk::start(int row) {
  pushed_ = level1_ = row;
  directional_ = row > 0 ? row + 1 : 0;
}

void HaarWalk::push(const _Float16* samples, NoiseRows* noise) {
  split_source_row(pushed_, samples);
  complete_bands(pushed_, pushed_ - 1, noise);
  ++pushed_;
}

// Kept: the last column and row take no part in the directional pair; level 1 stands there.
void HaarWalk::split_source_row(int row, const _Float16* samples) {
  _Float16* low = rows_.low.row(row);
  _Float16* high = rows_.high.row(row);
  times_->run(kHaarRows,
              [&] { split_row(kHaarLevel1, haar_taps(), samples, width_, {low, high}); });
  times_->run(kHaarDirectionalRows, [&] {
    const int columns = row < height_ - 1 ? width_ - 1 : 0;
    _Float16* directional_low = rows_.directional_low.row(row);
    _Float16* directional_high = rows_.directional_high.row(row);
    split_row(kHaarDirectional, haar_taps(), samples, columns, {directional_low, directional_high});
    std::copy(low + columns, low + width_, directional_low + columns);
    std::copy(high + columns, high + width_, directional_high + columns);
  });
}

// Bands 4..6 up to row `level1_end`, bands 0..3 up to row `directional_end`.
void HaarWalk::complete_bands(int level1_end, int directional_end, NoiseRows* noise) {
  for (; level1_ < level1_end; ++level1_) {
    level1_row(level1_);
    times_->run(kShrinkHaar, [&] {
      for (int band = 4; band < kHaarBands; ++band) shrink(band, level1_, noise);
    });
  }
  for (; directional_ < directional_end; ++directional_) {
    directional_row(directional_);
    times_->run(kShrinkHaar, [&] {
      for (int band = 0; band < 4; ++band) shrink(band, directional_, noise);
    });
  }
}

void HaarWalk::level1_row(int row) {
  const auto split = [&](const row_store& rows, _Float16* lo, int high_band) {
    split_at(kHaarLevel1, haar_taps(), column_line(rows, height_), row,
             {lo, rows_.bands[high_band].row(row)}, width_);
  };
  // The level-1 low band serves where band 3 has no directional row.
  times_->run(kHaarLow, [&] { split(rows_.low, rows_.temporary.row(0), 4); });
  if (row >= directional_end_) {
    std::copy_n(rows_.temporary.row(0), width_, rows_.bands[3].row(row));
  }
  times_->run(kHaarHigh, [&] { split(rows_.high, rows_.bands[5].row(row), 6); });
}

void HaarWalk::directional_row(int row) {
  if (row >= directional_end_) {
    for (int band = 0; band < 3; ++band) {
      std::fill_n(rows_.bands[band].row(row), width_, _Float16{0});
    }
    return;
  }
  const auto split = [&](const row_store& rows, int low_band, int high_band) {
    split_at(kHaarDirectional, haar_taps(), column_line(rows, height_), row,
             {rows_.bands[low_band].row(row), rows_.bands[high_band].row(row)}, width_);
  };
  times_->run(kHaarDirectionalLow, [&] { split(rows_.directional_low, 0, 2); });
  times_->run(kHaarDirectionalHigh, [&] { split(rows_.directional_high, 1, 3); });
}

void HaarWalk::shrink(int band, int row, NoiseRows* noise) {
  shrink_row(gains_[band], noise->row(row), rows_.bands[band].row(row), width_);
}

void HaarWalk::make(int row, _Float16* out, NoiseRows* noise) {
  const int end = std::min(row + 2, height_);
  complete_bands(end, end, noise);
  if (row < 1) return;
  const auto columns = [&](int lo, int hi) {
    return band_lines{column_line(rows_.bands[lo], height_), column_line(rows_.bands[hi], height_)};
  };
  const auto row_pair = [&](const _Float16* lo, const _Float16* hi) {
    return band_lines{row_line(lo, width_), row_line(hi, width_)};
  };
  const _Float16* taps = haar_taps();
  _Float16* directional = rows_.temporary.row(0);
  _Float16* column = rows_.temporary.row(1);
  _Float16* details = rows_.temporary.row(2);
  _Float16* level1 = rows_.temporary.row(3);

  // Kept: the directional result goes one row down and one column to the right. Its last two rows
  // come from the analysis, unjoined.
  const int above = row - 1;
  const _Float16* low = rows_.directional_low.row(above);
  const _Float16* high = rows_.directional_high.row(above);
  if (above < height_ - 2) {
    times_->run(kJoinDirectionalLow, [&] {
      join_at(kHaarJoinColumns, taps, columns(0, 2), above, rows_.temporary.row(4), width_);
    });
    times_->run(kJoinDirectionalHigh, [&] {
      join_at(kHaarJoinColumns, taps, columns(1, 3), above, rows_.temporary.row(5), width_);
    });
    low = rows_.temporary.row(4);
    high = rows_.temporary.row(5);
  }
  times_->run(kJoinDirectionalRows, [&] {
    directional[0] = directional[width_ - 1] = 0;
    if (width_ >= 3)
      join_row(kHaarJoinRows, taps, row_pair(low, high), width_ - 2, directional + 1);
  });

  // The level-1 low band is gone, the directional result stands in for it: only details.
  times_->run(kJoinHighOnly,
              [&] { join_at(kHaarJoinHighOnly, taps, columns(4, 4), row, column, width_); });
  times_->run(kJoinDetails,
              [&] { join_at(kHaarJoinPlain, taps, columns(5, 6), row, details, width_); });
  times_->run(kJoinRows,
              [&] { join_row(kHaarJoinPlain, taps, row_pair(column, details), width_, level1); });
  times_->run(kJoinSum, [&] { add_rows(level1, directional, out, width_); });
}
