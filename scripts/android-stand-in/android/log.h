// The log's interface as Android 11 has it, over Debian's older header.
#ifndef VOREL_ANDROID_STAND_IN_LOG_H_
#define VOREL_ANDROID_STAND_IN_LOG_H_

#define __android_log_set_logger debian_log_set_logger
#define __android_log_stderr_logger debian_log_stderr_logger
#define __android_logger_function debian_logger_function
#include_next <android/log.h>
#undef __android_log_set_logger
#undef __android_log_stderr_logger
#undef __android_logger_function

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

struct __android_log_message {
  size_t struct_size;
  int32_t buffer_id;
  int32_t priority;
  const char* tag;
  const char* file;
  uint32_t line;
  const char* message;
};
typedef void (*__android_logger_function)(const struct __android_log_message* message);
void __android_log_set_logger(__android_logger_function logger);
void __android_log_stderr_logger(const struct __android_log_message* message);

#ifdef __cplusplus
}
#endif

#endif  // VOREL_ANDROID_STAND_IN_LOG_H_
