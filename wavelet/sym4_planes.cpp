#include "wavelet/sym4_planes.h"

#include <algorithm>

#include "platform/log.h"
#include "platform/stage_timer.h"
#include "wavelet/kernels/sym4_rows.h"
#include "wavelet/plane_storage.h"
#include "wavelet/sym4_forward.h"
#include "wavelet/sym4_inverse.h"

namespace {

// The rings lie in the working planes' first rows, and after them the rows between two passes.
row_store ring_in(_Float16* plane, int width) { return {plane, width, kSym4RingRows}; }

_Float16* after_ring(_Float16* plane, int width) {
  return plane + ptrdiff_t{width} * kSym4RingRows;
}

// Rings with fewer rows are not filled, and without full ones there is no second level.
bool holds_forward_rings(const sym4_run& run) {
  const int64_t half = run.width / 2;
  return run.work.outer_samples >= half * std::min(run.height, kSym4RingRows + kSym4SecondRows) &&
         run.work.intermediate_samples >= half * std::min(run.height / 2, kSym4RingRows);
}

bool holds_inverse_rings(const sym4_run& run, int wide) {
  const int64_t half = run.width / 2;
  const int64_t ring = int64_t{wide} * kSym4RingRows;
  return wide >= half && run.work.outer_samples >= ring + kSym4SecondRows * half &&
         run.work.intermediate_samples >= ring;
}

// One level has no rings in between: its passes go over whole planes.
bool inverse_of_one_level(const sym4_run& run, const buffer& band0, _Float16* out,
                          PassTimes* times) {
  const int half = run.width / 2;
  const int half_rows = run.height / 2;
  if (run.work.outer_samples < int64_t{half} * run.height) return false;
  const auto join = [&](const buffer& low, const buffer& high, _Float16* joined) {
    sym4_synthesise_plane_columns({static_cast<const _Float16*>(low.data), half, half},
                                  static_cast<const _Float16*>(high.data), joined, half_rows);
  };
  times->run(kInverseLow, [&] { join(band0, run.subbands[4], run.work.low); });
  times->run(kInverseHigh, [&] { join(run.subbands[5], run.subbands[6], run.work.high); });
  times->run(kInverseRows, [&] {
    sym4_synthesise_plane_rows({run.work.low, half, half}, run.work.high, out, run.height);
  });
  return true;
}

int64_t sample_count(const buffer& plane) {
  return plane.data != nullptr ? int64_t{plane.width} * plane.height : 0;
}

_Float16* samples_of(const buffer& plane) { return static_cast<_Float16*>(plane.data); }

}  // namespace

sym4_work work_of(const sym4_level& level) {
  return {samples_of(level.low), samples_of(level.high), samples_of(level.intermediate),
          std::min(sample_count(level.low), sample_count(level.high)),
          sample_count(level.intermediate)};
}

bool take_sym4_levels(sym4_level* levels, const sym4_plane_sizes& sizes, const buffer* scratch,
                      int32_t debug_level) {
  const StageTimer timer(debug_level);
  bool taken = true;
  for (int i = 0; i < 2; ++i) {
    plane_scratch lent = scratch_of(scratch != nullptr ? &scratch[i] : nullptr);
    sym4_level& level = levels[i];
    taken = take_plane(&level.intermediate, &lent, sizes.half_rows, sizes.half_columns) && taken;
    taken = take_plane(&level.high, &lent, sizes.rows, sizes.half_columns) && taken;
    taken = take_plane(&level.low, &lent, sizes.rows, sizes.half_columns) && taken;
  }
  if (!taken) VOREL_LOGE("Sym4Transform::setup, alloc is fail");
  timer.log("Sym4Transform::setup");
  return taken;
}

void release_sym4_levels(sym4_level* levels, int32_t debug_level) {
  const StageTimer timer(debug_level);
  for (int i = 0; i < 2; ++i) {
    for (buffer* plane : {&levels[i].low, &levels[i].high, &levels[i].intermediate}) {
      release_plane(plane);
    }
  }
  timer.log("Sym4Transform::deallocate");
}

template <typename Sample>
void sym4_analyse_plane_rows(const sym4_source<Sample>& src, const sym4_band_pair& out, span rows) {
  const ptrdiff_t half = src.width / 2;
  for (ptrdiff_t row = rows.first; row < rows.end; ++row) {
    sym4_analyse_row(src.samples + row * src.pitch, out.low + row * half, out.high + row * half,
                     src.width);
  }
}

