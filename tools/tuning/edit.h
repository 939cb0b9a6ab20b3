// Changes to the text of a tuning file.
#ifndef VOREL_TOOLS_TUNING_EDIT_H_
#define VOREL_TOOLS_TUNING_EDIT_H_

#include <string>

namespace tool {

// The tuning with the spatial path, the wavelet path or both switched off; everything else stays
// as it is. Only the last object counts, as for the library. Throws an input error that names
// `path` when the text is no tuning.
[[nodiscard]] std::string with_paths_off(const std::string& path, const std::string& text,
                                         bool spatial_off, bool wavelet_off);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_EDIT_H_
