#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <span>

#include "platform/stage_timer.h"
#include "vorel/wavelet/haar_transform.h"
#include "wavelet/kernels/haar_rows.h"
#include "wavelet/plane_storage.h"

namespace {

constexpr _Float16 kL = static_cast<_Float16>(0.70703125f);  // 0x39A8
constexpr _Float16 kD = static_cast<_Float16>(0.5f);         // 0x3800

constexpr _Float16 kAnalysisTaps[] = {kL,  kL,            // level 1 low
                                      -kL, kL,            // level 1 high
                                      kL,  0,   kL,       // level 2 low
                                      -kL, 0,   kL,       // level 2 high
                                      kD,  kD,  kD, kD,   // directional low
                                      -kD, -kD, kD, kD};  // directional high
constexpr int kSynthesisBase = 70;
constexpr _Float16 kSynthesisTaps[] = {kL,  kL,       // level 1 low
                                       -kL, kL,       // level 1 high
                                       kL,  0,  kL,   // level 2 low
                                       -kL, 0,  kL};  // level 2 high
static_assert(kSynthesisBase + std::size(kSynthesisTaps) == HaarTransform::kTapCount);

// A sample's place relative to the output's and its taps' places in the table.
struct analysis_tap {
  int offset;
  int low;
  int high;
};

constexpr analysis_tap kLevel1[] = {{0, 0, 2}, {1, 1, 3}};
constexpr analysis_tap kLevel2[] = {{0, 4, 7}, {1, 5, 8}, {2, 6, 9}};
constexpr analysis_tap kDirectional[] = {{-1, 10, 14}, {0, 11, 15}, {1, 12, 16}, {2, 13, 17}};

using analysis_filter = std::span<const analysis_tap>;  // ascending offsets

// A filter's outputs where all its taps lie inside, from the samples `stride` apart around `at`.
template <typename Sample>
using interior_kernel = void (*)(const Sample* at, ptrdiff_t stride, _Float16* lo, _Float16* hi,
                                 int count);

template <typename Sample>
void split_level1(const Sample* at, ptrdiff_t stride, _Float16* lo, _Float16* hi, int count) {
  split_level1_row(at, at + stride, lo, hi, count);
}

template <typename Sample>
void split_directional(const Sample* at, ptrdiff_t stride, _Float16* lo, _Float16* hi, int count) {
  split_directional_row(at - stride, at, at + stride, at + 2 * stride, lo, hi, count);
}

// A line of `length` samples (a row, or the rows of a plane), `stride` apart.
template <typename Sample>
struct sample_line {
  const Sample* first;
  ptrdiff_t stride;
  int length;
};

// `count` adjacent outputs whose first stands at `position` of the line. Taps outside the line are
// left out.
template <typename Sample>
void split_by_table(analysis_filter filter, const _Float16* taps, const sample_line<Sample>& line,
                    int position, _Float16* lo, _Float16* hi, int count) {
  tapped_row<Sample> low[kMaxTappedRows];
  tapped_row<Sample> high[kMaxTappedRows];
  int used = 0;
  for (const analysis_tap& tap : filter) {
    const int at = position + tap.offset;
    if (at < 0 || at >= line.length) continue;
    const Sample* samples = line.first + at * line.stride;
    low[used] = {samples, taps[tap.low]};
    high[used] = {samples, taps[tap.high]};
    ++used;
  }
  sum_tapped_rows(low, used, 0, 1, lo, count);
  sum_tapped_rows(high, used, 0, 1, hi, count);
}

// Splits the first `length` samples of one row; without `kernel` the table serves everywhere.
template <typename Sample>
void split_row(analysis_filter filter, const _Float16* taps, interior_kernel<Sample> kernel,
               const Sample* row, int length, _Float16* lo, _Float16* hi) {
  const sample_line<Sample> line = {row, 1, length};
  const int begin = std::min(-filter.front().offset, length);
  const int end = std::max(begin, length - filter.back().offset);
  for (int x = 0; x < begin; ++x) split_by_table(filter, taps, line, x, lo + x, hi + x, 1);
  if (end > begin && kernel != nullptr) {
    kernel(row + begin, 1, lo + begin, hi + begin, end - begin);
  } else if (end > begin) {
    split_by_table(filter, taps, line, begin, lo + begin, hi + begin, end - begin);
  }
  for (int x = end; x < length; ++x) split_by_table(filter, taps, line, x, lo + x, hi + x, 1);
}

// Splits along the columns into output rows [0, row_end).
void split_columns(analysis_filter filter, const _Float16* taps, interior_kernel<_Float16> kernel,
                   const _Float16* src, int width, int height, int row_end, _Float16* lo,
                   _Float16* hi) {
  const sample_line<_Float16> line = {src, width, height};
  for (int y = 0; y < row_end && width > 0; ++y) {
    const ptrdiff_t offset = ptrdiff_t{y} * width;
    const bool inside = y + filter.front().offset >= 0 && y + filter.back().offset < height;
    if (inside && kernel != nullptr) {
      kernel(src + offset, width, lo + offset, hi + offset, width);
    } else {
      split_by_table(filter, taps, line, y, lo + offset, hi + offset, width);
    }
  }
}

template <typename Sample>
void split_level1_rows(const _Float16* taps, const Sample* src, _Float16* lo, _Float16* hi,
                       int width, int height) {
  for (int y = 0; y < height && width > 0; ++y) {
    const ptrdiff_t offset = ptrdiff_t{y} * width;
    split_row<Sample>(kLevel1, taps, split_level1<Sample>, src + offset, width, lo + offset,
                      hi + offset);
  }
}

// Kept: the last column takes no part, neither as a sample nor as an output, and the last row is
// left alone.
template <typename Sample>
void split_directional_rows(const _Float16* taps, const Sample* src, _Float16* lo, _Float16* hi,
                            int width, int height) {
  for (int y = 0; y < height - 1 && width > 1; ++y) {
    const ptrdiff_t offset = ptrdiff_t{y} * width;
    split_row<Sample>(kDirectional, taps, split_directional<Sample>, src + offset, width - 1,
                      lo + offset, hi + offset);
  }
}

_Float16* samples_of(const buffer& plane) { return static_cast<_Float16*>(plane.data); }

}  // namespace

