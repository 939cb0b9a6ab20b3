#include <dirent.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <thread>

#include "core/run_thread.h"
#include "tests/core/handle_fixture.h"
#include "tests/support/faults.h"

namespace {

class RunTest : public HandleTest {};

TEST_F(RunTest, NoiseGateComparesWithTheThreshold) {
  use_tuning(R"({"enableNoiseIndex": 500, "MFD_UV_tuning": {"enable": 0}})");
  vorel* handle = open(64, 64);
  ASSERT_NE(handle, nullptr);
  TestFrame frame(64, 64);
  const std::vector<uint8_t> before = frame.bytes();
  {
    const FaultScope threads(FaultScope::Kind::kThreadCreate, 0);
    log_.clear();
    EXPECT_EQ(run(handle, &frame, 499), handle);
    EXPECT_EQ(threads.calls(), 0);
  }
  EXPECT_EQ(frame.bytes(), before);
  EXPECT_EQ(log_.texts(),
            (std::vector<std::string>{
                "vorel_run - E", "vorel_run, skip process, noiseIndex(499) < enableNoiseIndex(500)",
                "vorel_run - X"}));
  EXPECT_EQ(run(handle, &frame, 500), &handle->run_thread[0]);
  EXPECT_NE(frame.bytes(), before);
  vorel_deinit(handle);
}

// The gate looks at the tuning in force before this frame's selection: changing it between frames
// counts at once, and a skipped frame selects nothing.
TEST_F(RunTest, GateUsesTheTuningBeforeSelection) {
  use_tuning(R"({"enableNoiseIndex": 500, "noiseIndex_values": [100, 1100],
    "interleaving_tuning": {"cs_upper_thresh_table": [10, 110]}, "MFD_UV_tuning": {"enable": 0}})");
  vorel* handle = open(64, 64);
  ASSERT_NE(handle, nullptr);
  TestFrame frame(64, 64);
  const interleaving_tuning& current = handle->tuning.interleaving_tuning;
  EXPECT_EQ(current.cs_upper_thresh, 48);  // no frame yet: the default
  run(handle, &frame, 100);
  EXPECT_EQ(current.cs_upper_thresh, 48);
  run(handle, &frame, 600);
  EXPECT_EQ(current.cs_upper_thresh, 60);
  run(handle, &frame, 100);
  EXPECT_EQ(current.cs_upper_thresh, 60);
  vorel_deinit(handle);
}

TEST_F(RunTest, NullHandle) {
  TestFrame frame(16, 16);
  EXPECT_EQ(run(nullptr, &frame), nullptr);
  EXPECT_EQ(log_.count("vorel_run, VOREL handler is NULL~!!!!!\n"), 1);
}

TEST_F(RunTest, RefusesFramesThatDoNotFit) {
  use_tuning(kBothPaths);
  vorel* handle = open(64, 50);  // planes for 64 rows
  ASSERT_NE(handle, nullptr);
  TestFrame frame(64, 64);
  const std::vector<uint8_t> before = frame.bytes();
  uint8_t* y = frame.y.data();
  uint8_t* uv = frame.uv.data();
  const struct {
    void* plane_1;
    void* plane_2;
    int width;
    int height;
    uint32_t format;
    const char* reason;
  } refused[] = {
      {nullptr, uv, 64, 50, VOREL_FMT_NV21, "null plane"},
      {y, nullptr, 64, 50, VOREL_FMT_NM21, "null plane"},
      {y, nullptr, 64, 50, VOREL_FMT_NV21, "null plane"},
      {nullptr, nullptr, 64, 50, VOREL_FMT_YUYV, "null plane"},
      {y, uv, 0, 50, VOREL_FMT_NV21, "width(0)"},
      {y, uv, 8, 50, VOREL_FMT_NV21, "width(8)"},
      {y, uv, -64, 50, VOREL_FMT_NV21, "width(-64)"},
      {y, uv, 72, 50, VOREL_FMT_NV21, "width(72)"},
      {y, uv, 64, 1, VOREL_FMT_NV21, "height(1)"},
      {y, uv, 64, -2, VOREL_FMT_NV21, "height(-2)"},
      {y, uv, 64, 65, VOREL_FMT_NV21, "need more"},
      {y, uv, 80, 64, VOREL_FMT_NV21, "need more"},
      {y, uv, 64, INT32_MAX, VOREL_FMT_NV21, "need more"},
  };
  const FaultScope threads(FaultScope::Kind::kThreadCreate, 0);
  for (const auto& bad : refused) {
    log_.clear();
    EXPECT_EQ(vorel_run(handle, bad.plane_1, bad.plane_2, bad.width, bad.height,
                        static_cast<int>(bad.format), 640),
              handle);
    EXPECT_EQ(log_.count_containing(bad.reason), 1) << bad.reason;
    EXPECT_EQ(log_.errors(), 1) << bad.reason;
  }
  EXPECT_EQ(threads.calls(), 0);
  EXPECT_EQ(frame.bytes(), before);
  // Nothing was locked; other sizes that fit the planes run.
  for (const auto& [width, height] : {std::pair(64, 64), std::pair(32, 128), std::pair(16, 2)}) {
    TestFrame fitting(width, height);
    EXPECT_EQ(run(handle, &fitting), &handle->run_thread[0]);
  }
  vorel_deinit(handle);
}

