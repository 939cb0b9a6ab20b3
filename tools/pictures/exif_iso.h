// The ISO sensitivity that a picture's Exif data names.
#ifndef VOREL_TOOLS_PICTURES_EXIF_ISO_H_
#define VOREL_TOOLS_PICTURES_EXIF_ISO_H_

#include <cstdint>
#include <optional>
#include <vector>

namespace tool {

// `exif` is a TIFF structure as Metadata has it. Nothing when it is damaged or names none.
[[nodiscard]] std::optional<int> exif_iso(const std::vector<uint8_t>& exif);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_EXIF_ISO_H_
