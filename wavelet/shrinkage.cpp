#include "wavelet/shrinkage.h"

#include <cstddef>
#include <cstdint>

#include "platform/log.h"
#include "wavelet/noise_rows.h"

namespace {

constexpr int kDetailBands = 3;  // of one Symlet level

// Shrinks the three detail bands of one level. Neighbours of one size, ordinarily all of them,
// share their noise multipliers.
void shrink_level(const buffer* details, const _Float16* thr, radial_model model, int step) {
  shrink_band bands[kDetailBands];
  for (int i = 0; i < kDetailBands; ++i) {
    bands[i] = {static_cast<_Float16*>(details[i].data), make_shrink_gain(thr[i], kSymletScale)};
  }
  for (int first = 0, end = 0; first < kDetailBands; first = end) {
    const buffer& size = details[first];
    while (end < kDetailBands && details[end].height == size.height &&
           details[end].width == size.width) {
      ++end;
    }
    const int rows = static_cast<int>(size.height);
    const int cols = static_cast<int>(size.width);
    const radial_noise noise = make_radial_noise(model.slope, model.cap, rows, cols, step);
    shrink_bands(&bands[first], end - first, noise, rows, cols);
  }
}

}  // namespace

void make_haar_gains(_Float16 thr, shrink_gain (&gains)[kHaarBands]) {
  for (int i = 0; i < kHaarBands; ++i) {
    gains[i] = make_shrink_gain(thr, i == 0 ? kHaarLowScale : kHaarScale);
  }
}

haar_rows take_haar_rows(RowArena* arena, int width) {
  haar_rows rows{};
  rows.low = arena->take(width, kHaarSplitKept);
  rows.high = arena->take(width, kHaarSplitKept);
  rows.directional_low = arena->take(width, kHaarKept);
  rows.directional_high = arena->take(width, kHaarKept);
  for (row_store& band : rows.bands) band = arena->take(width, kHaarKept);
  rows.temporary = arena->take(width, kHaarTemporaryRows);
  return rows;
}

bool denoise_low_band(const buffer& band, plane_scratch* scratch, _Float16 thr, radial_model model,
                      PassTimes* times) {
  const int width = static_cast<int>(band.width);
  const int height = static_cast<int>(band.height);
  if (width < 1 || height < 1) return true;
  // Counts the memory, then cuts it up.
  const auto take_rows = [&](RowArena* arena, haar_rows* rows, row_store* noise) {
    *rows = take_haar_rows(arena, width);
    *noise = arena->take(width, kNoiseRows);
  };
  haar_rows rows{};
  row_store noise_rows{};
  RowArena count(nullptr);
  take_rows(&count, &rows, &noise_rows);
  buffer memory{};
  if (!take_plane(&memory, scratch, 1, static_cast<uint32_t>(count.samples()))) {
    VOREL_LOGE("Denoise::haarL2Denoise, alloc is fail");
    return false;
  }
  RowArena arena(memory.data);
  take_rows(&arena, &rows, &noise_rows);

  shrink_gain gains[kHaarBands];
  make_haar_gains(thr, gains);
  HaarWalk walk(width, height, gains, rows, times);
  NoiseRows noise(make_radial_noise(model.slope, model.cap, height, width, kLevel2Step), width,
                  noise_rows);
  const row_store plane = whole_plane(band, width);
  for (int row = 0; row < height; ++row) {
    while (!walk.ready(row)) walk.push(plane.row(walk.next_row()), &noise);
    walk.make(row, plane.row(row), &noise);
  }
  release_plane(&memory);
  return true;
}

bool denoise_subbands(const buffer* subbands, plane_scratch* scratch, _Float16* thr,
                      radial_model model, PassTimes* times) {
  if (thr[0] < 0) thr[0] = -thr[0];
  const bool done = denoise_low_band(subbands[0], scratch, thr[0], model, times);
  times->run(kShrinkDetails, [&] {
    shrink_level(&subbands[1], &thr[1], model, kLevel2Step);
    shrink_level(&subbands[4], &thr[4], model, kLevel1Step);
  });
  return done;
}