TEST_F(RunTest, PackedFrameIsRefusedAndKeepsTheSlot) {
  use_tuning(kBothPaths);
  for (uint32_t format : {uint32_t{VOREL_FMT_YUYV}, uint32_t{VOREL_FMT_YUY2}, 0x12345678u}) {
    vorel* handle = open(64, 64);
    ASSERT_NE(handle, nullptr);
    TestFrame frame(64, 128);
    const std::vector<uint8_t> before = frame.bytes();
    log_.clear();
    vorel_run(handle, frame.y.data(), nullptr, 64, 64, static_cast<int>(format), 640);
    EXPECT_EQ(log_.count("vorel_run, Not supported format"), 1);
    EXPECT_EQ(log_.count("vorel_run - X"), 0);
    EXPECT_EQ(frame.bytes(), before);
    EXPECT_NE(pthread_mutex_trylock(&handle->slot_mutex[0]), 0);
    EXPECT_EQ(handle->pool.starter_joined, 0);
    EXPECT_EQ(vorel_deinit(handle), 0);  // joins the thread and stops the workers
  }
}

// Whichever thread cannot be created: the call returns, the frame is whole or untouched, and the
// next frame runs as if nothing had happened.
TEST_F(RunTest, SurvivesEveryFailingThread) {
  use_tuning(kSpatialOnly);
  vorel* handle = open(64, 64);
  ASSERT_NE(handle, nullptr);
  TestFrame untouched(64, 64);
  TestFrame processed(64, 64);
  run(handle, &processed);
  ASSERT_NE(processed.bytes(), untouched.bytes());
  int failed = 0;
  for (int nth = 1; nth <= 8; ++nth) {  // pool starter, driver, six workers
    TestFrame frame(64, 64);
    {
      const FaultScope fault(FaultScope::Kind::kThreadCreate, nth);
      run(handle, &frame);
      EXPECT_TRUE(fault.fired()) << nth;
    }
    EXPECT_EQ(frame.bytes(), untouched.bytes()) << nth;
    ++failed;
    TestFrame next(64, 64);
    run(handle, &next);
    EXPECT_EQ(next.bytes(), processed.bytes()) << nth;
  }
  EXPECT_GE(log_.errors(), failed);
  vorel_deinit(handle);
}

// Every allocation of a frame in turn: no crash, and the next frame is right.
TEST_F(RunTest, SurvivesEveryFailingAllocation) {
  use_tuning(kBothPaths);
  vorel* handle = open(64, 64);
  ASSERT_NE(handle, nullptr);
  TestFrame processed(64, 64);
  run(handle, &processed);
  int sites = 0;
  for (int nth = 1; nth < 1000; ++nth) {
    TestFrame frame(64, 64);
    bool fired;
    {
      const FaultScope fault(FaultScope::Kind::kAllocation, nth);
      run(handle, &frame);
      fired = fault.fired();
    }
    if (!fired) break;
    ++sites;
  }
  EXPECT_GE(sites, 10);
  TestFrame next(64, 64);
  run(handle, &next);
  EXPECT_EQ(next.bytes(), processed.bytes());
  vorel_deinit(handle);
}

