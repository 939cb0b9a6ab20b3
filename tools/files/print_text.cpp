#include "tools/files/print_text.h"

#include <cstdarg>
#include <cstdio>

namespace tool {

std::string print_text(const char* pattern, ...) {
  char text[512];
  va_list values;
  va_start(values, pattern);
  std::vsnprintf(text, sizeof(text), pattern, values);
  va_end(values);
  return text;
}

}  // namespace tool
