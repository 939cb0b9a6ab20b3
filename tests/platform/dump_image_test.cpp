#include <gtest/gtest.h>

#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "vorel/debug.h"

namespace {

class DumpImageTest : public ::testing::Test {
 protected:
  std::string content(const std::string& name) const {
    std::ifstream file(dumps_.path() / name, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << "no dump " << name;
    return {std::istreambuf_iterator<char>(file), {}};
  }

  TempDir dumps_;
  LogCapture log_;
};

void dump(int type, const std::string& dir, const char* prefix, const char* suffix,
          const void* buf1, const void* buf2, unsigned width, unsigned height, int crop_width = -1,
          int crop_height = -1, int crop_x = -1, int crop_y = -1, unsigned element = 1) {
  dumpImage(type, dir.c_str(), prefix, suffix, buf1, buf2, width, height, element, crop_width,
            crop_height, crop_x, crop_y);
}

TEST_F(DumpImageTest, WritesEachTypeUnderItsName) {
  const std::string a = "abcdefghijklmnopqrstuvwxyz";
  const std::string b = "0123456789";
  const std::string dir = dumps_.path();
  dump(0, dir, "p_", nullptr, a.data(), nullptr, 4, 2);
  dump(1, dir, nullptr, "_s", a.data(), nullptr, 4, 2);
  dump(2, dir, "f_", "_1_2", a.data(), b.data(), 4, 2);
  dump(3, dir, "m_", nullptr, a.data(), b.data(), 4, 2);
  dump(5, dir, "none_", nullptr, a.data(), nullptr, 4, 2);
  dump(0, dir, "wide_", nullptr, a.data(), nullptr, 4, 2, -1, -1, -1, -1, 2);
  EXPECT_EQ(content("p_4_2.raw"), a.substr(0, 8));
  EXPECT_EQ(content("4_2_s.yuyv"), a.substr(0, 16));
  EXPECT_EQ(content("f_4_2_1_2.nv21"), a.substr(0, 12));
  EXPECT_EQ(content("m_4_2.nv21_m"), a.substr(0, 8) + b.substr(0, 4));
  EXPECT_EQ(content("none_4_2"), "");
  EXPECT_EQ(content("wide_4_2.raw"), a.substr(0, 16));
  EXPECT_EQ(log_.count("Image is dumped in " + dir + "/p_4_2.raw"), 1);
}

TEST_F(DumpImageTest, CropsToTheEdgeAndNoFurther) {
  const std::string a = "abcdefghijkl";  // 4 x 3
  const std::string dir = dumps_.path();
  dump(0, dir, "c_", nullptr, a.data(), nullptr, 4, 3, 2, 2, 2, 1);
  EXPECT_EQ(content("c_2_2_crop.raw"), "ghkl");
  dump(0, dir, "h_", nullptr, a.data(), nullptr, 2, 3, 1, 2, 1, 1, 2);
  EXPECT_EQ(content("h_1_2_crop.raw"), "ghkl");
  dump(0, dir, "wide_", nullptr, a.data(), nullptr, 4, 3, 3, 2, 2, 1);
  dump(0, dir, "high_", nullptr, a.data(), nullptr, 4, 3, 2, 3, 2, 1);
  EXPECT_EQ(content("wide_3_2_crop.raw"), "");
  EXPECT_EQ(content("high_2_3_crop.raw"), "");
  EXPECT_EQ(log_.count("Failed to write dump file(out of range of image) endX: 5 endY: 3!"), 1);
  EXPECT_EQ(log_.count("Failed to write dump file(out of range of image) endX: 4 endY: 4!"), 1);
}

TEST_F(DumpImageTest, FileThatCannotBeOpened) {
  dump(0, dumps_.path() / "absent", "p_", nullptr, "x", nullptr, 1, 1);
  dump(0, "", "p_", nullptr, "x", nullptr, 1, 1);
  EXPECT_EQ(
      log_.count("Failed to open dump file " + (dumps_.path() / "absent").string() + "/p_1_1.raw!"),
      1);
  EXPECT_EQ(log_.count("Failed to open dump file /p_1_1.raw!"), 1);
}

// The name leads to a device that is always full.
TEST_F(DumpImageTest, FullDisk) {
  const std::string name = dumps_.path() / "p_4_2.raw";
  std::filesystem::create_symlink("/dev/full", name);
  dump(0, dumps_.path(), "p_", nullptr, "abcdefgh", nullptr, 4, 2);
  dump(0, dumps_.path(), "p_", nullptr, "abcdefgh", nullptr, 4, 2);
  EXPECT_EQ(log_.count("Failed to write dump file " + name + ": No space left on device"), 2);
  EXPECT_EQ(log_.lines().size(), 2u);
}

TEST(ClockTest, ElapsedTime) {
  timeval past;
  set_current_time(&past);
  past.tv_sec -= 2;
  const int64_t usec = get_elapsed_time_usec(&past);
  EXPECT_GE(usec, 2000000);
  EXPECT_LT(usec, 60000000);
  EXPECT_GE(get_elapsed_time_msec(&past), 2000);
  past.tv_sec += 3600;  // the clock was set back
  EXPECT_LT(get_elapsed_time_usec(&past), 0);
}

}  // namespace
