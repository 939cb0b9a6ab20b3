// The command's frames as the noise estimate takes them.
#ifndef VOREL_TOOLS_MEASURE_FRAME_VIEW_H_
#define VOREL_TOOLS_MEASURE_FRAME_VIEW_H_

#include "tools/measure/chroma_noise.h"
#include "tools/pictures/picture.h"

namespace tool {

// V comes first in a pair. The view lives as long as the frame.
[[nodiscard]] inline FrameView view_of(const Nv21Frame& frame) {
  return {frame.y(),   static_cast<size_t>(frame.width),
          frame.vu(),  static_cast<size_t>(frame.chroma_stride()),
          frame.width, frame.height};
}

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_FRAME_VIEW_H_
