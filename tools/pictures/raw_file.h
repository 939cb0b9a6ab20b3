// Raw NV21 frames: bytes without a header, one frame per file.
#ifndef VOREL_TOOLS_PICTURES_RAW_FILE_H_
#define VOREL_TOOLS_PICTURES_RAW_FILE_H_

#include <optional>
#include <string>

#include "tools/pictures/picture.h"

namespace tool {

// The size is `size`, else one that the file's name spells and its length confirms. The library's
// dumps of frames of odd height, which end with half a chroma row, are read too.
[[nodiscard]] Nv21Frame read_raw(const std::string& path, std::optional<Size> size, Colour colour);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_RAW_FILE_H_
