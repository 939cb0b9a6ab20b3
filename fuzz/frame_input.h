// Frames and tunings made of a fuzzer's bytes.
#ifndef VOREL_FUZZ_FRAME_INPUT_H_
#define VOREL_FUZZ_FRAME_INPUT_H_

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>

#include "tests/support/guarded_plane.h"
#include "vorel/frame.h"
#include "vorel/tuning.h"

// Once, before the first input: no log, and threads with small stacks, because what a sanitizer
// does for a thread grows with its stack.
void prepare_frames();

// Small values of a field are the likely ones; the others must do no harm either.
int32_t any_int(FuzzedDataProvider& input, int32_t low, int32_t high);
float any_float(FuzzedDataProvider& input);

// Half spans of the window; the work of a frame grows with their product.
inline constexpr int kLargestSpan = 6;

// Whether an input's frames may take the wavelet path, which takes most of a small frame's time:
// one of eight do. All bytes decide, for towards a single one that lets them the corpus would grow.
bool may_take_wavelet(const uint8_t* data, size_t size);

// What a tuning file can set, and the tap count, which only memory can. Any value in any field, but
// for spans, which stay small, and for the wavelet path, which is on only where it may be.
void fill_tuning(FuzzedDataProvider& input, bool wavelet_too, cnr_tuning& tuning);

// A frame whose planes end, or start, at unreadable pages, with exactly the bytes that its record
// speaks of. Sizes, strides and layout as they are given, legal or not.
class FuzzFrame {
 public:
  FuzzFrame(FuzzedDataProvider& input, int width, int height, int luma_stride, int chroma_stride,
            int chroma_rows, int32_t layout);

  vorel_frame record(int32_t noise_index) {
    return {sizeof(vorel_frame), luma_.data(), chroma_.data(), luma_stride_,
            chroma_stride_,      width_,       height_,        layout_,
            noise_index};
  }
  GuardedBytes& luma() { return luma_; }
  GuardedBytes& chroma() { return chroma_; }

 private:
  int width_;
  int height_;
  int luma_stride_;
  int chroma_stride_;
  int32_t layout_;
  GuardedBytes::Guard guard_;
  GuardedBytes luma_;
  GuardedBytes chroma_;
};

#endif  // VOREL_FUZZ_FRAME_INPUT_H_
