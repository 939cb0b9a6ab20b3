#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <cerrno>
#include <cmath>
#include <limits>
#include <string>

#include "platform/cpu.h"
#include "platform/directories.h"
#include "platform/error_text.h"
#include "platform/numeric.h"
#include "platform/property.h"
#include "platform/thread_attributes.h"
#include "tests/support/temp_dir.h"

namespace {

TEST(NumericTest, FloatToIntSaturatesLikeArm) {
  const struct {
    float value;
    int32_t expected;
  } cases[] = {{0.0f, 0},
               {-0.0f, 0},
               {0.99f, 0},
               {-0.99f, 0},
               {1.5f, 1},
               {-1.5f, -1},
               {2147483520.0f, 2147483520},
               {2147483648.0f, INT32_MAX},
               {3e38f, INT32_MAX},
               {-2147483648.0f, INT32_MIN},
               {-3e38f, INT32_MIN},
               {std::numeric_limits<float>::infinity(), INT32_MAX},
               {-std::numeric_limits<float>::infinity(), INT32_MIN},
               {std::nanf(""), 0},
               {-std::nanf(""), 0}};
  for (const auto& c : cases) EXPECT_EQ(float_to_int32(c.value), c.expected) << c.value;
}

TEST(NumericTest, HalfPrecisionRoundsEveryStep) {
  // 2049 is no half: 2048 + 1 rounds back to 2048 each time, 2048 + 2 kept wide would not.
  volatile _Float16 big = 2048;
  volatile _Float16 one = 1;
  const _Float16 sum = big + one + one;
  EXPECT_EQ(static_cast<float>(sum), 2048.0f);
  // 0.1 as a half is 0x2E66; its square 0x211E is rounded before 1 is added and 1 taken away.
  volatile _Float16 tenth = static_cast<_Float16>(0.1f);
  const _Float16 fused = tenth * tenth + one - one;
  EXPECT_EQ(static_cast<float>(fused), 0.009765625f);
}

TEST(NumericTest, ClampToByte) {
  EXPECT_EQ(clamp_u8(-1), 0);
  EXPECT_EQ(clamp_u8(0), 0);
  EXPECT_EQ(clamp_u8(255), 255);
  EXPECT_EQ(clamp_u8(INT32_MAX), 255);
  EXPECT_EQ(clamp_u8(INT32_MIN), 0);
}

TEST(PropertyTest, ReadsTheEnvironment) {
  char value[PROPERTY_VALUE_MAX];
  {
    const ScopedEnv variable("A_TEST_PROPERTY", "17");
    EXPECT_EQ(property_get("a.test.property", value, "x"), 2);
    EXPECT_STREQ(value, "17");
  }
  const ScopedEnv unset("A_TEST_PROPERTY", nullptr);
  EXPECT_EQ(property_get("a.test.property", value, "fallback"), 8);
  EXPECT_STREQ(value, "fallback");
  EXPECT_EQ(property_get("a.test.property", value, nullptr), 0);
  const ScopedEnv huge("A_TEST_PROPERTY", std::string(500, '9').c_str());
  EXPECT_EQ(property_get("a.test.property", value, ""), PROPERTY_VALUE_MAX - 1);
  EXPECT_EQ(std::string(value), std::string(PROPERTY_VALUE_MAX - 1, '9'));
}

TEST(DirectoriesTest, VariablesNameOthers) {
  const ScopedEnv no_firmware("VOREL_FIRMWARE_DIR", nullptr);
  const ScopedEnv no_dumps("VOREL_DUMP_DIR", "");
  EXPECT_STREQ(firmware_directory(), "/vendor/firmware");
  EXPECT_STREQ(dump_directory(), "/data/vendor/camera/vorel");
  const ScopedEnv firmware("VOREL_FIRMWARE_DIR", "/tmp/a");
  const ScopedEnv dumps("VOREL_DUMP_DIR", "/tmp/b");
  EXPECT_STREQ(firmware_directory(), "/tmp/a");
  EXPECT_STREQ(dump_directory(), "/tmp/b");
}

TEST(CpuTest, TheseTestsRunOnAFittingProcessor) {
  EXPECT_TRUE(cpu_runs_kernels());
  EXPECT_STREQ(missing_cpu_feature(), "none");
}

TEST(ThreadAttributesTest, NamesTheThread) {
  char before[16];
  prctl(PR_GET_NAME, before, 0, 0, 0);
  set_thread_name("a-name");
  char name[16];
  prctl(PR_GET_NAME, name, 0, 0, 0);
  EXPECT_STREQ(name, "a-name");
  set_thread_name(before);
  EXPECT_NE(thread_affinity(), 0u);
}

TEST(ErrorTextTest, GivesTheSystemsText) {
  char buffer[kErrorTextSize];
  EXPECT_STREQ(error_text(ENOENT, buffer), "No such file or directory");
}

}  // namespace
