#include "wavelet/chroma_band.h"

#include <algorithm>
#include <cstdint>

#include "wavelet/chroma_rows.h"
#include "wavelet/haar_walk.h"
#include "wavelet/kernels/sym4_rows.h"
#include "wavelet/noise_rows.h"
#include "wavelet/row_arena.h"
#include "wavelet/sym4_forward.h"
#include "wavelet/sym4_inverse.h"

namespace {

struct plane_gains {
  shrink_gain haar[kHaarBands];
  shrink_gain details[kSubbands];  // the low band's is not used
};

plane_gains make_plane_gains(const _Float16* thresholds) {
  plane_gains gains{};
  make_haar_gains(thresholds[0], gains.haar);
  for (int band = 1; band < kSubbands; ++band) {
    gains.details[band] = make_shrink_gain(thresholds[band], kSymletScale);
  }
  return gains;
}

// One plane's walks.
struct plane_walks {
  plane_walks(const plane_rows& store, const plane_gains& plane_gains, PassTimes* pass_times)
      : rows(store),
        gains(plane_gains),
        forward(store.forward, pass_times),
        haar(store.inverse.quarter, store.inverse.quarter_rows, gains.haar, store.haar, pass_times),
        inverse(store.inverse, pass_times),
        times(pass_times) {}

  const plane_rows rows;
  const plane_gains gains;
  Sym4ForwardWalk forward;
  HaarWalk haar;
  Sym4InverseWalk inverse;
  PassTimes* times;
};

radial_noise level_noise(const chroma_frame& frame, int rows, int cols, int step) {
  return make_radial_noise(frame.model.slope, frame.model.cap, rows, cols, step);
}

class BandWalk {
 public:
  BandWalk(const chroma_frame& frame, const band_rows& rows, PassTimes* times)
      : frame_(frame),
        sizes_(subband_sizes_of(frame.planes[0])),
        noise1_(level_noise(frame, sizes_.half_rows, sizes_.half_columns, kLevel1Step),
                sizes_.half_columns, rows.noise1),
        noise2_(level_noise(frame, sizes_.quarter_rows, sizes_.quarter_columns, kLevel2Step),
                sizes_.quarter_columns, rows.noise2),
        planes_{{rows.planes[0], make_plane_gains(frame.thresholds[0]), &times[0]},
                {rows.planes[1], make_plane_gains(frame.thresholds[1]), &times[1]}} {}

  void run(span rows) {
    const int first = rows.first + static_cast<int>(frame_.planes[0].padY);
    const int end = rows.end + static_cast<int>(frame_.planes[0].padY);
    start({(first + 1) / 2, end / 2 + 1});
    Sym4InverseWalk& inverse = planes_[0].inverse;
    while (!inverse.done() && inverse.next_pair() <= end / 2) {
      const int pair = inverse.next_pair();
      while (!inverse.ready()) make_low_row();
      for (plane_walks& plane : planes_) plane.inverse.make_pair();
      for (int row = 2 * pair - 1; row <= 2 * pair; ++row) {
        if (row >= first && row < end) saturate(row);
      }
    }
  }

 private:
  // All walks begin where the first of the row pairs needs them to.
  void start(span row_pairs) {
    const int first_column = static_cast<int>(frame_.planes[0].padX);
    const int end_column = first_column + static_cast<int>(frame_.planes[0].innerWidth);
    const span pairs = {std::max(kSym4First, (first_column + 1) / 2),
                        std::min(sym4_synthesis_end(sizes_.half_columns), end_column / 2 + 1)};
    detail_rows_ = {row_pairs.first - 2, row_pairs.end + 2};
    detail_columns_ = {pairs.first - 2, pairs.end + 2};
    for (plane_walks& plane : planes_) {
      plane.inverse.start(row_pairs.first, pairs);
      low_row_ = plane.inverse.next_row();
      const int haar_row = std::max(0, low_row_ - kHaarReach);
      plane.haar.start(haar_row);
      plane.forward.start(haar_row, detail_rows_, detail_columns_);
      noise2_.start(haar_row);
    }
    second_row_ = planes_[0].forward.second_level_end();
    noise1_.start(detail_rows_.first);
  }

  // Makes the next row of the denoised low band and hands it to the inverse walk.
  void make_low_row() {
    const int row = planes_[0].inverse.next_row();
    while (!planes_[0].haar.ready(row)) {
      const int next = planes_[0].haar.next_row();
      if (next < second_row_ || planes_[0].forward.done()) {
        for (plane_walks& plane : planes_) {
          plane.haar.push(plane.rows.forward.bands[0].row(next), &noise2_);
        }
      } else {
        advance_forward();
      }
    }
    for (plane_walks& plane : planes_) {
      _Float16* low = plane.rows.low_row.row(0);
      plane.haar.make(row, low, &noise2_);
      plane.inverse.join(low);
    }
  }

  // One row of the first level further, shrinking the details that are complete.
  void advance_forward() {
    const int row1 = planes_[0].forward.first_level_end();
    for (plane_walks& plane : planes_) plane.forward.advance();
    if (row1 >= detail_rows_.first && row1 < detail_rows_.end) {
      shrink(span{4, 7}, row1, detail_columns_, noise1_.row(row1));
    }
    for (; second_row_ < planes_[0].forward.second_level_end(); ++second_row_) {
      if (second_row_ < low_row_) continue;
      shrink(span{1, 4}, second_row_, {0, sizes_.quarter_columns}, noise2_.row(second_row_));
    }
  }

  void shrink(span bands, int row, span columns, const _Float16* multipliers) {
    for (plane_walks& plane : planes_) {
      plane.times->run(kShrinkDetails, [&] {
        for (int band = bands.first; band < bands.end; ++band) {
          shrink_row(plane.gains.details[band], multipliers + columns.first,
                     plane.rows.forward.bands[band].row(row) + columns.first, columns.size());
        }
      });
    }
  }

  // Turns a row of the rebuilt planes into bytes.
  void saturate(int row) {
    const buffer& plane = frame_.planes[0];
    const buffer& out = *frame_.out;
    uint8_t* pairs =
        static_cast<uint8_t*>(out.data) + (static_cast<size_t>(row) - plane.padY) * out.width;
    planes_[0].times->run(kSaturation, [&] {
      saturate_row(frame_.curve, planes_[0].rows.inverse.out.row(row) + plane.padX,
                   planes_[1].rows.inverse.out.row(row) + plane.padX, pairs,
                   static_cast<int>(std::min(plane.innerWidth, out.width / 2)));
    });
  }

  const chroma_frame& frame_;
  const subband_sizes sizes_;
  NoiseRows noise1_;
  NoiseRows noise2_;
  plane_walks planes_[kChromaPlanes];
  span detail_columns_{};
  span detail_rows_{};  // that are needed
  int low_row_ = 0;     // the low band's first row that is needed
  int second_row_ = 0;  // next row of bands 1 to 3 to be shrunk
};

}  // namespace

size_t chroma_band_samples(const chroma_frame& frame) {
  RowArena count(nullptr);
  static_cast<void>(take_band_rows(&count, frame.planes));
  return count.samples();
}

void denoise_chroma_band(const chroma_frame& frame, span rows, void* memory, PassTimes* times) {
  if (rows.size() < 1) return;
  RowArena arena(memory);
  BandWalk(frame, take_band_rows(&arena, frame.planes), times).run(rows);
}
