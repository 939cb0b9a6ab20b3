// Conversion between RGB and YUV 4:2:0; all of it is done by libyuv.
//
// To YUV: each chroma sample is the mean of its 2 x 2 pixels. To RGB: chroma is interpolated
// bilinearly between sample centres, which loses about 1 dB less than repeating samples.
// Conversions to RGB give the same bytes on every machine. Conversions to YUV may differ by one or
// two chroma steps between processors, because libyuv's code for them has different precision.
#ifndef VOREL_TOOLS_PICTURES_COLOUR_H_
#define VOREL_TOOLS_PICTURES_COLOUR_H_

#include "tools/pictures/picture.h"

namespace tool {

// Throws for BT.709: libyuv converts from it, not to it.
[[nodiscard]] Nv21Frame rgb_to_nv21(const RgbImage& image, Colour colour);

[[nodiscard]] RgbImage nv21_to_rgb(const Nv21Frame& frame);

// The picture's pixels in one form; a frame that is in `colour` already is not touched.
[[nodiscard]] Nv21Frame as_nv21(const Picture& picture, Colour colour);
[[nodiscard]] RgbImage as_rgb(const Picture& picture);

// Interleaves and separates chroma planes of dense rows.
[[nodiscard]] Nv21Frame nv21_from_planes(int width, int height, const uint8_t* y, const uint8_t* u,
                                         const uint8_t* v);
void join_chroma(const uint8_t* u, const uint8_t* v, Nv21Frame& frame);
struct ChromaPlanes {
  std::vector<uint8_t> u;
  std::vector<uint8_t> v;
};
[[nodiscard]] ChromaPlanes split_chroma(const Nv21Frame& frame);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_COLOUR_H_
