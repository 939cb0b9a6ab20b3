// Pictures at other sizes.
#ifndef VOREL_TOOLS_PICTURES_SCALED_H_
#define VOREL_TOOLS_PICTURES_SCALED_H_

#include "tools/pictures/picture.h"

namespace tool {

// The picture with a longer side of `side`. Each pixel of a smaller one is the mean of those it
// stands for; a larger one repeats pixels.
[[nodiscard]] RgbImage scaled_to(const RgbImage& image, int side);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_SCALED_H_
