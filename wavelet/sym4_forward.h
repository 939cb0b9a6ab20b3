// A decomposition in one walk over the rows of a plane.
//
// Each row goes through all passes while it is in the cache; between the passes there are rings of
// a few rows. The results are those of the passes run one after the other over whole planes. A
// sample that no pass writes holds anything; what follows from it does too, but equals what the
// passes make of it as far as that costs nothing.
#ifndef VOREL_WAVELET_SYM4_FORWARD_H_
#define VOREL_WAVELET_SYM4_FORWARD_H_

#include "wavelet/pass_times.h"
#include "wavelet/row_store.h"

inline constexpr int kSym4RingRows = 8;
inline constexpr int kSym4SecondRows = 2;

// What a walk reads and writes. The bands may be whole planes or keep as many rows as their reader
// needs.
struct sym4_forward {
  const _Float16* src;  // rows of `width` samples
  int width;
  int height;
  span inner;          // rows above and below repeat its first and its last row and are not read
  bool second_level;   // bands 0..6, else 4..7
  row_store bands[8];  // 0..3 with rows of width / 4 samples, the others with width / 2
  row_store low;       // of the source's rows; kSym4RingRows, as the two below
  row_store high;
  row_store low_low;  // of the first level
  row_store second;   // low and high row of the second level; kSym4SecondRows
};

class Sym4ForwardWalk {
 public:
  Sym4ForwardWalk(const sym4_forward& plane, PassTimes* times);

  // Leaves out the rows of the second level's bands before `second_row`, of bands 4 to 6 all rows
  // but `detail_rows`, and of bands 5 and 6 all columns but `detail_columns`. To be called before
  // the first `advance`.
  void start(int second_row, span detail_rows, span detail_columns);

  // Makes the next row of the first level's bands, and the rows of the second level's that it
  // completes.
  void advance();

  // No row is left to be made.
  [[nodiscard]] bool done() const { return k_ >= end_; }

  // The rows from here on are not there yet.
  [[nodiscard]] int first_level_end() const { return k_; }
  [[nodiscard]] int second_level_end() const { return row2_; }

 private:
  [[nodiscard]] bool has_details(int row) const {
    return row >= detail_rows_.first && row < detail_rows_.end;
  }
  void split_source_row(int row);
  void join_low_rows();
  void join_high_rows();
  void second_level_row();

  const sym4_forward plane_;
  const int half_;
  const int end_;   // of the first level's rows
  const int end2_;  // of the second level's rows
  PassTimes* times_;
  int k_;  // the first level's next row
  int row2_;
  int source_row_ = 0;
  int last_row_ = -1;  // of the inner rows, the one that was split last
  bool last_has_high_ = false;
  span detail_rows_;
  span detail_columns_;
};

#endif  // VOREL_WAVELET_SYM4_FORWARD_H_
