#include "tools/files/failure.h"

#include <cstdio>
#include <system_error>

#include "tools/files/printable.h"

namespace tool {

std::string errno_text(int error) { return std::generic_category().message(error); }

void complain(const std::string& text) {
  std::fprintf(stderr, "vorel: %s\n", printable(text).c_str());
}

void warn(const std::string& text) { complain("warning: " + text); }

}  // namespace tool
