#include <gmock/gmock.h>
#include <malloc.h>
#include <sys/stat.h>

#include <cstdlib>
#include <regex>

#include "core/run_thread.h"
#include "tests/core/handle_fixture.h"

namespace {

using ::testing::HasSubstr;

class LifecycleTest : public HandleTest {};

TEST_F(LifecycleTest, StoresSizes) {
  vorel* handle = open(1920, 1080);
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(handle->aligned_height, 1088);
  EXPECT_EQ(handle->height_floor16, 1072);
  EXPECT_EQ(handle->slot, -1);
  EXPECT_EQ(handle->pool.starter_joined, 1);
  EXPECT_STREQ(handle->dump_path, "");
  EXPECT_GE(malloc_usable_size(handle->y_low), 1920u * 1088);
  EXPECT_GE(malloc_usable_size(handle->filtered_v), 120u * 68);
  EXPECT_GE(malloc_usable_size(handle->upsampled_v), 960u * 544);
  EXPECT_EQ(vorel_deinit(handle), 0);
}

TEST_F(LifecycleTest, SizesThatOverflowFailToAllocate) {
  EXPECT_EQ(open(-16, 64), nullptr);
  // 32-bit sizes wrap, here to a small plane: the handle opens, but no frame of that size may run.
  vorel* handle = open(65536, 65536);
  ASSERT_NE(handle, nullptr);
  uint8_t byte = 7;
  EXPECT_EQ(vorel_run(handle, &byte, &byte, 65536, 65536, VOREL_FMT_NM21, 50000), handle);
  EXPECT_EQ(byte, 7);
  vorel_deinit(handle);
}

TEST_F(LifecycleTest, ThreadsCheckTheirArgument) {
  EXPECT_EQ(vorel_preinit_thread_func(nullptr), nullptr);
  EXPECT_EQ(log_.count("vorel_preinit_thread_func, vorel_preinit_thread is null"), 1);
  frame_pool empty{};
  EXPECT_EQ(vorel_preinit_thread_func(&empty), nullptr);
  EXPECT_EQ(log_.errors(), 1);
  EXPECT_EQ(vorel_run_thread(nullptr), nullptr);
  EXPECT_EQ(log_.count("vorel_run_thread, vorel_thread is null"), 1);
}

TEST_F(LifecycleTest, DebugLevelThreeMakesTheDumpDirectory) {
  const TempDir dumps;
  const std::string base = dumps.path() / "vorel";
  const ScopedEnv dump_variable("VOREL_DUMP_DIR", base.c_str());
  {
    const ScopedEnv level(kDebugVariable, "2");
    vorel_deinit(open(64, 64));
    EXPECT_FALSE(std::filesystem::exists(base));
    EXPECT_EQ(log_.count("vorel_init, debug_mode 2"), 1);
  }
  const ScopedEnv level(kDebugVariable, "3");
  vorel* handle = vorel_init(64, 64, 0, 120);
  ASSERT_NE(handle, nullptr);
  EXPECT_THAT(std::string(handle->dump_path), HasSubstr(base + "/120_20"));
  EXPECT_TRUE(std::regex_search(handle->dump_path, std::regex("/120_[0-9]{8}_[0-9]{6}$")));
  EXPECT_TRUE(std::filesystem::is_directory(handle->dump_path));
  EXPECT_EQ(log_.count(std::string("vorel_init, dump_path ") + handle->dump_path), 1);
  vorel_deinit(handle);
}

TEST_F(LifecycleTest, DumpDirectoryThatCannotBeMade) {
  const TempDir dumps;
  dumps.write("file", "");
  const ScopedEnv level(kDebugVariable, "3");
  for (const std::string& bad : {(dumps.path() / "file" / "sub").string(), std::string(200, 'x')}) {
    log_.clear();
    const ScopedEnv dump_variable("VOREL_DUMP_DIR", bad.c_str());
    vorel* handle = open(64, 64);
    ASSERT_NE(handle, nullptr);
    EXPECT_STREQ(handle->dump_path, "");
    EXPECT_EQ(log_.count_prefix("vorel_init, error("), 1);
    vorel_deinit(handle);
    std::error_code ignored;
    std::filesystem::remove(bad, ignored);
  }
}

}  // namespace
