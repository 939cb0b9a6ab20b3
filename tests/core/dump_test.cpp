#include "core/dump.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <csignal>
#include <map>

#include "tests/core/handle_fixture.h"

namespace {

using ::testing::UnorderedElementsAreArray;

std::string read_file(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class DumpTest : public HandleTest {
 protected:
  // Name and size of every file below the dump directory.
  std::map<std::string, size_t> files() const {
    std::map<std::string, size_t> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(dumps_.path())) {
      if (entry.is_regular_file()) found[entry.path().filename()] = entry.file_size();
    }
    return found;
  }
  std::string content(const std::string& name) const {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(dumps_.path())) {
      if (entry.path().filename() == name) return read_file(entry.path());
    }
    ADD_FAILURE() << "no dump " << name;
    return "";
  }

  TempDir dumps_;
  ScopedEnv dump_variable_{"VOREL_DUMP_DIR", dumps_.path().c_str()};
};

TEST_F(DumpTest, FrameLevelsWriteInputAndOutput) {
  use_tuning(kBothPaths);
  for (const char* level : {"2", "3", "4"}) {
    const ScopedEnv variable(kDebugVariable, level);
    vorel* handle = open(64, 48);
    ASSERT_NE(handle, nullptr);
    TestFrame frame(64, 48);
    const std::vector<uint8_t> before = frame.bytes();
    run(handle, &frame, 640, level[0] == '4' ? VOREL_FMT_NM21 : VOREL_FMT_NV21);
    vorel_deinit(handle);
    std::map<std::string, size_t> expected;
    if (level[0] >= '3') {
      expected["input_64_48_0_640.nv21"] = 64 * 48 * 3 / 2;
      EXPECT_EQ(content("input_64_48_0_640.nv21"), std::string(before.begin(), before.end()));
    }
    if (level[0] >= '4') {
      expected["output_64_48_0_640.nv21"] = 64 * 48 * 3 / 2;
      const std::vector<uint8_t> after = frame.bytes();
      EXPECT_EQ(content("output_64_48_0_640.nv21"), std::string(after.begin(), after.end()));
    }
    EXPECT_EQ(files(), expected) << "level " << level;
  }
}

// One contiguous NV21 block, and an odd height, whose file is half a chroma row longer.
TEST_F(DumpTest, FrameDumpReadsOnlyThePlanes) {
  const ScopedEnv variable(kDebugVariable, "3");
  use_tuning(R"({"enableNoiseIndex": 0, "enable": 0, "MFD_UV_tuning": {"enable": 0}})");
  for (int height : {16, 17}) {
    vorel* handle = open(16, height);
    ASSERT_NE(handle, nullptr);
    const TestFrame source(16, height);
    const std::vector<uint8_t> bytes = source.bytes();
    GuardedPlane<uint8_t> block(bytes.size());
    std::copy(bytes.begin(), bytes.end(), block.data());
    vorel_run(handle, block.data(), block.data() + 16 * height, 16, height, VOREL_FMT_NV21, 1);
    std::string expected(bytes.begin(), bytes.end());
    expected.resize(static_cast<size_t>(height) * 24);
    EXPECT_EQ(content("input_16_" + std::to_string(height) + "_0_1.nv21"), expected);
    vorel_deinit(handle);
  }
}

TEST_F(DumpTest, PackedAndUnknownFrames) {
  const ScopedEnv variable(kDebugVariable, "3");
  use_tuning(kBothPaths);
  GuardedPlane<uint8_t> packed(16 * 16 * 2);
  for (const auto& [format, dumped] : {std::pair(VOREL_FMT_YUYV, 1), std::pair(0x41424344, 0)}) {
    vorel* handle = open(16, 16);
    ASSERT_NE(handle, nullptr);
    log_.clear();
    vorel_run(handle, packed.data(), nullptr, 16, 16, format, 640);
    EXPECT_EQ(log_.count("Dump input image to file(YUYV)"), dumped);
    EXPECT_EQ(log_.count("Image dumper doesn't support this input format"), 1 - dumped);
    vorel_deinit(handle);
  }
  EXPECT_EQ(files().at("input_16_16_0_640.yuyv"), 512u);
}

