// Changes to the text of a tuning file.
#ifndef VOREL_TOOLS_TUNING_EDIT_H_
#define VOREL_TOOLS_TUNING_EDIT_H_

#include <string>

#include "tools/tuning/typed_key.h"

namespace tool {

// The tuning with the spatial path, the wavelet path or both switched off; everything else stays
// as it is. Only the last object counts, as for the library. Throws an input error that names
// `path` when the text is no tuning.
[[nodiscard]] std::string with_paths_off(const std::string& path, const std::string& text,
                                         bool spatial_off, bool wavelet_off);

// The same with one value changed: of a table at every level, so that each frame gets just it.
[[nodiscard]] std::string with_value(const std::string& path, const std::string& text,
                                     const TypedKey& key, double value);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_EDIT_H_
