// What a file's name says about the picture in it.
#ifndef VOREL_TOOLS_PICTURES_PICTURE_NAME_H_
#define VOREL_TOOLS_PICTURES_PICTURE_NAME_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/pictures/picture.h"

namespace tool {

// By the last extension, whatever its case; nothing for an unknown one.
[[nodiscard]] std::optional<FileKind> kind_of_name(const std::string& path);

// "png, jpg, …", for messages.
[[nodiscard]] const char* known_extensions();

// Sizes that the file name (not its folders) spells, likeliest first: every 1920x1080, then every
// 1920_1080. Illegal sizes are left out.
[[nodiscard]] std::vector<Size> sizes_in_name(const std::string& path);

// Parses "1920x1080" or "1920_1080"; nothing for other texts and illegal sizes.
[[nodiscard]] std::optional<Size> parse_size(const std::string& text);

// The part after the last slash; of it, what follows the last dot in small letters, and what comes
// before that dot.
[[nodiscard]] std::string base_name(const std::string& path);
[[nodiscard]] std::string extension_of(const std::string& path);
[[nodiscard]] std::string stem_of(const std::string& path);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_PICTURE_NAME_H_
