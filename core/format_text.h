// Formatting into the small text buffers of the handle and the run driver.
#ifndef VOREL_CORE_FORMAT_TEXT_H_
#define VOREL_CORE_FORMAT_TEXT_H_

#include <cstdarg>
#include <cstddef>
#include <cstdio>

inline constexpr size_t kTextSize = 128;

// Formats into a buffer of kTextSize bytes, cut to fit. Returns whether everything fitted.
__attribute__((format(printf, 2, 3))) inline bool format_text(char (&buffer)[kTextSize],
                                                              const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(buffer, sizeof(buffer), format, arguments);
  va_end(arguments);
  return length >= 0 && static_cast<size_t>(length) < sizeof(buffer);
}

#endif  // VOREL_CORE_FORMAT_TEXT_H_
