// Where log lines go, under both forms of the log's interface.
#ifndef VOREL_TESTS_SUPPORT_LOG_SINK_H_
#define VOREL_TESTS_SUPPORT_LOG_SINK_H_

#include <android/log.h>

// Sends every log line of the process to `sink`. Debian's log is older than Android 11's.
template <void (*sink)(int priority, const char* tag, const char* text)>
void set_log_sink() {
#if defined(__ANDROID__)
  __android_log_set_logger(
      [](const __android_log_message* line) { sink(line->priority, line->tag, line->message); });
#else
  __android_log_set_logger([](const __android_logger_data* line, const char* text) {
    sink(line->priority, line->tag, text);
  });
#endif
}

#endif  // VOREL_TESTS_SUPPORT_LOG_SINK_H_
