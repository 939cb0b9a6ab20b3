// Which pictures belong together: from a manifest, or from the pictures' names.
#ifndef VOREL_TOOLS_TUNE_MANIFEST_H_
#define VOREL_TOOLS_TUNE_MANIFEST_H_

#include <string>
#include <vector>

#include "tools/tune/capture.h"

namespace tool {

// Reads a .csv or .json manifest; paths in it start at its folder. Lines of one scene and noise
// index without a clean picture are one burst. Input errors name the file and the line or entry.
[[nodiscard]] std::vector<CaptureSource> read_manifest(const std::string& path);
[[nodiscard]] bool is_manifest(const std::string& path);

// Sorts pictures by what their names say: <scene>_n<noise index>[_<frame>].<kind> are noisy (or
// iso instead of n), <scene>_clean.<kind> is their truth; without it the frames of one noise index
// are a burst. Usage errors name the picture whose name does not fit.
[[nodiscard]] std::vector<CaptureSource> sources_by_name(const std::vector<std::string>& pictures);

// Pictures of a folder, in the order of their names.
[[nodiscard]] std::vector<std::string> pictures_in(const std::string& folder);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_MANIFEST_H_
