// What must be said about a file that does not say it itself.
#ifndef VOREL_TOOLS_PICTURES_READ_OPTIONS_H_
#define VOREL_TOOLS_PICTURES_READ_OPTIONS_H_

#include <optional>

#include "tools/pictures/picture.h"

namespace tool {

inline constexpr int kAllFrames = 0;

struct ReadOptions {
  std::optional<Size> size = {};    // of raw frames
  std::optional<Range> range = {};  // of raw and y4m files, and of the YUV that RGB is converted to
  std::optional<Matrix> matrix = {};
  std::optional<Layout> layout = {};  // of raw frames
  std::optional<int> stride = {};     // bytes of a raw luma row
  // In a raw file, or kAllFrames. Not given: one in a file, all that come through a pipe.
  std::optional<int> frames = {};

  [[nodiscard]] Colour colour() const {
    return {range.value_or(Range::kFull), matrix.value_or(Matrix::kBt601)};
  }
};

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_READ_OPTIONS_H_
