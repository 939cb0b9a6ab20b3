// Whole decompositions and reconstructions in one walk over the rows of a plane.
//
// Each row goes through all passes while it is in the cache; the working planes serve as rings of a
// few rows, the rest of them is not touched. The results are those of the passes run one after the
// other over whole planes. Rows whose taps reach rows that no pass writes may differ: those hold
// anything.
#ifndef VOREL_WAVELET_SYM4_WALK_H_
#define VOREL_WAVELET_SYM4_WALK_H_

#include <cstdint>

#include "vorel/debug.h"
#include "vorel/wavelet/buffer.h"

// Adds up the time of one kind of pass, of which a walk makes thousands of short pieces.
class PassTime {
 public:
  explicit PassTime(bool enabled) : enabled_(enabled) {}

  template <typename Pass>
  void run(Pass pass) {
    timeval start{};
    if (enabled_) set_current_time(&start);
    pass();
    if (enabled_) usec_ += get_elapsed_time_usec(&start);
  }

  int64_t usec() const { return usec_; }

 private:
  bool enabled_;
  int64_t usec_ = 0;
};

struct sym4_times {
  PassTime horizontal;
  PassTime vertical;
};

// Working planes of one level, in rows of width / 2 samples. `low` and `high` need as many rows as
// the plane that is walked, `intermediate` half as many, but never more than kSym4WorkRows.
inline constexpr int kSym4WorkRows = 10;
struct sym4_work {
  _Float16* low;
  _Float16* high;
  _Float16* intermediate;
};

// Decomposes a plane of `width` x `height` samples: with `second_level` into subbands[0..6], else
// into subbands[4..7].
void sym4_walk_forward(const _Float16* src, const buffer* subbands, const sym4_work& work,
                       int width, int height, bool second_level, sym4_times* times);

// Whether the walk can rebuild a plane of this size from this low band: the second level must have
// just the columns of the first, and the planes must hold the rings.
[[nodiscard]] bool sym4_can_walk_inverse(const buffer& band0, int width, int height);

// Rebuilds a plane from `band0` and subbands[1..6]; `out` has rows of 2 * (width / 2) samples.
// Rows 0 to 2 and the last ones are not written.
void sym4_walk_inverse(const buffer& band0, const buffer* subbands, _Float16* out,
                       const sym4_work& work, int width, int height, sym4_times* times);

#endif  // VOREL_WAVELET_SYM4_WALK_H_
