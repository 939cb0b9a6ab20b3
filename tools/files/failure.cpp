#include "tools/files/failure.h"

#include <cstdio>
#include <system_error>

namespace tool {

std::string errno_text(int error) { return std::generic_category().message(error); }

void warn(const std::string& text) { std::fprintf(stderr, "vorel: warning: %s\n", text.c_str()); }

}  // namespace tool
