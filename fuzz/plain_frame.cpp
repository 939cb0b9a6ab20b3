#include "fuzz/plain_frame.h"

#include <algorithm>

#include "tests/kernels/plain_bilateral.h"
#include "tests/kernels/plain_box_filter.h"
#include "tests/kernels/plain_restore.h"
#include "tests/kernels/plain_upsample.h"

namespace {

constexpr int kBlock = 16;
constexpr int kStrips = 64;  // of the box filter; the last one takes the remainder

struct Blocks {
  Blocks(int rows_, int cols_)
      : rows(rows_),
        cols(cols_),
        samples(static_cast<size_t>(rows) * static_cast<size_t>(cols)),
        filtered(samples) {}

  void filter(const bilateralfiltering_tuning& tuning, int span_row, int span_col) {
    PlainBilateral{samples.data(), filtered.data(), rows, cols, span_row, span_col}.filter(tuning);
  }
  uint8_t at(int y, int x, int factor) const {
    return PlainUpsampling{filtered.data(), cols, rows, factor, factor}.at(y, x);
  }

  int rows;
  int cols;
  std::vector<uint8_t> samples;
  std::vector<uint8_t> filtered;
};

void split_luma(const cnr_tuning& tuning, const PlainFrame& frame, std::vector<uint8_t>& low,
                std::vector<uint8_t>& high) {
  const int strip = frame.height / kStrips;
  for (int i = 0; i < kStrips; ++i) {
    const int end = i + 1 < kStrips ? (i + 1) * strip : frame.height;
    PlainBoxFilter{frame.luma.data(), frame.width, frame.height, tuning.boxfiltering_tuning.tab_bit,
                   i * strip,         end}
        .filter(low.data(), high.data(), 1);
  }
}

}  // namespace

void denoise_plainly(const cnr_tuning& tuning, PlainFrame& frame) {
  const interleaving_tuning& thresholds = tuning.interleaving_tuning;
  if (thresholds.d_Y_upper_thresh == 0 || thresholds.d_UV_thresh == 0) return;
  const int rows = (frame.height + kBlock - 1) / kBlock;
  const int cols = frame.width / kBlock;
  Blocks y(rows, cols);
  Blocks first(rows, cols);
  Blocks second(rows, cols);
  std::vector<uint8_t> low(frame.luma.size());
  std::vector<uint8_t> high(frame.luma.size());
  split_luma(tuning, frame, low, high);
  for (int i = 0; i < rows * cols; ++i) {
    const size_t at = static_cast<size_t>(i);
    const int row = i / cols;
    const int col = i % cols;
    const int chroma_row = std::min(kBlock / 2 * row, frame.height / 2 - 1);
    const size_t pair = static_cast<size_t>(chroma_row * frame.width + kBlock * col);
    y.samples[at] = low[static_cast<size_t>(kBlock * (row * frame.width + col))];
    first.samples[at] = frame.chroma[pair];
    second.samples[at] = frame.chroma[pair + 1];
  }
  const bilateralfiltering_tuning& bilateral = tuning.bilateralfiltering_tuning;
  y.filter(bilateral, bilateral.span_Y_row, bilateral.span_Y_col);
  first.filter(bilateral, bilateral.span_UV_row, bilateral.span_UV_col);
  second.filter(bilateral, bilateral.span_UV_row, bilateral.span_UV_col);
  for (int i = 0; i < frame.height * frame.width; ++i) {
    uint8_t& sample = frame.luma[static_cast<size_t>(i)];
    sample = plain_luma(sample, y.at(i / frame.width, i % frame.width, 16),
                        high[static_cast<size_t>(i)], thresholds);
  }
  const int pairs = frame.width / 2;
  for (int i = 0; i < frame.height / 2 * pairs; ++i) {
    uint8_t* pair = frame.chroma.data() + 2 * i;
    const PlainPair restored = plain_chroma(
        {pair[0], pair[1]}, {first.at(i / pairs, i % pairs, 8), second.at(i / pairs, i % pairs, 8)},
        thresholds);
    pair[0] = restored.first;
    pair[1] = restored.second;
  }
}
