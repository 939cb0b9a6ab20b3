// Between the planes of a JPEG picture, of any sampling, and a 4:2:0 frame.
#ifndef VOREL_TOOLS_PICTURES_JPEG_PLANES_H_
#define VOREL_TOOLS_PICTURES_JPEG_PLANES_H_

#include "tools/pictures/jpeg_codec.h"
#include "tools/pictures/picture.h"

namespace tool {

[[nodiscard]] Nv21Frame join_jpeg_planes(const JpegPlane* planes, JpegSampling sampling, Size size);

// Writes what differs between two frames of one size into planes of the first one's picture. Chroma
// of a finer sampling keeps its samples where the 4:2:0 sample did not change.
void put_into_jpeg_planes(const Nv21Frame& before, const Nv21Frame& after, JpegSampling sampling,
                          JpegPlane* planes);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_JPEG_PLANES_H_
