#include "threading/run_jobs.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "platform/trace.h"
#include "tests/support/faults.h"
#include "tests/support/log_capture.h"

namespace {

// Longer than its address: a wrong stride shows.
struct Job {
  std::atomic<int> runs{0};
  std::thread::id thread;
  char padding[40];

  static void* run(void* job) {
    auto* self = static_cast<Job*>(job);
    self->runs.fetch_add(1);
    self->thread = std::this_thread::get_id();
    return nullptr;
  }
};

TEST(RunJobsTest, RunsEveryRecordOnceOnWorkersAndWithoutAllocations) {
  const LogCapture log;
  ThreadPool pool;
  ASSERT_EQ(pool.init(6, 0xFF, 0), 0);
  {
    const FaultScope fault(FaultScope::Kind::kAllocation, 1);
    for (const int count : {0, 1, 2, 5, 64, 1000}) {
      static Job jobs[1000];
      for (int round = 1; round <= 20; ++round) {
        run_jobs(&pool, Job::run, jobs, count, "job of the test");
        for (int i = 0; i < 1000; ++i) ASSERT_EQ(jobs[i].runs.load(), i < count ? round : 0);
      }
      for (Job& job : jobs) {
        EXPECT_NE(job.thread, std::this_thread::get_id());
        job.runs = 0;
      }
    }
    EXPECT_FALSE(fault.fired());
  }
  pool.deinit();
  EXPECT_EQ(log.errors(), 0);
}

TEST(RunJobsTest, RunsOnTheCallerWithoutWorkers) {
  const LogCapture log;
  ThreadPool never_started;
  Job jobs[5];
  run_jobs(&never_started, Job::run, jobs, 5);
  run_jobs<Job>(nullptr, Job::run, jobs, 5);
  for (const Job& job : jobs) {
    EXPECT_EQ(job.runs.load(), 2);
    EXPECT_EQ(job.thread, std::this_thread::get_id());
  }
  EXPECT_EQ(log.count("mThreadPool is not initialized"), 1);
}

// Between single calls batches keep their place in the queue; what is left is dropped.
TEST(RunJobsTest, SharesTheQueueWithSingleJobs) {
  ThreadPool pool;
  ASSERT_EQ(pool.init(1, 0xFF, 0), 0);
  static std::vector<int> order;
  struct Numbered {
    int number;
    static void* run(void* job) {
      order.push_back(static_cast<Numbered*>(job)->number);
      return nullptr;
    }
  };
  Numbered singles[] = {{1}, {2}, {6}};
  Numbered batch[] = {{3}, {4}, {5}};
  std::atomic<bool> open{false};
  const auto hold = [](void* gate) -> void* {
    while (!static_cast<std::atomic<bool>*>(gate)->load()) std::this_thread::yield();
    return nullptr;
  };
  ASSERT_EQ(pool.addWork(hold, &open), 0);
  ASSERT_EQ(pool.addWork(Numbered::run, &singles[0]), 0);
  ASSERT_EQ(pool.addWork(Numbered::run, &singles[1]), 0);
  std::thread opener([&] { open = true; });
  run_jobs(&pool, Numbered::run, batch, 3);
  opener.join();
  ASSERT_EQ(pool.addWork(Numbered::run, &singles[2]), 0);
  ASSERT_EQ(pool.wait(), 0);
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3, 4, 5, 6}));
  pool.deinit();
}

TEST(RunJobsTest, ShowsJobsInTraces) {
  static std::atomic<int> begun{0};
  static std::atomic<int> ended{0};
  ThreadPool pool;
  ASSERT_EQ(pool.init(3, 0xFF, 0), 0);
  vorel_set_trace_sink(
      [](void*, int32_t kind, const char* name, int64_t) {
        if (kind == VOREL_TRACE_BEGIN && std::string(name) == "strip") ++begun;
        if (kind == VOREL_TRACE_END) ++ended;
      },
      nullptr);
  Job jobs[10];
  run_jobs(&pool, Job::run, jobs, 10, "strip");
  pool.deinit();
  vorel_set_trace_sink(nullptr, nullptr);
  EXPECT_EQ(begun.load(), 10);
  EXPECT_EQ(ended.load(), 11);  // the caller's wait too
}

}  // namespace
