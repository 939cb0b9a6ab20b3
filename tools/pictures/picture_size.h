// The size of a picture without reading all of it.
#ifndef VOREL_TOOLS_PICTURES_PICTURE_SIZE_H_
#define VOREL_TOOLS_PICTURES_PICTURE_SIZE_H_

#include <optional>
#include <string>

#include "tools/pictures/read_options.h"

namespace tool {

// As the header of a PNG, JPEG or y4m file tells it, or --size and the name of a raw file. Nothing
// when the file cannot be read or its first megabyte does not say.
[[nodiscard]] std::optional<Size> size_of_file(const std::string& path, const ReadOptions& options);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_PICTURE_SIZE_H_
