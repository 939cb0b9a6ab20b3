// A time line of what the library does, as a file for trace viewers.
#ifndef VOREL_TOOLS_LIBRARY_TRACE_FILE_H_
#define VOREL_TOOLS_LIBRARY_TRACE_FILE_H_

#include <jansson.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "tools/files/atomic_file.h"

namespace tool {

// While an object lives, every slice and counter of the library is recorded. `finish` writes them
// in the Chrome trace form, which Perfetto's viewer and chrome://tracing open; without it no file
// appears. One object at a time, no frame in flight when it begins and ends.
class TraceFile {
 public:
  explicit TraceFile(const std::string& path);
  ~TraceFile();
  TraceFile(const TraceFile&) = delete;
  TraceFile& operator=(const TraceFile&) = delete;

  void finish();

 private:
  struct Event {
    std::chrono::steady_clock::time_point time;
    int thread;
    int32_t kind;
    const char* name;
    int64_t value;
  };

  static void receive(void* self, int32_t kind, const char* name, int64_t value);
  [[nodiscard]] json_t* json_of(const Event& event) const;

  AtomicFile file_;
  std::chrono::steady_clock::time_point start_;
  std::mutex mutex_;
  std::vector<Event> events_;
  std::map<int, std::string> thread_names_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_LIBRARY_TRACE_FILE_H_