template void sym4_analyse_plane_rows(const sym4_source<_Float16>&, const sym4_band_pair&, span);
template void sym4_analyse_plane_rows(const sym4_source<uint8_t>&, const sym4_band_pair&, span);

void sym4_analyse_plane_columns(const sym4_source<_Float16>& src, int height,
                                const sym4_band_pair& out, span rows) {
  const ptrdiff_t end = std::min(rows.end, sym4_analysis_end(height));
  for (ptrdiff_t k = std::max(rows.first, kSym4First); k < end; ++k) {
    const _Float16* window[kSym4AnalysisRows];
    for (int i = 0; i < kSym4AnalysisRows; ++i) {
      window[i] = src.samples + (2 * k - 4 + i) * src.pitch;
    }
    sym4_analyse_rows(window, out.low + k * src.width, out.high + k * src.width, src.width);
  }
}

void sym4_synthesise_plane_rows(const sym4_source<_Float16>& low, const _Float16* high,
                                _Float16* out, int height) {
  for (ptrdiff_t row = 0; row < height; ++row) {
    sym4_synthesise_row(low.samples + row * low.pitch, high + row * low.width,
                        out + 2 * row * low.width, low.width);
  }
}

void sym4_synthesise_plane_columns(const sym4_source<_Float16>& low, const _Float16* high,
                                   _Float16* out, int height) {
  const int width = low.width;
  for (ptrdiff_t k = kSym4First; k < sym4_synthesis_end(height); ++k) {
    const _Float16* lows[kSym4SynthesisRows];
    const _Float16* highs[kSym4SynthesisRows];
    for (int i = 0; i < kSym4SynthesisRows; ++i) {
      lows[i] = low.samples + (k - 2 + i) * low.pitch;
      highs[i] = high + (k - 2 + i) * width;
    }
    sym4_synthesise_rows(lows, highs, out + (2 * k - 1) * width, out + 2 * k * width, width);
  }
}

bool sym4_forward_plane(const sym4_run& run, const _Float16* src, PassTimes* times) {
  if (run.work.outer_samples == 0 || !holds_forward_rings(run)) return false;
  const int half = run.width / 2;
  sym4_forward plane{};
  plane.src = src;
  plane.width = run.width;
  plane.height = run.height;
  plane.inner = {0, run.height};
  plane.second_level = run.two_decompositions;
  const int first_band = run.two_decompositions ? 0 : 4;
  for (int i = first_band; i < first_band + (run.two_decompositions ? 7 : 4); ++i) {
    plane.bands[i] = whole_plane(run.subbands[i], i < 4 ? half / 2 : half);
  }
  plane.low = ring_in(run.work.low, half);
  plane.high = ring_in(run.work.high, half);
  plane.low_low = ring_in(run.work.intermediate, half);
  plane.second = {after_ring(run.work.low, half), half, kSym4SecondRows};
  Sym4ForwardWalk walk(plane, times);
  while (!walk.done()) walk.advance();
  return true;
}

bool sym4_inverse_plane(const sym4_run& run, const buffer& band0, _Float16* out, PassTimes* times) {
  if (run.work.outer_samples == 0) return false;
  if (!run.two_decompositions) return inverse_of_one_level(run, band0, out, times);
  const int half = run.width / 2;
  const int wide = 2 * static_cast<int>(band0.width);
  if (!holds_inverse_rings(run, wide)) return false;
  sym4_inverse plane{};
  plane.half = half;
  plane.half_rows = run.height / 2;
  plane.quarter = static_cast<int>(band0.width);
  plane.quarter_rows = static_cast<int>(band0.height);
  for (int i = 1; i < 7; ++i) {
    plane.bands[i] = whole_plane(run.subbands[i], i < 4 ? plane.quarter : half);
  }
  plane.out = {out, 2 * half, kAllRows};
  plane.low2 = ring_in(run.work.low, wide);
  plane.high2 = ring_in(run.work.high, wide);
  plane.middle = ring_in(run.work.intermediate, wide);
  plane.whole_middle = {run.work.intermediate, wide,
                        static_cast<int>(run.work.intermediate_samples / wide)};
  plane.first_low = {after_ring(run.work.low, wide), half, kSym4SecondRows};
  plane.first_high = {after_ring(run.work.high, wide), half, kSym4SecondRows};
  Sym4InverseWalk walk(plane, times);
  const row_store low = whole_plane(band0, plane.quarter);
  while (!walk.done()) {
    while (!walk.ready()) walk.join(low.row(walk.next_row()));
    walk.make_pair();
  }
  return true;
}
