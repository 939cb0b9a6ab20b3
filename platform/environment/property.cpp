#include "platform/property.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

int property_get(const char* key, char* value, const char* default_value) {
  char name[PROPERTY_VALUE_MAX];
  size_t length = 0;
  for (; key[length] != '\0' && length + 1 < sizeof(name); ++length) {
    name[length] = key[length] == '.'
                       ? '_'
                       : static_cast<char>(std::toupper(static_cast<unsigned char>(key[length])));
  }
  name[length] = '\0';
  // Nobody sets variables while handles are opened. NOLINTNEXTLINE(concurrency-mt-unsafe)
  const char* found = std::getenv(name);
  if (found == nullptr) found = default_value != nullptr ? default_value : "";
  const int written = std::snprintf(value, PROPERTY_VALUE_MAX, "%s", found);
  return written < PROPERTY_VALUE_MAX ? written : PROPERTY_VALUE_MAX - 1;
}
