#include "filters/box_filter.h"

#include <algorithm>

#include "platform/vectorize.h"

namespace {

// The box holds 2^tab_bit samples; 2^7 * 255 + 64 = 32704 is the largest rounded sum of 16 bits.
constexpr int32_t kMaxTabBit = 7;

// Columns whose sums are kept together. The sums (8 KB) stay in the first-level cache, and rows of
// this length are walked in memory order: with 1024 columns the filter took 1.7 times as long.
constexpr ptrdiff_t kBlockColumns = 4096;

// Rows above and below the centre row that belong to the box.
constexpr int32_t box_radius(int32_t tab_bit) { return ((1 << tab_bit) - 1) >> 1; }

// Smooth sample: `rounded_sum` is the box's sum with the centre counted twice, plus radius + 1.
// The minimum matters for tab_bit 0 only, where the two samples of the box are not halved.
template <int32_t kTabBit>
inline uint8_t smooth_sample(uint16_t rounded_sum) {
  const uint16_t low = static_cast<uint16_t>(rounded_sum >> kTabBit);
  return static_cast<uint8_t>(low < 255 ? low : 255);
}

// Detail sample: what the smooth sample lacks, stored with an offset of 128. Written with the
// offset taken off both, which clang knows as a saturating subtraction of bytes.
inline uint8_t detail_sample(uint8_t sample, uint8_t low) {
  const int detail = static_cast<int8_t>(sample ^ 0x80) - static_cast<int8_t>(low ^ 0x80);
  const int8_t clamped = static_cast<int8_t>(detail < -128 ? -128 : detail > 127 ? 127 : detail);
  return static_cast<uint8_t>(clamped ^ 0x80);
}

void add_row(const uint8_t* __restrict samples, ptrdiff_t columns, uint16_t* __restrict sums) {
  VOREL_VECTORIZE
  for (ptrdiff_t x = 0; x < columns; ++x) sums[x] = static_cast<uint16_t>(sums[x] + samples[x]);
}

// Writes one output row and moves the boxes one row down: the row `leaving` is their topmost one,
// `entering` the one below them. `running_sums` count every row of a box once and include the
// rounding, so that moving them takes two rows only.
template <int32_t kTabBit>
void filter_row(const uint8_t* __restrict centre, const uint8_t* __restrict leaving,
                const uint8_t* __restrict entering, ptrdiff_t columns, uint8_t* __restrict low,
                uint8_t* __restrict high, uint16_t* __restrict running_sums) {
  VOREL_VECTORIZE
  for (ptrdiff_t x = 0; x < columns; ++x) {
    const uint8_t sample = centre[x];
    const uint8_t smooth = smooth_sample<kTabBit>(static_cast<uint16_t>(running_sums[x] + sample));
    low[x] = smooth;
    high[x] = detail_sample(sample, smooth);
    running_sums[x] = static_cast<uint16_t>(running_sums[x] + entering[x] - leaving[x]);
  }
}

// One per tab_bit: 16-bit lanes shift by a constant, by a variable only in wider lanes.
constexpr decltype(&filter_row<0>) kRowFilters[kMaxTabBit + 1] = {
    filter_row<0>, filter_row<1>, filter_row<2>, filter_row<3>,
    filter_row<4>, filter_row<5>, filter_row<6>, filter_row<7>};

// Row of the plane that stands for `row`. The mirrors are the strip's first and last row, not the
// plane's: a short strip's image can lie outside the plane too and is then mirrored again.
ptrdiff_t mirror_row(const box_filter_strip& strip, ptrdiff_t row) {
  const ptrdiff_t last = strip.row_end - 1;
  // Two mirrors in one place would swap the same two rows outside for ever.
  const bool one_mirror = strip.row_first == last;
  while (row < 0 || row >= strip.row_limit) {
    const ptrdiff_t image = row < 0 ? 2 * strip.row_first - row : 2 * last - row;
    const bool outside = image < 0 || image >= strip.row_limit;
    row = one_mirror && outside ? last : image;
  }
  return row;
}

void filter_block(const box_filter_strip& strip, ptrdiff_t first_column, ptrdiff_t columns) {
  const ptrdiff_t radius = box_radius(strip.tab_bit);
  const auto filter = kRowFilters[strip.tab_bit];
  const auto source_row = [&](ptrdiff_t row) {
    return strip.src + mirror_row(strip, row) * strip.pitch + first_column;
  };

  alignas(64) uint16_t running_sums[kBlockColumns];
  std::fill_n(running_sums, columns, static_cast<uint16_t>(radius + 1));
  for (ptrdiff_t row = strip.row_first - radius; row <= strip.row_first + radius; ++row) {
    add_row(source_row(row), columns, running_sums);
  }
  uint8_t unwanted_low[kBlockColumns];
  ptrdiff_t next_low = (strip.row_first + strip.low_step - 1) / strip.low_step * strip.low_step;
  for (ptrdiff_t row = strip.row_first; row < strip.row_end; ++row) {
    const ptrdiff_t offset = row * strip.pitch + first_column;
    const bool wanted = row == next_low;
    if (wanted) next_low += strip.low_step;
    filter(strip.src + offset, source_row(row - radius), source_row(row + radius + 1), columns,
           wanted ? strip.low + offset : unwanted_low, strip.high + offset, running_sums);
  }
}

}  // namespace

void filter_strip(box_filter_strip strip) {
  strip.row_first = std::max<ptrdiff_t>(strip.row_first, 0);
  strip.row_end = std::min(strip.row_end, strip.row_limit);
  strip.tab_bit = std::clamp(strip.tab_bit, 0, kMaxTabBit);
  if (strip.row_first >= strip.row_end || strip.columns <= 0) return;
  // Blocks of nearly equal width: a narrow rest would cost as many cache lines per row as a wide
  // one.
  const ptrdiff_t blocks = (strip.columns + kBlockColumns - 1) / kBlockColumns;
  const ptrdiff_t block_columns = ((strip.columns + blocks - 1) / blocks + 63) / 64 * 64;
  for (ptrdiff_t first = 0; first < strip.columns; first += block_columns) {
    filter_block(strip, first, std::min(block_columns, strip.columns - first));
  }
}
