// Kinds of pictures and video that the command does not read but others can convert.
#ifndef VOREL_TOOLS_PICTURES_FOREIGN_KIND_H_
#define VOREL_TOOLS_PICTURES_FOREIGN_KIND_H_

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

// "TIFF; convert it first: convert x.tif x.png", by the extension of the name or, when bytes are
// given, by the first of them; empty for what is not known either.
[[nodiscard]] std::string foreign_kind(const std::string& path);
[[nodiscard]] std::string foreign_kind(const std::string& path, const std::vector<uint8_t>& bytes);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_FOREIGN_KIND_H_
