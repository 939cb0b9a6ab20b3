// Dump files as pictures.
#ifndef VOREL_TOOLS_LIBRARY_DUMP_PICTURE_H_
#define VOREL_TOOLS_LIBRARY_DUMP_PICTURE_H_

#include <cstdint>
#include <vector>

#include "tools/library/dump_names.h"
#include "tools/pictures/picture.h"

namespace tool {

// The frame in a dump whose content is a frame.
[[nodiscard]] Nv21Frame read_dump_frame(const DumpFile& file);

// Any dump that is not damaged as a picture in colour, shown as below.
[[nodiscard]] RgbImage dump_image(const DumpFile& file);

// Any dump that is not damaged, as a PNG file: frames in colour, interleaved chroma as colour on
// mid grey, planes in grey. Wavelet low bands are divided by 4; details are shown 8 times as strong
// around mid grey. Samples that are no number are black in planes, mid grey in details.
[[nodiscard]] std::vector<uint8_t> dump_png(const DumpFile& file);

// Value of an IEEE half-precision number.
[[nodiscard]] float half_value(uint16_t bits);

}  // namespace tool

#endif  // VOREL_TOOLS_LIBRARY_DUMP_PICTURE_H_
