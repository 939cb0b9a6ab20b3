// What PNG files carry besides the picture, in their chunks.
#ifndef VOREL_TOOLS_PICTURES_PNG_METADATA_H_
#define VOREL_TOOLS_PICTURES_PNG_METADATA_H_

#include <png.h>

#include <string>
#include <vector>

#include "tools/pictures/picture.h"

namespace tool {

// After png_read_end.
[[nodiscard]] Metadata read_png_metadata(png_structp png, png_infop info);

struct PngText {
  std::string key;
  std::string text;
  int compression;  // PNG_TEXT_COMPRESSION_* or PNG_ITXT_COMPRESSION_*
};
[[nodiscard]] std::vector<PngText> png_texts(const Metadata& metadata);

// Before png_write_info. What libpng does not like is left out; it may leave by longjmp.
void set_png_metadata(png_structp png, png_infop info, const Metadata& metadata,
                      std::vector<PngText>& texts);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_PNG_METADATA_H_
