// Names of files and other foreign text, made fit for a terminal.
#ifndef VOREL_TOOLS_FILES_PRINTABLE_H_
#define VOREL_TOOLS_FILES_PRINTABLE_H_

#include <string>

namespace tool {

// The text with control characters and bytes that are no UTF-8 written as \n, \t or \x1b: a file's
// name may hold a terminal's commands.
[[nodiscard]] std::string printable(const std::string& text);

}  // namespace tool

#endif  // VOREL_TOOLS_FILES_PRINTABLE_H_
