#include "filters/bilateral_tile.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "platform/byte_lanes.h"
#include "platform/numeric.h"
#include "platform/vectorize.h"
#include "platform/wraps.h"

namespace {

// The filter's last step. The weights may have wrapped to anything, zero included.
inline float quotient(uint32_t value_sum, uint32_t weight_sum) {
  return static_cast<float>(static_cast<int32_t>(value_sum)) /
         static_cast<float>(static_cast<int32_t>(weight_sum));
}

inline uint8_t interior_mean(uint32_t value_sum, uint32_t weight_sum) {
  return clamp_u8(float_to_int32(quotient(value_sum, weight_sum) + 0.5f));
}

// One half is added in single precision in the plane's interior and in double precision at its
// border. Only the quotient 0.5 - 2^-25 tells: 1 in the interior, 0 at the border.
inline uint8_t border_mean(uint8_t interior, uint32_t value_sum, uint32_t weight_sum) {
  const bool told = interior == 1 && quotient(value_sum, weight_sum) == 0x1.fffffep-2f;
  return told ? uint8_t{0} : interior;
}

// Sums of one row of the tile over one run of taps, with one byte of the range weights:
// `weights` in 16 bits as runs are short, `values` up to 257 * 255 * 255.
struct tap_run_sums {
  HalfLanes weights{};
  WordLanes values{};
};

inline void add_tap(ByteLanes centre, ByteLanes neighbour, const weight_table& table,
                    ByteTable entries, uint8_t largest_difference, tap_run_sums& sums) {
  const ByteLanes difference = __builtin_elementwise_min(absolute_difference(centre, neighbour),
                                                         ByteLanes{} + largest_difference);
  const HalfLanes weight =
      __builtin_convertvector(look_up(entries, difference - table.first_difference), HalfLanes);
  sums.weights += weight;
  // 255 * 255 fits 16 bits.
  const HalfLanes product = weight * __builtin_convertvector(neighbour, HalfLanes);
  sums.values += __builtin_convertvector(product, WordLanes);
}

template <typename Lanes>
inline void add_to_memory(const Lanes& lanes, uint32_t* sums) {
  WordLanes total;
  __builtin_memcpy(&total, sums, sizeof total);
  total += lanes;
  __builtin_memcpy(sums, &total, sizeof total);
}

// Adds what the window's listed taps give with one table to the sums of `rows` rows.
void add_table(const tile_workspace& work, const weight_table& table, uint8_t largest_difference,
               int32_t rows, tile_sums* sums) {
  const ByteTable entries = load_table(table.entries);
  for (int32_t y = 0; y < rows; ++y) {
    const ByteLanes centre = load_lanes(work.centre.rows[y]);
    const uint8_t* window = work.window.rows[y];
    for (int32_t r = 0; r < work.taps.run_count; ++r) {
      const tap_run& run = work.taps.runs[r];
      tap_run_sums run_sums;
      for (int32_t tap = run.first; tap < run.end; ++tap) {
        add_tap(centre, load_lanes(window + work.taps.offsets[tap]), table, entries,
                largest_difference, run_sums);
      }
      const uint32_t scale = run.spatial_weight << table.shift;
      add_to_memory(__builtin_convertvector(run_sums.weights, WordLanes) * scale, sums->weight[y]);
      add_to_memory(run_sums.values * scale, sums->value[y]);
    }
  }
}

// The tuning is a copy, so that the sums' stores cannot reach it.
VOREL_WRAPS void add_polynomial_tap(const uint8_t* __restrict centre,
                                    const uint8_t* __restrict neighbour,
                                    bilateralfiltering_tuning tuning, uint32_t spatial_weight,
                                    uint32_t* __restrict weight_sums,
                                    uint32_t* __restrict value_sums) {
  VOREL_VECTORIZE
  for (int32_t x = 0; x < kLanes; ++x) {
    const int32_t difference = std::abs(centre[x] - neighbour[x]);
    const uint32_t weight =
        spatial_weight * static_cast<uint32_t>(polynomial_weight(tuning, difference));
    weight_sums[x] += weight;
    value_sums[x] += weight * neighbour[x];
  }
}

// Adds what the window's listed taps give with weights from the polynomial.
void add_polynomial(const tile_workspace& work, const bilateralfiltering_tuning& tuning,
                    int32_t rows, tile_sums* sums) {
  for (int32_t y = 0; y < rows; ++y) {
    const uint8_t* window = work.window.rows[y];  // taps lie in the rows below it too
    for (int32_t r = 0; r < work.taps.run_count; ++r) {
      const tap_run& run = work.taps.runs[r];
      for (int32_t tap = run.first; tap < run.end; ++tap) {
        add_polynomial_tap(work.centre.rows[y], window + work.taps.offsets[tap], tuning,
                           run.spatial_weight, sums->weight[y], sums->value[y]);
      }
    }
  }
}

// One row of a tile; its columns [first, end) are interior.
void store_row(const uint32_t* __restrict value_sums, const uint32_t* __restrict weight_sums,
               int32_t cols, int32_t first, int32_t end, uint8_t* __restrict dst) {
  VOREL_VECTORIZE
  for (int32_t x = 0; x < cols; ++x) dst[x] = interior_mean(value_sums[x], weight_sums[x]);
  for (int32_t x = 0; x < first; ++x) dst[x] = border_mean(dst[x], value_sums[x], weight_sums[x]);
  for (int32_t x = end; x < cols; ++x) dst[x] = border_mean(dst[x], value_sums[x], weight_sums[x]);
}

// The sum of weights starts at 1 so that, short of wrapping, it is never 0.
void reset_sums(int32_t rows, tile_sums* sums) {
  for (int32_t y = 0; y < rows; ++y) {
    std::fill_n(sums->weight[y], kLanes, 1U);
    std::fill_n(sums->value[y], kLanes, 0U);
  }
}

}  // namespace

