#include <gmock/gmock.h>
#include <malloc.h>
#include <sys/stat.h>

#include <cstdlib>
#include <regex>

#include "tests/core/handle_fixture.h"
#include "tests/support/faults.h"

namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

class LifecycleTest : public HandleTest {};

TEST_F(LifecycleTest, StoresSizesAndLogsInOrder) {
  vorel* handle = vorel_init(1920, 1080, VOREL_SCENARIO_PREVIEW, 0);
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(handle->aligned_height, 1088);
  EXPECT_EQ(handle->height_floor16, 1072);
  EXPECT_EQ(handle->slot, -1);
  EXPECT_EQ(handle->pool.starter_joined, 1);
  EXPECT_EQ(handle->debug_mode, 0);
  EXPECT_STREQ(handle->dump_path, "");
  EXPECT_GE(malloc_usable_size(handle->y_low), 1920u * 1088);
  EXPECT_GE(malloc_usable_size(handle->filtered_v), 120u * 68);
  EXPECT_GE(malloc_usable_size(handle->upsampled_v), 960u * 544);
  const std::vector<std::string> texts = log_.texts();
  ASSERT_GE(texts.size(), 6u);
  EXPECT_EQ(texts[0], "vorel_init - E");
  EXPECT_THAT(texts[1], HasSubstr("vorel_init, handle 0x"));
  EXPECT_THAT(texts[2], MatchesRegex("CommitID .+ Build Date .+"));
  EXPECT_EQ(texts[3],
            "NUM_THREAD_POOL(6), AFFINITY(FF), Y_BOXFILTERING(64), INTERLEAVING(64), "
            "RUNCOPYANDPAD(4), SATURATION(4)");
  EXPECT_EQ(texts[4],
            "vorel_init, width(1920), height(1080), scenario(VOREL_SCENARIO_PREVIEW), "
            "sensorId(0), priority(-8)");
  EXPECT_EQ(texts.back(), "vorel_init - X");
  log_.clear();
  EXPECT_EQ(vorel_deinit(handle), 0);
  EXPECT_EQ(log_.texts().back(), "vorel_deinit - X");
}

TEST_F(LifecycleTest, RefusesBadWidth) {
  for (int width : {1928, 1, 15, -8}) {
    log_.clear();
    EXPECT_EQ(open(width, 1080), nullptr);
    EXPECT_EQ(log_.count("unsupported width(" + std::to_string(width) + ")"), 1);
    EXPECT_EQ(log_.errors(), 1);
  }
}

TEST_F(LifecycleTest, BadScenarioGivesAnUnusableHandle) {
  vorel* handle = vorel_init(64, 64, 2, 0);
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(log_.count("vorel_init, not support scenario(2)"), 1);
  EXPECT_EQ(log_.count_prefix("CommitID"), 0);
  std::free(handle);  // only here, where its making is known
}

TEST_F(LifecycleTest, SizesThatOverflowFailToAllocate) {
  // 32-bit sizes wrap: the first is negative, the second two do not fit the address space's rest.
  EXPECT_EQ(open(65536, 40000), nullptr);
  EXPECT_EQ(log_.count("vorel_init, vorel->y_low[0] alloc is fail"), 1);
  EXPECT_EQ(open(-16, 64), nullptr);
  // Wraps to a small plane: the handle opens, but no frame of that size may run.
  vorel* handle = open(65536, 65536);
  ASSERT_NE(handle, nullptr);
  uint8_t byte = 7;
  EXPECT_EQ(vorel_run(handle, &byte, &byte, 65536, 65536, VOREL_FMT_NM21, 50000), handle);
  EXPECT_EQ(byte, 7);
  vorel_deinit(handle);
}

TEST_F(LifecycleTest, DeinitOfNull) {
  EXPECT_EQ(vorel_deinit(nullptr), -1);
  EXPECT_EQ(log_.count("vorel_deinit, vorel in NULL~!!"), 1);
}

TEST_F(LifecycleTest, PreinitThreadChecksItsArgument) {
  EXPECT_EQ(vorel_preinit_thread_func(nullptr), nullptr);
  EXPECT_EQ(log_.count("vorel_preinit_thread_func, vorel_preinit_thread is null"), 1);
  frame_pool empty{};
  EXPECT_EQ(vorel_preinit_thread_func(&empty), nullptr);
  EXPECT_EQ(log_.errors(), 1);
}

// Every allocation of init in turn: null and one line for it, or (for the tuning file) defaults.
TEST_F(LifecycleTest, SurvivesEveryFailingAllocation) {
  use_tuning(kBothPaths);
  int sites = 0;
  int refused = 0;
  for (int nth = 1; nth < 100; ++nth) {
    log_.clear();
    vorel* handle;
    bool fired;
    {
      const FaultScope fault(FaultScope::Kind::kAllocation, nth);
      handle = open(64, 64);
      fired = fault.fired();
    }
    if (handle != nullptr) {
      EXPECT_EQ(vorel_deinit(handle), 0);
    } else {
      ++refused;
      EXPECT_EQ(log_.count_containing("alloc is fail") + log_.count_prefix("vorel_init, fail"), 1)
          << "allocation " << nth;
    }
    if (!fired) break;
    EXPECT_GE(log_.errors(), 1) << "allocation " << nth;
    ++sites;
  }
  EXPECT_GE(sites, 13);    // handle, pool, file buffer, ten planes
  EXPECT_EQ(refused, 12);  // all but the tuning file's
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

TEST_F(LifecycleTest, DebugLevelTwoLogsTheTuning) {
  const ScopedEnv level(kDebugVariable, "2");
  use_tuning(R"({"enableNoiseIndex": 1234})");
  vorel_deinit(open(64, 64));
  EXPECT_THAT(log_.texts(), Contains("enableNoiseIndex 1234"));
}

}  // namespace
