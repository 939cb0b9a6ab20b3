// Keys and values of a tuning as people type them.
#ifndef VOREL_TOOLS_TUNING_TYPED_KEY_H_
#define VOREL_TOOLS_TUNING_TYPED_KEY_H_

#include <cstddef>
#include <string>

#include "tools/tuning/known_keys.h"

namespace tool {

struct TypedKey {
  const KnownKey* known = nullptr;
  size_t index = 0;  // of arrays that have no value for each level
};

// "MFD_UV_tuning.denoiseThrChroma1Table", also without "Table" or "_table", without the section
// where only one key has that name, and with "[2]" behind a key with several values. Other texts
// and keys that hold no number for a frame are usage errors, which say what may have been meant.
[[nodiscard]] TypedKey typed_key(const std::string& text);

// A key's name without its section and without "Table" or "_table".
[[nodiscard]] std::string short_name(const KnownKey& known);

// A number for that key. Others, fractions for an integer and numbers outside the range that makes
// sense are usage errors.
[[nodiscard]] double typed_value(const KnownKey& known, const std::string& text);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_TYPED_KEY_H_