void filter_tile(const bilateral_plane& plane, const tile_area& area, const plane_area& interior,
                 const range_weights& weights, tile_workspace* work) {
  const source_plane source{plane.src, plane.height, plane.width};
  reset_sums(area.rows, &work->sums);
  fill_tile(source, area, &work->centre);

  for (int32_t part_row = -plane.span_row; part_row <= plane.span_row; part_row += kPartSize) {
    for (int32_t part_col = -plane.span_col; part_col <= plane.span_col; part_col += kPartSize) {
      const window_part part = {part_row, std::min(part_row + kPartSize, plane.span_row + 1),
                                part_col, std::min(part_col + kPartSize, plane.span_col + 1)};
      if (part != work->taps.part) list_taps(part, kTilePitch, &work->taps);
      fill_tile(source,
                {area.row + part.row_first, area.col + part.col_first, area.rows + part.rows() - 1,
                 area.cols + part.cols() - 1},
                &work->window);
      if (weights.polynomial != nullptr) {
        add_polynomial(*work, *weights.polynomial, area.rows, &work->sums);
      }
      for (int32_t i = 0; i < weights.table_count; ++i) {
        add_table(*work, weights.tables[i], weights.largest_difference, area.rows, &work->sums);
      }
    }
  }
  const int32_t first = std::clamp(interior.col_first - area.col, 0, area.cols);
  const int32_t end = std::clamp(interior.col_end - area.col, first, area.cols);
  for (int32_t row = area.row; row < area.row + area.rows; ++row) {
    const int32_t y = row - area.row;
    const bool inside = row >= interior.row_first && row < interior.row_end;
    store_row(work->sums.value[y], work->sums.weight[y], area.cols, inside ? first : area.cols,
              inside ? end : area.cols,
              plane.dst + static_cast<ptrdiff_t>(row) * plane.width + area.col);
  }
}
