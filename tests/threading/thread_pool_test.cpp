#include "vorel/thread_pool.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "platform/thread_attributes.h"
#include "tests/support/faults.h"
#include "tests/support/log_capture.h"

namespace {

constexpr int kWorkers = 6;

// Polls: threads outside our reach (a worker that is about to end) have no event to wait for.
template <typename Condition>
bool becomes_true(Condition condition) {
  for (int i = 0; i < 2000; ++i) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return condition();
}

// Names of this process's pool workers.
std::multiset<std::string> worker_names() {
  std::multiset<std::string> names;
  std::error_code error;
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task", error)) {
    std::ifstream file(task.path() / "comm");
    std::string name;
    if (std::getline(file, name) && name.rfind("vorel-", 0) == 0) names.insert(name);
  }
  return names;
}

bool all_workers_end() {
  return becomes_true([] { return worker_names().empty(); });
}

// Every test leaves no worker behind, even when it fails half-way.
class ThreadPoolTest : public testing::Test {
 protected:
  void TearDown() override {
    pool.deinit();
    EXPECT_TRUE(all_workers_end());
  }

  ThreadPool pool;
};

void* count_call(void* counter) {
  static_cast<std::atomic<int>*>(counter)->fetch_add(1);
  return nullptr;
}

// Holds a worker until it is opened.
struct Gate {
  std::atomic<int> arrived{0};
  std::atomic<bool> open{false};

  static void* pass(void* gate) {
    Gate* self = static_cast<Gate*>(gate);
    self->arrived.fetch_add(1);
    while (!self->open.load()) std::this_thread::yield();
    return nullptr;
  }
};

}  // namespace

TEST_F(ThreadPoolTest, RunsEveryJobOnceAndWaitsForTheLast) {
  ASSERT_EQ(pool.init(kWorkers, 0xFF, 0), 0);
  // Plain memory on purpose: `wait` must make what the jobs wrote visible.
  struct Job {
    int runs = 0;
    static void* run(void* job) {
      ++static_cast<Job*>(job)->runs;
      return job;
    }
  };
  std::array<Job, 64> jobs;
  for (int round = 1; round <= 300; ++round) {
    for (Job& job : jobs) ASSERT_EQ(pool.addWork(Job::run, &job), 0);
    ASSERT_EQ(pool.wait(), 0);
    for (const Job& job : jobs) ASSERT_EQ(job.runs, round);
  }
  EXPECT_EQ(pool.wait(), 0);  // with nothing to wait for
}

// One job at a time is where a lost wake-up shows: nobody posts again.
TEST_F(ThreadPoolTest, WakesUpForSingleJobs) {
  ASSERT_EQ(pool.init(2, 0xFF, 0), 0);
  std::atomic<int> runs{0};
  for (int round = 1; round <= 3000; ++round) {
    ASSERT_EQ(pool.addWork(count_call, &runs), 0);
    ASSERT_EQ(pool.wait(), 0);
    ASSERT_EQ(runs.load(), round);
  }
}

TEST_F(ThreadPoolTest, WaitsForJobsThatJobsQueue) {
  // A binary tree of jobs: each one queues its two children.
  struct Node {
    ThreadPool* pool;
    std::atomic<int>* runs;
    int depth;
    static void* run(void* argument) {
      const std::unique_ptr<Node> node(static_cast<Node*>(argument));
      node->runs->fetch_add(1);
      for (int child = 0; child < 2 && node->depth > 0; ++child) {
        node->pool->addWork(run, new Node{node->pool, node->runs, node->depth - 1});
      }
      return nullptr;
    }
  };
  ASSERT_EQ(pool.init(kWorkers, 0xFF, 0), 0);
  for (int round = 0; round < 30; ++round) {
    std::atomic<int> runs{0};
    ASSERT_EQ(pool.addWork(Node::run, new Node{&pool, &runs, 6}), 0);
    ASSERT_EQ(pool.wait(), 0);
    ASSERT_EQ(runs.load(), 127);
  }
}

TEST_F(ThreadPoolTest, KeepsAllWorkersBusyAtOnce) {
  ASSERT_EQ(pool.init(kWorkers, 0xFF, 0), 0);
  Gate gate;
  for (int i = 0; i < kWorkers; ++i) ASSERT_EQ(pool.addWork(Gate::pass, &gate), 0);
  EXPECT_TRUE(becomes_true([&] { return gate.arrived.load() == kWorkers; }));
  EXPECT_EQ(pool.num_threads_working(), kWorkers);
  gate.open = true;
  EXPECT_EQ(pool.wait(), 0);
  // A worker that was woken for a job which another one took counts as busy for a moment.
  EXPECT_TRUE(becomes_true([&] { return pool.num_threads_working() == 0; }));
}

