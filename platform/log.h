// Log lines with the library's tag.
#ifndef VOREL_PLATFORM_LOG_H_
#define VOREL_PLATFORM_LOG_H_

#include <android/log.h>

#define VOREL_LOG_TAG "VOREL"

// The format must be a literal: log text never serves as a format.
#define VOREL_LOGD(...) \
  static_cast<void>(__android_log_print(ANDROID_LOG_DEBUG, VOREL_LOG_TAG, __VA_ARGS__))
#define VOREL_LOGI(...) \
  static_cast<void>(__android_log_print(ANDROID_LOG_INFO, VOREL_LOG_TAG, __VA_ARGS__))
#define VOREL_LOGE(...) \
  static_cast<void>(__android_log_print(ANDROID_LOG_ERROR, VOREL_LOG_TAG, __VA_ARGS__))

#endif  // VOREL_PLATFORM_LOG_H_
