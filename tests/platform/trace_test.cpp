#include "platform/trace.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Events = std::vector<std::string>;

void record(void* user, int32_t kind, const char* name, int64_t value) {
  static_cast<Events*>(user)->push_back(std::to_string(kind) + (name != nullptr ? name : "") +
                                        std::to_string(value));
}

TEST(TraceTest, GoesToTheSinkWhileThereIsOne) {
  Events events;
  const auto work = [] {
    const TraceSlice outer("outer");
    trace_counter("count", -5'000'000'000);
    const TraceSlice inner("inner");
  };
  work();
  vorel_set_trace_sink(record, &events);
  work();
  {
    const TraceSlice open("open");
    vorel_set_trace_sink(nullptr, nullptr);
  }
  work();
  EXPECT_EQ(events, (Events{"0outer0", "2count-5000000000", "0inner0", "10", "10", "0open0"}));
}

}  // namespace
