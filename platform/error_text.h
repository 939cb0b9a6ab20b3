// Text of an errno value, safe for several threads.
#ifndef VOREL_PLATFORM_ERROR_TEXT_H_
#define VOREL_PLATFORM_ERROR_TEXT_H_

#include <cstddef>
#include <cstring>

inline constexpr size_t kErrorTextSize = 64;

// strerror_r comes in two forms: one fills the buffer, one returns the text.
inline const char* error_text_of(int, const char* buffer) { return buffer; }
inline const char* error_text_of(const char* text, const char*) { return text; }

inline const char* error_text(int error, char (&buffer)[kErrorTextSize]) {
  buffer[0] = '\0';
  return error_text_of(strerror_r(error, buffer, sizeof(buffer)), buffer);
}

#endif  // VOREL_PLATFORM_ERROR_TEXT_H_