TEST_F(ThreadPoolTest, ServesOneWorkerInOrder) {
  struct Job {
    std::vector<int>* order;
    int number;
    static void* run(void* argument) {
      const Job* job = static_cast<Job*>(argument);
      job->order->push_back(job->number);
      return nullptr;
    }
  };
  ASSERT_EQ(pool.init(1, 0xFF, 0), 0);
  std::vector<int> order;
  std::vector<int> expected;
  std::vector<Job> jobs;
  for (int i = 0; i < 50; ++i) {
    jobs.push_back({&order, i});
    expected.push_back(i);
  }
  for (Job& job : jobs) ASSERT_EQ(pool.addWork(Job::run, &job), 0);
  ASSERT_EQ(pool.wait(), 0);
  EXPECT_EQ(order, expected);
}

TEST_F(ThreadPoolTest, StartsAndStopsAgainAndAgain) {
  const LogCapture log;
  std::atomic<int> runs{0};
  int queued = 0;
  for (int round = 0; round < 200; ++round) {
    ASSERT_EQ(pool.init(kWorkers, 0xFF, round), 0);
    // Stopped right after the start, after waiting, and every third time with jobs left over.
    if (round % 3 != 0) {
      for (int i = 0; i < 10; ++i) ASSERT_EQ(pool.addWork(count_call, &runs), 0);
    }
    if (round % 3 == 1) {
      const int before = queued;
      ASSERT_EQ(pool.wait(), 0);
      queued = runs.load();
      ASSERT_GE(queued, before + 10);
    }
    pool.deinit();
  }
  EXPECT_EQ(log.errors(), 0);
  EXPECT_EQ(log.count("ThreadPool::init - E"), 200);
  EXPECT_EQ(log.count("ThreadPool::init - X"), 200);
  EXPECT_EQ(log.count("ThreadPool::deinit - E"), 200);
  EXPECT_EQ(log.count("ThreadPool::deinit - X"), 200);
}

TEST_F(ThreadPoolTest, StartsOverWithoutLeavingWorkersBehind) {
  std::atomic<int> runs{0};
  ASSERT_EQ(pool.init(3, 0xFF, 1), 0);
  ASSERT_EQ(pool.init(2, 0xFF, 2), 0);
  EXPECT_TRUE(becomes_true(
      [] { return worker_names() == std::multiset<std::string>{"vorel-2-0", "vorel-2-1"}; }));
  for (int i = 0; i < 20; ++i) ASSERT_EQ(pool.addWork(count_call, &runs), 0);
  ASSERT_EQ(pool.wait(), 0);
  EXPECT_EQ(runs.load(), 20);
}

TEST_F(ThreadPoolTest, RefusesWorkBeforeInitAndAfterDeinit) {
  std::atomic<int> runs{0};
  for (int pass = 0; pass < 2; ++pass) {
    const LogCapture log;
    EXPECT_EQ(pool.addWork(count_call, &runs), -1);
    EXPECT_EQ(pool.wait(), -1);
    EXPECT_EQ(pool.num_threads_working(), -1);
    EXPECT_EQ(pool.thread_init(nullptr, 0, &pool, 0xFF, 0), -1);
    EXPECT_EQ(log.count("mThreadPool is not initialized"), 4);
    EXPECT_EQ(log.errors(), 4);
    pool.deinit();
    EXPECT_EQ(log.texts().back(), "ThreadPool::deinit - E");
    ASSERT_EQ(pool.init(1, 0xFF, 0), 0);
    pool.deinit();
  }
  EXPECT_EQ(runs.load(), 0);
}

TEST_F(ThreadPoolTest, NeverRunsJobsWithoutWorkers) {
  for (const int workers : {0, -3}) {
    ThreadPool pool;
    ASSERT_EQ(pool.init(workers, 0xFF, 0), 0);
    EXPECT_TRUE(worker_names().empty());
    EXPECT_EQ(pool.wait(), 0);
    std::atomic<int> runs{0};
    for (int i = 0; i < 5; ++i) ASSERT_EQ(pool.addWork(count_call, &runs), 0);
    EXPECT_EQ(pool.num_threads_working(), 0);
    // A waiting caller would have to be ended from outside: done to a copy of the process.
    EXPECT_EXIT(
        {
          alarm(1);
          pool.wait();
          _exit(0);
        },
        testing::KilledBySignal(SIGALRM), "");
    if (workers == 0) pool.deinit();  // the other one drops its jobs with the object
    EXPECT_EQ(runs.load(), 0);
  }
}

TEST_F(ThreadPoolTest, DropsQueuedJobsAtDeinit) {
  const LogCapture log;
  ASSERT_EQ(pool.init(1, 0xFF, 0), 0);
  Gate gate;
  std::atomic<int> runs{0};
  ASSERT_EQ(pool.addWork(Gate::pass, &gate), 0);
  ASSERT_TRUE(becomes_true([&] { return gate.arrived.load() == 1; }));
  for (int i = 0; i < 100; ++i) ASSERT_EQ(pool.addWork(count_call, &runs), 0);
  // The only worker is let go after `deinit` has begun to wait for it.
  std::thread opener([&] {
    becomes_true([&] { return log.count("ThreadPool::deinit - E") == 1; });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    gate.open = true;
  });
  pool.deinit();
  EXPECT_TRUE(gate.open.load()) << "deinit did not wait for the running job";
  opener.join();
  EXPECT_EQ(runs.load(), 0);
}

