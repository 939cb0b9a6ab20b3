// JPEG pictures. They hold full-range BT.601 YUV already, so 4:2:0 files are read and written
// without any colour conversion.
#ifndef VOREL_TOOLS_PICTURES_JPEG_FILE_H_
#define VOREL_TOOLS_PICTURES_JPEG_FILE_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/pictures/picture.h"

namespace tool {

inline constexpr int kDefaultJpegQuality = 95;

[[nodiscard]] bool is_jpeg(const std::vector<uint8_t>& bytes);

// A full-range BT.601 frame, or RGB for files of unusual sampling. Cut files throw an input error
// that names `path`; lesser damage is a warning.
[[nodiscard]] Picture decode_jpeg(const std::string& path, std::vector<uint8_t> bytes);

// 4:2:0. `frame` must be full-range BT.601.
[[nodiscard]] std::vector<uint8_t> encode_jpeg(const Nv21Frame& frame, int quality,
                                               const Metadata& metadata);

struct JpegRewrite {
  std::vector<uint8_t> bytes;
  std::vector<std::string> losses;  // as those of an Origin
};

// The file with other pixels, but its own tables, sampling and markers. Blocks that did not change
// are taken over as they are. Nothing for files whose samples are no YUV planes.
[[nodiscard]] std::optional<JpegRewrite> rewrite_jpeg(const std::vector<uint8_t>& original,
                                                      const Nv21Frame& frame);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_JPEG_FILE_H_
