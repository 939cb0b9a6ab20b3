#include "wavelet/chroma_rows.h"

#include <algorithm>

#include "wavelet/noise_rows.h"
#include "wavelet/shrinkage.h"

namespace {

// The inverse walk's pair k reads the details from row k - 2 on. By then the forward walk is at row
// k + 16: a low band's row needs three rows of the Haar transform after it and two of the second
// level, each of them two rows of the first, and three more.
constexpr int kDetailRowsKept = 20;
constexpr int kSecondRowsKept = 8;

plane_rows take_plane_rows(RowArena* arena, const buffer& plane) {
  const subband_sizes sizes = subband_sizes_of(plane);
  const int half = sizes.half_columns;
  const int quarter = sizes.quarter_columns;
  plane_rows rows{};
  sym4_forward& forward = rows.forward;
  forward.src = static_cast<const _Float16*>(plane.data);
  forward.width = static_cast<int>(plane.width);
  forward.height = static_cast<int>(plane.height);
  forward.inner = {static_cast<int>(plane.padY), static_cast<int>(plane.padY + plane.innerHeight)};
  forward.second_level = true;
  for (int band = 0; band < kSubbands; ++band) {
    forward.bands[band] =
        band < 4 ? arena->take(quarter, kSecondRowsKept) : arena->take(half, kDetailRowsKept);
  }
  for (row_store* ring : {&forward.low, &forward.high, &forward.low_low}) {
    *ring = arena->take(half, kSym4RingRows);
  }
  forward.second = arena->take(half, kSym4SecondRows);
  rows.haar = take_haar_rows(arena, quarter);
  rows.low_row = arena->take(quarter, 1);

  sym4_inverse& inverse = rows.inverse;
  inverse.half = half;
  inverse.half_rows = sizes.half_rows;
  inverse.quarter = quarter;
  inverse.quarter_rows = sizes.quarter_rows;
  std::copy_n(forward.bands, kSubbands, inverse.bands);
  inverse.out = arena->take(2 * half, 2);
  for (row_store* ring : {&inverse.low2, &inverse.high2, &inverse.middle}) {
    *ring = arena->take(2 * quarter, kSym4RingRows);
  }
  inverse.whole_middle = inverse.middle;
  inverse.first_low = arena->take(half, kSym4SecondRows);
  inverse.first_high = arena->take(half, kSym4SecondRows);
  return rows;
}

}  // namespace

subband_sizes subband_sizes_of(const buffer& plane) {
  const int half_columns = static_cast<int>(plane.width / 2);
  const int half_rows = static_cast<int>(plane.height / 2);
  return {half_columns, half_rows, (half_columns + 1) / 2, (half_rows + 1) / 2};
}

band_rows take_band_rows(RowArena* arena, const buffer* planes) {
  const subband_sizes sizes = subband_sizes_of(planes[0]);
  return {{take_plane_rows(arena, planes[0]), take_plane_rows(arena, planes[1])},
          arena->take(sizes.half_columns, kNoiseRows),
          arena->take(sizes.quarter_columns, kNoiseRows)};
}
