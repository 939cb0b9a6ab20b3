// The exported Haar transform: passes over whole planes. A frame takes haar_walk.h instead.
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "platform/stage_timer.h"
#include "vorel/wavelet/haar_transform.h"
#include "wavelet/haar_filters.h"
#include "wavelet/haar_planes.h"
#include "wavelet/plane_storage.h"

namespace {

_Float16* samples_of(const buffer& plane) { return static_cast<_Float16*>(plane.data); }

}  // namespace

static_assert(HaarTransform::kTapCount == kHaarTaps);

HaarTransform::HaarTransform()
    : taps{}, lowScratch_{}, highScratch_{}, directional_{}, column_{}, debug_(0) {
  std::copy_n(haar_taps(), kTapCount, taps);
}

bool HaarTransform::setup(int width, int height, int debug, char*) {
  deallocate();
  debug_ = debug;
  const uint32_t rows = static_cast<uint32_t>(std::max(height, 0));
  const uint32_t cols = static_cast<uint32_t>(std::max(width, 0));
  for (buffer* plane : {&lowScratch_, &highScratch_, &directional_, &column_}) {
    if (!take_plane(plane, nullptr, rows, cols)) return false;
    std::memset(plane->data, 0, size_t{rows} * cols * sizeof(_Float16));
  }
  return true;
}

void HaarTransform::deallocate() {
  for (buffer* plane : {&lowScratch_, &highScratch_, &directional_, &column_}) {
    release_plane(plane);
  }
}

void HaarTransform::fwtFirstStep(unsigned char* src, _Float16* lo, _Float16* hi, int width,
                                 int height) {
  split_plane_rows(kHaarLevel1, taps, src, {lo, hi}, {width, height});
}

void HaarTransform::fwt(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  const StageTimer timer(debug_);
  split_plane_rows(kHaarLevel1, taps, src, {lo, hi}, {width, height});
  timer.log("HaarTransform::fwt");
}

void HaarTransform::fwtVert(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  const StageTimer timer(debug_);
  split_plane_columns(kHaarLevel1, taps, src, {lo, hi}, {width, height}, height);
  timer.log("HaarTransform::fwtVert");
}

void HaarTransform::fwtL2(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  split_plane_rows(kHaarLevel2, taps, src, {lo, hi}, {width, height});
}

void HaarTransform::fwtVertL2(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  split_plane_columns(kHaarLevel2, taps, src, {lo, hi}, {width, height}, height);
}

void HaarTransform::fwtL2DirPixel(unsigned char* src, _Float16* lo, _Float16* hi, int width,
                                  int height) {
  split_plane_directionally(taps, src, {lo, hi}, {width, height});
}

void HaarTransform::fwtL2Dir(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  const StageTimer timer(debug_);
  split_plane_directionally(taps, src, {lo, hi}, {width, height});
  timer.log("HaarTransform::fwtL2Dir");
}

void HaarTransform::fwtVertL2Dir(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  const StageTimer timer(debug_);
  if (height >= 3) {
    split_plane_columns(kHaarDirectional, taps, src, {lo, hi}, {width, height}, height - 1);
  }
  timer.log("HaarTransform::fwtL2VertDir");
}

void HaarTransform::forwardUnHaarRun(buffer* src, buffer* subbands, unsigned int width,
                                     unsigned int height, bool, bool pixelInput) {
  const StageTimer timer(debug_);
  const int cols = static_cast<int>(width);
  const int rows = static_cast<int>(height);
  unsigned char* pixels = static_cast<unsigned char*>(src->data);
  _Float16* low = samples_of(lowScratch_);
  _Float16* high = samples_of(highScratch_);

  if (pixelInput) {
    fwtFirstStep(pixels, low, high, cols, rows);
  } else {
    fwt(samples_of(*src), low, high, cols, rows);
  }
  fwtVert(low, samples_of(subbands[3]), samples_of(subbands[4]), cols, rows);
  fwtVert(high, samples_of(subbands[5]), samples_of(subbands[6]), cols, rows);

  if (pixelInput) {
    fwtL2DirPixel(pixels, low, high, cols, rows);
  } else {
    fwtL2Dir(samples_of(*src), low, high, cols, rows);
  }
  // Kept: band 3 now loses its level-1 low band but for the last row.
  fwtVertL2Dir(low, samples_of(subbands[0]), samples_of(subbands[2]), cols, rows);
  fwtVertL2Dir(high, samples_of(subbands[1]), samples_of(subbands[3]), cols, rows);
  timer.log("HaarTransform::forwardUnHaarRun");
}