TEST_F(RunTest, MissingHalfPlanesLeaveTheFrameAlone) {
  use_tuning(kBothPaths);
  TestFrame frame(64, 64);
  const std::vector<uint8_t> before = frame.bytes();
  int skipped = 0;
  for (int nth = 1; nth < 30; ++nth) {
    vorel* handle = open(64, 64);  // anew: a handle's later frames allocate no pair
    ASSERT_NE(handle, nullptr);
    log_.clear();
    TestFrame attempt(64, 64);
    {
      const FaultScope fault(FaultScope::Kind::kAllocation, nth);
      run(handle, &attempt);
    }
    if (log_.count("MFD_UV, skipped: no half-precision planes") > 0) {
      EXPECT_EQ(log_.count("vorel_interleave, skipped: no half-precision planes"), 1);
      EXPECT_EQ(attempt.bytes(), before);
      ++skipped;
    }
    vorel_deinit(handle);
  }
  EXPECT_GE(skipped, 1);
}

TEST_F(RunTest, TwoCallersOnOneHandleTakeTurns) {
  // Without half planes: another caller may run before this one has released its own.
  use_tuning(kSpatialOnly);
  vorel* handle = open(160, 96);
  ASSERT_NE(handle, nullptr);
  TestFrame expected(160, 96);
  run(handle, &expected);
  constexpr int kCallers = 3;
  std::vector<std::thread> callers;
  for (int caller = 0; caller < kCallers; ++caller) {
    callers.emplace_back([&] {
      for (int i = 0; i < 4; ++i) {
        TestFrame frame(160, 96);
        vorel_run(handle, frame.y.data(), frame.uv.data(), 160, 96, VOREL_FMT_NM21, 640);
        EXPECT_EQ(frame.bytes(), expected.bytes());
      }
    });
  }
  for (std::thread& caller : callers) caller.join();
  vorel_deinit(handle);
}

TEST_F(RunTest, SeveralHandlesAtOnce) {
  use_tuning(kBothPaths);
  std::vector<std::thread> cameras;
  for (int camera = 0; camera < 3; ++camera) {
    cameras.emplace_back([camera] {
      const int width = 64 + 48 * camera;
      vorel* handle = open(width, 80);
      ASSERT_NE(handle, nullptr);
      TestFrame first(width, 80);
      run(handle, &first);
      for (int i = 0; i < 3; ++i) {
        TestFrame frame(width, 80);
        run(handle, &frame);
        EXPECT_EQ(frame.bytes(), first.bytes());
      }
      vorel_deinit(handle);
    });
  }
  for (std::thread& camera : cameras) camera.join();
}

int thread_count() {
  int count = 0;
  DIR* directory = opendir("/proc/self/task");
  while (directory != nullptr && readdir(directory) != nullptr) ++count;
  closedir(directory);
  return count;
}

TEST_F(RunTest, WorkersLiveForOneFrame) {
  use_tuning(kBothPaths);
  vorel* handle = open(64, 64);
  ASSERT_NE(handle, nullptr);
  TestFrame frame(64, 64);
  run(handle, &frame);
  EXPECT_EQ(handle->pool.ready, 0);
  EXPECT_EQ(handle->pool.starter_joined, 1);
  // Detached workers end shortly after; under emulation the kernel may show them a little longer.
  for (int i = 0; i < 200 && thread_count() > 3; ++i) usleep(10000);
  EXPECT_LE(thread_count(), 3 + 1);
  vorel_deinit(handle);
}

