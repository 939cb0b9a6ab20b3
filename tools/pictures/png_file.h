// PNG pictures.
#ifndef VOREL_TOOLS_PICTURES_PNG_FILE_H_
#define VOREL_TOOLS_PICTURES_PNG_FILE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "tools/pictures/picture.h"

namespace tool {

[[nodiscard]] bool is_png(const std::vector<uint8_t>& bytes);

// Grey, palette and 16-bit pictures become 8-bit RGB and transparency is dropped, which the
// origin's losses tell. Damaged and cut files throw an input error that names `path`.
[[nodiscard]] Picture decode_png(const std::string& path, std::vector<uint8_t> bytes);

[[nodiscard]] std::vector<uint8_t> encode_png(const RgbImage& image, const Metadata& metadata);

// One byte per pixel, dense rows.
[[nodiscard]] std::vector<uint8_t> encode_grey_png(const std::vector<uint8_t>& samples, Size size);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_PNG_FILE_H_