void HaarTransform::iwt(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  join_plane_rows(kHaarJoin, taps, {lo, hi, width}, out, width, {0, height});
}

void HaarTransform::iwtPitch(_Float16* lo, _Float16* hi, _Float16* out, int width, int height,
                             int p) {
  join_plane_rows(kHaarJoin, taps, {lo, hi, width - p}, out, width, {1, height});
}

void HaarTransform::iwtVert(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  join_plane_columns(kHaarJoin, taps, {lo, hi, width}, out, {width, height}, height);
}

void HaarTransform::iwtVertPitch(_Float16* lo, _Float16* hi, _Float16* out, int width, int height,
                                 int p) {
  join_plane_columns(kHaarJoin, taps, {lo, hi, width + p}, out, {width, height}, height - 1);
}

void HaarTransform::iwtL2(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  join_plane_rows(kHaarJoinLevel2, taps, {lo, hi, width}, out, width, {0, height});
}

void HaarTransform::iwtVertL2(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  join_plane_columns(kHaarJoinLevel2, taps, {lo, hi, width}, out, {width, height}, height);
}

void HaarTransform::iwtL2Dir(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  join_plane_directionally(taps, {lo, hi, width}, out, {width, height});
  timer.log("HaarTransform::iwtL2Dir");
}

void HaarTransform::iwtVertL2Dir(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  // Kept: the last two rows are left alone.
  join_plane_columns(kHaarJoinColumns, taps, {lo, hi, width}, out, {width, height}, height - 2);
  timer.log("HaarTransform::iwtL2VertDir");
}

void HaarTransform::iwtDir(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  join_plane_rows(kHaarJoinPlain, taps, {lo, hi, width}, out, width, {0, height});
  timer.log("HaarTransform::iwtDir");
}

void HaarTransform::iwtVertDir(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  join_plane_columns(kHaarJoinPlain, taps, {lo, hi, width}, out, {width, height}, height);
  timer.log("HaarTransform::iwtVertDir");
}

void HaarTransform::iwtVertDirSingle(_Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  join_plane_columns(kHaarJoinHighOnly, taps, {nullptr, hi, width}, out, {width, height}, height);
  timer.log("HaarTransform::iwtVertDirSingle");
}

void HaarTransform::SubbandsSum2SubBands(_Float16* a, _Float16* b, _Float16* out, int width,
                                         int height) {
  const StageTimer timer(debug_);
  add_planes(a, b, out, {width, height});
  timer.log("HaarTransform::SubbandsSum2SubBands");
}

void HaarTransform::inverseUnHaarRunAllSubbands(buffer* subbands, buffer* out, unsigned int width,
                                                unsigned int height) {
  const StageTimer timer(debug_);
  const int cols = static_cast<int>(width);
  const int rows = static_cast<int>(height);
  _Float16* low = samples_of(lowScratch_);
  _Float16* high = samples_of(highScratch_);
  _Float16* directional = samples_of(directional_);
  _Float16* column = samples_of(column_);

  iwtVertL2Dir(samples_of(subbands[0]), samples_of(subbands[2]), low, cols, rows);
  iwtVertL2Dir(samples_of(subbands[1]), samples_of(subbands[3]), high, cols, rows);
  iwtL2Dir(low, high, directional, cols, rows);

  // The level-1 low band is gone, the directional reconstruction stands in for it: only details.
  iwtVertDirSingle(samples_of(subbands[4]), column, cols, rows);
  iwtVertDir(samples_of(subbands[5]), samples_of(subbands[6]), high, cols, rows);
  iwtDir(column, high, low, cols, rows);
  SubbandsSum2SubBands(low, directional, samples_of(*out), cols, rows);
  timer.log("HaarTransform::inverseUnHaarRunAllSubbands");
}
