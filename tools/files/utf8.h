// Characters of UTF-8 texts.
#ifndef VOREL_TOOLS_FILES_UTF8_H_
#define VOREL_TOOLS_FILES_UTF8_H_

#include <cstddef>
#include <string_view>

namespace tool {

// Length in bytes of the character at `at`, 0 when none starts there: no overlong forms, no
// surrogates, nothing above U+10FFFF.
[[nodiscard]] size_t utf8_length(std::string_view text, size_t at);

}  // namespace tool

#endif  // VOREL_TOOLS_FILES_UTF8_H_
