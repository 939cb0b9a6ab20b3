// Pictures next to each other.
#ifndef VOREL_TOOLS_PICTURES_SIDE_BY_SIDE_H_
#define VOREL_TOOLS_PICTURES_SIDE_BY_SIDE_H_

#include <optional>
#include <vector>

#include "tools/pictures/picture.h"

namespace tool {

struct Crop {
  int x;
  int y;
  int width;
  int height;
};

inline constexpr int kMaxZoom = 32;

// The cut-out of each picture, enlarged `zoom` times by repeating pixels, from left to right with a
// grey gap between. Pictures have the same size. A cut-out that leaves them, or a result that is
// too large, is a usage error.
[[nodiscard]] RgbImage side_by_side(const std::vector<const RgbImage*>& images,
                                    std::optional<Crop> crop, int zoom);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_SIDE_BY_SIDE_H_
