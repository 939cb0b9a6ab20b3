// Whole decompositions and reconstructions in one walk over the rows of a plane.
//
// Each row goes through all passes while it is in the cache; the working planes serve as rings of a
// few rows, the rest of them is not touched. The results are those of the passes run one after the
// other over whole planes. A sample that no pass writes holds anything; what follows from it does
// too, but equals what the passes make of it as far as that costs nothing.
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

// Working planes of one level and the samples that they hold.
struct sym4_work {
  _Float16* low;
  _Float16* high;
  _Float16* intermediate;
  int64_t outer_samples;  // of `low`, and of `high`
  int64_t intermediate_samples;
};

// Whether the walks fit into the working planes. Planes of height x width / 2 and height / 2 x
// width / 2 samples always hold a forward walk; an inverse walk needs about 20 rows, and a second
// level whose low band is at least as wide as the first level's rows.
[[nodiscard]] bool sym4_can_walk_forward(const sym4_work& work, int width, int height);
[[nodiscard]] bool sym4_can_walk_inverse(const sym4_work& work, const buffer& band0, int width);

// Decomposes a plane of `width` x `height` samples: with `second_level` into subbands[0..6], else
// into subbands[4..7].
void sym4_walk_forward(const _Float16* src, const buffer* subbands, const sym4_work& work,
                       int width, int height, bool second_level, sym4_times* times);

// Rebuilds a plane from `band0` and subbands[1..6]; `out` has rows of 2 * (width / 2) samples.
// Rows 0 to 2 and those from 2 * (height / 2) - 5 on are not written.
void sym4_walk_inverse(const buffer& band0, const buffer* subbands, _Float16* out,
                       const sym4_work& work, int width, int height, sym4_times* times);

#endif  // VOREL_WAVELET_SYM4_WALK_H_