HaarTransform::HaarTransform()
    : taps{}, lowScratch_{}, highScratch_{}, directional_{}, column_{}, debug_(0), path_(nullptr) {
  std::copy(std::begin(kAnalysisTaps), std::end(kAnalysisTaps), taps);
  std::copy(std::begin(kSynthesisTaps), std::end(kSynthesisTaps), taps + kSynthesisBase);
}

bool HaarTransform::setup(int width, int height, int debug, char* path) {
  return setup(width, height, debug, path, nullptr);
}

bool HaarTransform::setup(int width, int height, int debug, char* path, plane_scratch* scratch) {
  deallocate();
  debug_ = debug;
  path_ = path;
  const uint32_t rows = static_cast<uint32_t>(std::max(height, 0));
  const uint32_t cols = static_cast<uint32_t>(std::max(width, 0));
  for (buffer* plane : {&lowScratch_, &highScratch_, &directional_, &column_}) {
    if (!take_plane(plane, scratch, rows, cols)) return false;
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
  split_level1_rows<uint8_t>(taps, src, lo, hi, width, height);
}

void HaarTransform::fwt(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  const StageTimer timer(debug_);
  split_level1_rows<_Float16>(taps, src, lo, hi, width, height);
  timer.log("HaarTransform::fwt");
}

void HaarTransform::fwtVert(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  const StageTimer timer(debug_);
  split_columns(kLevel1, taps, split_level1<_Float16>, src, width, height, height, lo, hi);
  timer.log("HaarTransform::fwtVert");
}

void HaarTransform::fwtL2(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  for (int y = 0; y < height && width > 0; ++y) {
    const ptrdiff_t offset = ptrdiff_t{y} * width;
    split_row<_Float16>(kLevel2, taps, nullptr, src + offset, width, lo + offset, hi + offset);
  }
}

void HaarTransform::fwtVertL2(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  split_columns(kLevel2, taps, nullptr, src, width, height, height, lo, hi);
}

void HaarTransform::fwtL2DirPixel(unsigned char* src, _Float16* lo, _Float16* hi, int width,
                                  int height) {
  split_directional_rows<uint8_t>(taps, src, lo, hi, width, height);
}

void HaarTransform::fwtL2Dir(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  const StageTimer timer(debug_);
  split_directional_rows<_Float16>(taps, src, lo, hi, width, height);
  timer.log("HaarTransform::fwtL2Dir");
}

void HaarTransform::fwtVertL2Dir(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  const StageTimer timer(debug_);
  if (height >= 3) {
    split_columns(kDirectional, taps, split_directional<_Float16>, src, width, height, height - 1,
                  lo, hi);
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