TEST_F(ThreadPoolTest, StopsWhatItStartedWhenAWorkerCannotBeCreated) {
  for (int good = 0; good < kWorkers; ++good) {
    const LogCapture log;
    ThreadPool pool;
    {
      const FaultScope fault(FaultScope::Kind::kThreadCreate, good + 1);
      EXPECT_EQ(pool.init(kWorkers, 0xFF, 0), -1);
      EXPECT_EQ(fault.calls(), good + 1);
    }
    EXPECT_EQ(log.errors(), 1);
    EXPECT_EQ(log.count_prefix("ThreadPool::thread_init, worker " + std::to_string(good)), 1);
    EXPECT_TRUE(all_workers_end());

    std::atomic<int> runs{0};
    EXPECT_EQ(pool.addWork(count_call, &runs), -1);
    ASSERT_EQ(pool.init(kWorkers, 0xFF, 0), 0);
    EXPECT_EQ(pool.addWork(count_call, &runs), 0);
    EXPECT_EQ(pool.wait(), 0);
    EXPECT_EQ(runs.load(), 1);
    pool.deinit();
  }
}

TEST_F(ThreadPoolTest, ReportsShortMemory) {
  int nth = 1;
  for (bool started = false; !started; ++nth) {
    const LogCapture log;
    const FaultScope fault(FaultScope::Kind::kAllocation, nth);
    started = pool.init(kWorkers, 0xFF, 0) == 0;
    EXPECT_NE(started, fault.fired());
    EXPECT_EQ(log.count("Allocation failed for thread pool"), started ? 0 : 1);
    EXPECT_EQ(log.errors(), started ? 0 : 1);
    if (!started) {
      EXPECT_EQ(pool.num_threads_working(), -1);
      EXPECT_TRUE(all_workers_end());
    }
  }
  EXPECT_GE(nth, 3);  // at least one allocation failed

  const LogCapture log;
  std::atomic<int> runs{0};
  {
    const FaultScope fault(FaultScope::Kind::kAllocation, 1);
    EXPECT_EQ(pool.addWork(count_call, &runs), -1);
    EXPECT_EQ(log.count("Allocation failed for new job"), 1);
    EXPECT_EQ(pool.addWork(count_call, &runs), 0);
  }
  EXPECT_EQ(pool.wait(), 0);
  EXPECT_EQ(runs.load(), 1);

  // A pool that is started over has given up its workers before memory runs short.
  const FaultScope fault(FaultScope::Kind::kAllocation, 1);
  EXPECT_EQ(pool.init(kWorkers, 0xFF, 0), -1);
  EXPECT_EQ(pool.wait(), -1);
}

TEST_F(ThreadPoolTest, NamesItsWorkers) {
  ASSERT_EQ(pool.init(3, 0xFF, 7), 0);
  EXPECT_EQ(worker_names(), (std::multiset<std::string>{"vorel-7-0", "vorel-7-1", "vorel-7-2"}));
  pool.deinit();
  EXPECT_TRUE(all_workers_end());
  ASSERT_EQ(pool.init(1, 0xFF, 1234567890), 0);
  EXPECT_EQ(worker_names(), (std::multiset<std::string>{"vorel-123456789"}));
}

TEST_F(ThreadPoolTest, BindsWorkersAndCallers) {
  const LogCapture log;
  int accepted = -1;
  int accepted_again = -1;
  uint64_t bound = 0;
  // On a thread of its own, so that the test program keeps its processors.
  std::thread([&] {
    accepted = setThreadAffinityMask(1);
    bound = thread_affinity();
    accepted_again = setCurrentThreadAffinityMask(1);
    getThreadAffinityMask();
    getThreadAffinityMask("me");
  }).join();
  EXPECT_EQ(accepted, accepted_again);
  char mask[32];
  std::snprintf(mask, sizeof(mask), "0x%llx", static_cast<unsigned long long>(bound));
  EXPECT_EQ(log.count(std::string("CPU affinity ") + mask), 1);
  EXPECT_EQ(log.count(std::string("getThreadAffinityMask from me : ") + mask), 1);
  EXPECT_NE(bound, 0u);

  uint64_t worker_bound = 0;
  ASSERT_EQ(pool.init(1, 1, 0), 0);
  pool.addWork(
      [](void* result) -> void* {
        *static_cast<uint64_t*>(result) = thread_affinity();
        return nullptr;
      },
      &worker_bound);
  pool.wait();
  pool.deinit();
  EXPECT_EQ(worker_bound, bound);
  // Emulators refuse a 4-byte CPU set; all processors remain then.
  if (accepted == 0) EXPECT_EQ(bound, 1u);
}
