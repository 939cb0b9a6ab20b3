// The exported functions of the spatial filters. Each fills a record and goes in; nothing inside
// calls them.
#include "filters/bilateral_area.h"
#include "filters/bilateral_weights.h"
#include "filters/box_filter.h"
#include "vorel/filters.h"

void* box_filter_col(void* job) {
  filter_strip(box_strip(*static_cast<const box_filter_job*>(job)));
  return nullptr;
}

void box_filter_col_neon(uint8_t* src, uint8_t* low, uint8_t* high, int32_t width,
                         int32_t /*height*/, int32_t /*flags*/, int32_t row_limit,
                         int32_t row_first, int32_t row_end, struct boxfiltering_tuning* tuning) {
  filter_strip(
      {src, low, high, width, width / 8 * 8, row_limit, row_first, row_end, tuning->tab_bit});
}

void bilateral_filter(uint8_t* src, uint8_t* dst, int32_t height, int32_t width, int32_t spanRow,
                      int32_t spanCol, struct bilateralfiltering_tuning* tuning) {
  filter_plane({src, dst, height, width, spanRow, spanCol, tuning});
}

void bilateral_filter_center_neon(uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                                  int32_t top, int32_t bottom, int32_t left, int32_t right,
                                  int32_t spanRow, int32_t spanCol,
                                  struct bilateralfiltering_tuning* tuning) {
  filter_interior({src, dst, height, width, spanRow, spanCol, tuning}, {top, bottom, left, right},
                  RangeWeightSource::kPolynomial);
}

void bilateral_filter_opt(uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                          int32_t spanRow, int32_t spanCol,
                          struct bilateralfiltering_tuning* tuning) {
  filter_plane({src, dst, height, width, spanRow, spanCol, tuning}, RangeWeightSource::kStored);
}

void bilateral_filter_opt_center_neon(uint8_t* src, uint8_t* dst, int32_t height, int32_t width,
                                      int32_t top, int32_t bottom, int32_t left, int32_t right,
                                      int32_t spanRow, int32_t spanCol,
                                      struct bilateralfiltering_tuning* tuning) {
  filter_interior({src, dst, height, width, spanRow, spanCol, tuning}, {top, bottom, left, right},
                  RangeWeightSource::kStored);
}

void update_bilateral_filter_tuning(struct bilateralfiltering_tuning* tuning) {
  build_stored_weights(tuning);
}
