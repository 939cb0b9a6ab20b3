// Short texts by printf's rules.
#ifndef VOREL_TOOLS_FILES_PRINT_TEXT_H_
#define VOREL_TOOLS_FILES_PRINT_TEXT_H_

#include <string>

namespace tool {

// What does not fit into 511 bytes is cut.
[[nodiscard]] [[gnu::format(printf, 1, 2)]] std::string print_text(const char* pattern, ...);

}  // namespace tool

#endif  // VOREL_TOOLS_FILES_PRINT_TEXT_H_
