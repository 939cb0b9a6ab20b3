// The bilateral filter on an area of a plane.
#ifndef VOREL_FILTERS_BILATERAL_AREA_H_
#define VOREL_FILTERS_BILATERAL_AREA_H_

#include <cstdint>

#include "vorel/tuning.h"

// A dense plane and its equally large output; the window's half extents.
struct bilateral_plane {
  const uint8_t* src;
  uint8_t* dst;
  int32_t height;
  int32_t width;
  int32_t span_row;
  int32_t span_col;
  const bilateralfiltering_tuning* tuning;
};

// Rows and columns at the plane's edges.
struct plane_margins {
  int32_t top;
  int32_t bottom;
  int32_t left;
  int32_t right;
};

// Where a range weight is taken from.
enum class RangeWeightSource { kPolynomial, kStored };

// What lies inside the margins, all of it rounded as the interior is.
void filter_interior(const bilateral_plane& plane, const plane_margins& margins,
                     RangeWeightSource source);

// The whole plane.
void filter_plane(const bilateral_plane& plane, RangeWeightSource source);

// The same with the weights that the threshold asks for.
void filter_plane(const bilateral_plane& plane);

#endif  // VOREL_FILTERS_BILATERAL_AREA_H_
