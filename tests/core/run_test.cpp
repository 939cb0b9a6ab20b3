#include <dirent.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

#include "tests/core/handle_fixture.h"

namespace {

class RunTest : public HandleTest {};

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

TEST_F(RunTest, CallersOnOneHandleTakeTurns) {
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
        if (i % 2 == 0) {
          vorel_run(handle, frame.y.data(), frame.uv.data(), 160, 96, VOREL_FMT_NM21, 640);
        } else {
          EXPECT_EQ(denoise(handle, &frame), VOREL_DONE);
        }
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

// Resident memory in bytes.
[[maybe_unused]] long resident_bytes() {
  long total = 0;
  long resident = 0;
  FILE* file = std::fopen("/proc/self/statm", "r");
  if (file != nullptr && std::fscanf(file, "%ld %ld", &total, &resident) != 2) resident = 0;
  if (file != nullptr) std::fclose(file);
  return resident * sysconf(_SC_PAGESIZE);
}

// Sanitizers keep freed memory, and check for leaks themselves.
[[maybe_unused]] long heap_bytes() {
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
  return 0;
#else
  const struct mallinfo2 heap = mallinfo2();
  return static_cast<long>(heap.uordblks + heap.hblkhd);
#endif
}

// Kept: without a release every frame has a pair of its own and forgets the last one, which is the
// test's to free. A released pair serves the next frame that it is large enough for.
TEST_F(RunTest, HalfPlanesAreFreshUnlessReleased) {
  use_tuning(kBothPaths);
  const long heap_before = heap_bytes();
  vorel* handle = open(1920, 1080);
  ASSERT_NE(handle, nullptr);
  TestFrame frame(1920, 1080);
  const auto run_only = [&](int width, int height) {
    vorel_run(handle, frame.y.data(), frame.uv.data(), width, height, VOREL_FMT_NM21, 640);
    return std::pair(handle->mfd_u, handle->mfd_v);
  };
  const auto first = run_only(1920, 1080);
  EXPECT_EQ(handle->mfd_width, 1024);
  EXPECT_EQ(handle->mfd_height, 604);
  const auto second = run_only(1920, 1080);
  std::free(first.first);
  std::free(first.second);
  vorel_release_frame_buffers(handle);
  vorel_release_frame_buffers(handle);
  vorel_release_frame_buffers(nullptr);
  EXPECT_EQ(handle->mfd_u, nullptr);
  EXPECT_EQ(run_only(640, 480), second);
  EXPECT_EQ(handle->mfd_width, 384);
  vorel_release_frame_buffers(handle);
  EXPECT_EQ(run_only(1920, 1080), second);
  vorel_release_frame_buffers(handle);
  run_only(16, 17100);  // needs larger planes than all before
  EXPECT_GE(handle->mfd_samples, 72u * 8614);
  EXPECT_EQ(denoise(handle, &frame), VOREL_DONE);  // takes over what was not released
  EXPECT_EQ(handle->mfd_u, nullptr);
  run_only(1920, 1080);
  vorel_deinit(handle);
  EXPECT_LT(heap_bytes() - heap_before, 1 << 20);
}

// A leak of one pair of half planes a frame would be 2 * 144 * 112 * 2 bytes = 64 KB.
TEST_F(RunTest, MemoryStaysFlatOverManyFrames) {
  use_tuning(kBothPaths);
  vorel* handle = open(160, 96);
  ASSERT_NE(handle, nullptr);
  TestFrame frame(160, 96);
  TestFrame odd_frame(150, 94);  // through planes of the handle's own
  const auto run_frames = [&](int count) {
    for (int i = 0; i < count; ++i) {
      if (i % 2 == 0) run(handle, &frame);
      if (i % 2 != 0) denoise(handle, &odd_frame);
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

}  // namespace
