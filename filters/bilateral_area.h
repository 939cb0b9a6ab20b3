// The bilateral filter on an area of a plane.
#ifndef VOREL_FILTERS_BILATERAL_AREA_H_
#define VOREL_FILTERS_BILATERAL_AREA_H_

#include <cstdint>

#include "vorel/tuning.h"

// A dense plane and its equally large output; the window's half extents.
struct BilateralPlane {
  const uint8_t* src;
  uint8_t* dst;
  int32_t height;
  int32_t width;
  int32_t span_row;
  int32_t span_col;
  const bilateralfiltering_tuning* tuning;
};

// Rows and columns of the plane's edges that are left alone.
struct PlaneMargins {
  int32_t top = 0;
  int32_t bottom = 0;
  int32_t left = 0;
  int32_t right = 0;
};

// Where a range weight is taken from.
enum class RangeWeightSource { kPolynomial, kStored };

void filter_area(const BilateralPlane& plane, const PlaneMargins& margins,
                 RangeWeightSource source);

// The whole plane, with the weights that the threshold asks for.
void filter_plane(const BilateralPlane& plane);

#endif  // VOREL_FILTERS_BILATERAL_AREA_H_
