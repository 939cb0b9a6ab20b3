// A reconstruction in one walk over the rows of a plane; see sym4_forward.h.
#ifndef VOREL_WAVELET_SYM4_INVERSE_H_
#define VOREL_WAVELET_SYM4_INVERSE_H_

#include "wavelet/pass_times.h"
#include "wavelet/row_store.h"
#include "wavelet/sym4_forward.h"

// What a walk reads and writes.
struct sym4_inverse {
  int half;  // columns and rows of the first level's bands
  int half_rows;
  int quarter;  // columns and rows of the second level's bands; 2 * quarter >= half
  int quarter_rows;
  row_store bands[7];  // 1..6 are read
  row_store out;       // rows of 2 * half samples
  row_store low2;  // of the second level, rows of 2 * quarter samples; kSym4RingRows, as both below
  row_store high2;
  row_store middle;        // the first level's low band
  row_store whole_middle;  // the same as a whole plane, as far as there is one: rows of the low
                           // band that no pass writes are read there
  row_store first_low;     // of the first level, the next two rows; kSym4SecondRows
  row_store first_high;
};

class Sym4InverseWalk {
 public:
  Sym4InverseWalk(const sym4_inverse& plane, PassTimes* times);

  // Begins with the row pair 2k - 1 and 2k, and makes of each pair's columns those of `pairs` only.
  void start(int k, span pairs);

  // Whether all rows of the second level are there that the next pair needs.
  [[nodiscard]] bool ready() const { return joined_ >= needed_; }

  // The row of the second level that comes next.
  [[nodiscard]] int next_row() const { return joined_; }

  // Takes that row: of the low band, `band0`, and of bands 1 to 3.
  void join(const _Float16* band0);

  // Makes the next pair of rows.
  void make_pair();

  [[nodiscard]] int next_pair() const { return k_; }

  // No pair is left to be made.
  [[nodiscard]] bool done() const { return k_ >= end_; }

 private:
  void set_needed();
  void join_middle_rows();
  [[nodiscard]] const _Float16* middle_row(int row) const;

  const sym4_inverse plane_;
  const int end_;   // of the row pairs
  const int end2_;  // of the second level's row pairs
  PassTimes* times_;
  span pairs_;
  span columns_;  // of the first level that the pairs need
  int k_;
  int row2_;
  int joined_ = 0;
  int needed_ = 0;
};

#endif  // VOREL_WAVELET_SYM4_INVERSE_H_
