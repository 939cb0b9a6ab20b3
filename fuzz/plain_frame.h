// The spatial path of a whole frame, sample by sample: what the library's frames are compared with.
#ifndef VOREL_FUZZ_PLAIN_FRAME_H_
#define VOREL_FUZZ_PLAIN_FRAME_H_

#include <cstdint>
#include <vector>

#include "vorel/tuning.h"

// Dense planes; the width is a multiple of 16, the height even.
struct PlainFrame {
  int width;
  int height;
  std::vector<uint8_t> luma;
  std::vector<uint8_t> chroma;
};

// With the values that `tuning` has in force.
void denoise_plainly(const cnr_tuning& tuning, PlainFrame& frame);

#endif  // VOREL_FUZZ_PLAIN_FRAME_H_
