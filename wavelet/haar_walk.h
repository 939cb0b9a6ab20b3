// The low band's denoising in one walk over its rows: undecimated Haar analysis, shrinkage of the
// seven subbands and synthesis.
//
// Only the last few rows of every plane are kept. The results are those of the passes run one after
// the other over whole planes that are zero before.
#ifndef VOREL_WAVELET_HAAR_WALK_H_
#define VOREL_WAVELET_HAAR_WALK_H_

#include "wavelet/kernels/shrinkage_rows.h"
#include "wavelet/noise_rows.h"
#include "wavelet/pass_times.h"
#include "wavelet/row_store.h"

inline constexpr int kHaarBands = 7;
inline constexpr int kHaarKept = 4;  // rows of a subband and of the directional rows' result
inline constexpr int kHaarSplitKept = 2;
inline constexpr int kHaarTemporaryRows = 6;
// How many rows a result row depends on, above and below it.
inline constexpr int kHaarReach = 3;

// Where a walk keeps its rows; each row has room for the plane's columns.
struct haar_rows {
  row_store low;  // level 1 along the rows; kHaarSplitKept rows
  row_store high;
  row_store directional_low;  // directional along the rows; kHaarKept rows
  row_store directional_high;
  row_store bands[kHaarBands];  // kHaarKept rows each
  row_store temporary;          // kHaarTemporaryRows rows
};

class HaarWalk {
 public:
  // A plane of `width` x `height` samples whose subbands are shrunk with `gains`.
  HaarWalk(int width, int height, const shrink_gain (&gains)[kHaarBands], const haar_rows& rows,
           PassTimes* times);

  // Begins with `row` instead of 0; the results from row + kHaarReach on are right. To be called
  // before the first `push`.
  void start(int row);

  // Takes the next row of the plane.
  void push(const _Float16* samples, NoiseRows* noise);

  [[nodiscard]] int next_row() const { return pushed_; }

  // Whether result row `row` can be made.
  [[nodiscard]] bool ready(int row) const {
    return pushed_ > row + kHaarReach || pushed_ >= height_;
  }

  // Makes a result row, which may lie where a row lay that was taken. Each row is made in its turn,
  // as soon as it is ready. Kept: row 0 has no result.
  void make(int row, _Float16* out, NoiseRows* noise);

 private:
  void split_source_row(int row, const _Float16* samples);
  void complete_bands(int level1_end, int directional_end, NoiseRows* noise);
  void level1_row(int row);
  void directional_row(int row);
  void shrink(int band, int row, NoiseRows* noise);

  const int width_;
  const int height_;
  const int directional_end_;  // rows of bands 0..2 from here on are 0, of band 3 the level-1 band
  shrink_gain gains_[kHaarBands];
  haar_rows rows_;
  PassTimes* times_;
  int pushed_ = 0;       // rows taken
  int level1_ = 0;       // next row of bands 4..6
  int directional_ = 0;  // next row of bands 0..3
};

#endif  // VOREL_WAVELET_HAAR_WALK_H_
