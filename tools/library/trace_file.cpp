#include "tools/library/trace_file.h"

#include <jansson.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <new>

#include "vorel/trace.h"

namespace tool {
namespace {

std::string current_thread_name() {
  char name[16] = {};
  prctl(PR_GET_NAME, name, 0, 0, 0);
  return name;
}

}  // namespace

TraceFile::TraceFile(const std::string& path)
    : file_(path), start_(std::chrono::steady_clock::now()) {
  vorel_set_trace_sink(receive, this);
}

TraceFile::~TraceFile() { vorel_set_trace_sink(nullptr, nullptr); }

void TraceFile::receive(void* self, int32_t kind, const char* name, int64_t value) {
  auto* trace = static_cast<TraceFile*>(self);
  const Event event{std::chrono::steady_clock::now(), gettid(), kind, name, value};
  const std::lock_guard lock(trace->mutex_);
  trace->events_.push_back(event);
  if (!trace->thread_names_.contains(event.thread)) {
    trace->thread_names_[event.thread] = current_thread_name();
  }
}

json_t* TraceFile::json_of(const Event& event) const {
  const std::chrono::duration<double, std::micro> since_start = event.time - start_;
  json_t* json =
      json_pack("{si si sf}", "pid", getpid(), "tid", event.thread, "ts", since_start.count());
  switch (event.kind) {
    case VOREL_TRACE_BEGIN:
      json_object_set_new(json, "ph", json_string("B"));
      break;
    case VOREL_TRACE_END:
      json_object_set_new(json, "ph", json_string("E"));
      break;
    default:
      json_object_set_new(json, "ph", json_string("C"));
      json_object_set_new(json, "args", json_pack("{sI}", "value", json_int_t{event.value}));
      break;
  }
  if (event.name != nullptr) json_object_set_new(json, "name", json_string(event.name));
  return json;
}

void TraceFile::finish() {
  json_t* list = json_array();
  for (const auto& [thread, name] : thread_names_) {
    json_array_append_new(
        list, json_pack("{ss ss si si s{ss}}", "ph", "M", "name", "thread_name", "pid", getpid(),
                        "tid", thread, "args", "name", name.c_str()));
  }
  for (const Event& event : events_) json_array_append_new(list, json_of(event));
  json_t* root = json_pack("{ss so}", "displayTimeUnit", "ms", "traceEvents", list);
  const std::unique_ptr<char, decltype(&std::free)> text(
      json_dumps(root, JSON_COMPACT | JSON_REAL_PRECISION(12)), std::free);
  json_decref(root);
  if (text == nullptr) throw std::bad_alloc();
  file_.write(std::string(text.get()));
  file_.commit();
}

}  // namespace tool