TEST_F(DumpTest, PlaneLevelWritesEveryPlane) {
  const ScopedEnv variable(kDebugVariable, "5");
  use_tuning(kBothPaths);
  vorel* handle = open(128, 72);
  ASSERT_NE(handle, nullptr);
  TestFrame frame(128, 72);
  run(handle, &frame);
  vorel_deinit(handle);
  // Chroma 64 x 36, bordered 128 x 100, subbands 64 x 50 and 32 x 25.
  std::map<std::string, size_t> expected{{"input_128_72_0_640.nv21", 128 * 72 * 3 / 2},
                                         {"output_128_72_0_640.nv21", 128 * 72 * 3 / 2},
                                         {"d_U_8_5.raw", 40},
                                         {"d_V_8_5.raw", 40},
                                         {"Y_128_72.raw", 128 * 72},
                                         {"d_Y_low_8_5.raw", 40},
                                         {"Y_high_128_80.raw", 128 * 80},
                                         {"f_Y_low_8_5.raw", 40},
                                         {"f_U_8_5.raw", 40},
                                         {"f_V_8_5.raw", 40},
                                         {"u_Y_low_128_80.raw", 128 * 80},
                                         {"u_U_64_40.raw", 64 * 40},
                                         {"u_V_64_40.raw", 64 * 40},
                                         {"MFD_UV_128_36.raw", 128 * 36}};
  for (const std::string plane : {"U_", "V_"}) {
    expected["p_" + plane + "128_100.raw"] = 128 * 100 * 2;
    expected["dS_" + plane + "128_100.raw"] = 128 * 100 * 2;
    expected["dS_" + plane + "64_36_crop.raw"] = 64 * 36 * 2;
    expected["dH_" + plane + "32_25.raw"] = 32 * 25 * 2;
    expected["dH_" + plane + "16_9_crop.raw"] = 16 * 9 * 2;
    for (int band = 0; band < 7; ++band) {
      const std::string name = "fW_" + std::to_string(band) + "_" + plane;
      expected[name + (band < 4 ? "32_25.raw" : "64_50.raw")] = band < 4 ? 1600 : 6400;
      expected[name + (band < 4 ? "16_9_crop.raw" : "32_18_crop.raw")] = band < 4 ? 288 : 1152;
    }
  }
  EXPECT_EQ(files(), expected);
  // Contents that can be told from the frame.
  const TestFrame original(128, 72);
  EXPECT_EQ(static_cast<uint8_t>(content("d_U_8_5.raw")[9]), original.uv[8 * 128 + 16]);
  EXPECT_EQ(static_cast<uint8_t>(content("d_V_8_5.raw")[9]), original.uv[8 * 128 + 17]);
  EXPECT_EQ(content("MFD_UV_128_36.raw"),
            std::string(frame.uv.data(), frame.uv.data() + frame.uv.size()));
  EXPECT_EQ(content("Y_128_72.raw"),
            std::string(original.y.data(), original.y.data() + original.y.size()));
}

TEST_F(DumpTest, FolderIsNamedInTheTimeZoneOfNow) {
  const ScopedEnv variable(kDebugVariable, "3");
  use_tuning(kBothPaths);
  std::string hours[2];
  for (int i = 0; i < 2; ++i) {
    const ScopedEnv zone("TZ", i == 0 ? "EAST-9" : "WEST+3");
    vorel* handle = open(16, 16);
    ASSERT_NE(handle, nullptr);
    const std::string path = handle->dump_path;
    hours[i] = path.substr(path.size() - 6, 2);
    vorel_deinit(handle);
  }
  // 12 hours apart, or 11 or 13 when the hour has changed meanwhile.
  EXPECT_NEAR(std::abs(std::stoi(hours[0]) - std::stoi(hours[1])), 12, 1) << hours[0] << hours[1];
}

// A frame at this level writes 52 files; whatever is wrong with the folder is told once.
TEST_F(DumpTest, TroubleIsToldOnceAFrame) {
  const ScopedEnv variable(kDebugVariable, "5");
  use_tuning(kBothPaths);
  enum class Trouble { kNone, kNoFolder, kFolderGone, kNoSpace };
  const struct {
    Trouble kind;
    dump_counts counts;
    std::string line;
  } cases[] = {
      {Trouble::kNone, {52, 0, 0}, ""},
      {Trouble::kNoFolder, {0, 52, ENOENT}, "Failed to open dump file /input_128_72_0_640.nv21!"},
      {Trouble::kFolderGone, {0, 52, ENOENT}, "Failed to open dump file "},
      // Two frames, three planes of luma's size and four bordered ones exceed the limit.
      {Trouble::kNoSpace, {43, 9, EFBIG}, "Failed to write dump file "},
  };
  ASSERT_NE(signal(SIGXFSZ, SIG_IGN), SIG_ERR);
  for (const auto& c : cases) {
    const ScopedEnv folder("VOREL_DUMP_DIR",
                           c.kind == Trouble::kNoFolder ? "/proc/none" : dumps_.path().c_str());
    vorel* handle = open(128, 72);
    ASSERT_NE(handle, nullptr);
    if (c.kind == Trouble::kFolderGone) std::filesystem::remove_all(handle->dump_path);
    rlimit limit;
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{6400, limit.rlim_max};
    if (c.kind == Trouble::kNoSpace) setrlimit(RLIMIT_FSIZE, &small);
    log_.clear();
    TestFrame frame(128, 72);
    vorel_frame_info info{};
    info.size = sizeof(info);
    const vorel_frame call{
        sizeof(call), frame.y.data(), frame.uv.data(), 128, 128, 128, 72, VOREL_LAYOUT_NV21, 640};
    EXPECT_EQ(vorel_denoise_frame(handle, &call, &info), VOREL_DONE);
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(log_.errors(), c.kind == Trouble::kNone ? 0 : 1);
    if (!c.line.empty()) EXPECT_EQ(log_.count_prefix(c.line), 1) << c.line;
    EXPECT_EQ(log_.count_prefix("Image is dumped in "), c.counts.written);
    EXPECT_EQ(files().size(), static_cast<size_t>(c.counts.written)) << "incomplete files stay";
    EXPECT_EQ(info.dumps_written, c.counts.written) << c.line;
    EXPECT_EQ(info.dumps_failed, c.counts.failed) << c.line;
    EXPECT_EQ(info.dumps_error, c.counts.error) << c.line;
    vorel_deinit(handle);
    std::filesystem::remove_all(dumps_.path());
    std::filesystem::create_directory(dumps_.path());
  }
}

}  // namespace