TEST_F(RunTest, HalfPlanesAreAllocatedAnewAndReleasedOnDemand) {
  use_tuning(kBothPaths);
  vorel* handle = open(1920, 1080);
  ASSERT_NE(handle, nullptr);
  TestFrame frame(1920, 1080);
  vorel_run(handle, frame.y.data(), frame.uv.data(), 1920, 1080, VOREL_FMT_NM21, 640);
  EXPECT_EQ(handle->mfd_width, 1024);
  EXPECT_EQ(handle->mfd_height, 604);
  ASSERT_NE(handle->mfd_u, nullptr);
  vorel_release_frame_buffers(handle);
  EXPECT_EQ(handle->mfd_u, nullptr);
  EXPECT_EQ(handle->mfd_v, nullptr);
  vorel_release_frame_buffers(handle);
  vorel_release_frame_buffers(nullptr);
  vorel_deinit(handle);
}

// Resident memory in bytes.
[[maybe_unused]] long resident_bytes() {
  long total = 0;
  long resident = 0;
  FILE* file = std::fopen("/proc/self/statm", "r");
  if (file != nullptr && std::fscanf(file, "%ld %ld", &total, &resident) != 2) resident = 0;
  if (file != nullptr) std::fclose(file);
  return resident * sysconf(_SC_PAGESIZE);
}

[[maybe_unused]] long heap_bytes() {
  const struct mallinfo2 heap = mallinfo2();
  return static_cast<long>(heap.uordblks + heap.hblkhd);
}

// A leak of one pair of half planes a frame would be 2 * 144 * 112 * 2 bytes = 64 KB.
TEST_F(RunTest, MemoryStaysFlatOverManyFrames) {
  use_tuning(kBothPaths);
  vorel* handle = open(160, 96);
  ASSERT_NE(handle, nullptr);
  TestFrame frame(160, 96);
  const auto run_frames = [&](int count) {
    for (int i = 0; i < count; ++i) {
      run(handle, &frame);
      if (i % 50 == 0) log_.clear();
    }
    log_.clear();
  };
  run_frames(20);
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
  run_frames(30);  // sanitizers keep freed memory: only their own leak check counts
#else
  const long heap_before = heap_bytes();
  run_frames(30);
  EXPECT_LT(heap_bytes() - heap_before, 30 * 4096);
#if !defined(VOREL_EMULATED)  // the emulator itself grows with every thread
  const long before = resident_bytes();
  run_frames(1000);
  EXPECT_LT(resident_bytes() - before, 4 * 1024 * 1024);
#endif
#endif
  vorel_deinit(handle);
}

TEST_F(RunTest, DriverRefusesNull) {
  EXPECT_EQ(vorel_run_thread(nullptr), nullptr);
  EXPECT_EQ(log_.count("vorel_run_thread, vorel_thread is null"), 1);
}

TEST_F(RunTest, TimingLinesAppearAtLevelOneOnly) {
  use_tuning(kBothPaths);
  for (const char* level : {"0", "1", "2"}) {
    const ScopedEnv variable(kDebugVariable, level);
    vorel* handle = open(64, 64);
    ASSERT_NE(handle, nullptr);
    TestFrame frame(64, 64);
    log_.clear();
    run(handle, &frame);
    const int expected = level[0] == '1' ? 1 : 0;
    for (const char* name :
         {"vorel_deinterleave", "vorel_box_filter", "y_low_downsample", "vorel_y", "vorel_u",
          "vorel_v", "upsample_y", "vorel_interleave", "MFD_UV", "ChromaPostProcess::setup",
          "ChromaPostProcess::chromaPostProcess", "BorderHandler::runPad",
          "Denoise::applySaturation"}) {
      EXPECT_EQ(log_.count_prefix(std::string(name) + ": elapsed time "), expected) << name;
    }
    EXPECT_EQ(log_.count_prefix("uv_upsample: elapsed time "), 2 * expected);
    EXPECT_EQ(log_.count_prefix("ChromaPostProcess::denoiseSpatial: elapsed time "), 2 * expected);
    EXPECT_EQ(log_.count_prefix("vorel_run_thread stop: handle "), expected);
    vorel_deinit(handle);
  }
}

}  // namespace
