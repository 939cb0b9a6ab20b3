#include "core/dump.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <csignal>
#include <map>

#include "platform/frame_dumps.h"
#include "tests/core/handle_fixture.h"
#include "tests/support/faults.h"

namespace {

using ::testing::UnorderedElementsAreArray;

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
  enum class Trouble { kNone, kNoFolder, kFolderGone, kNoSpace, kNoMemory };
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
      // For the frame's two planes as one block.
      {Trouble::kNoMemory, {51, 1, ENOMEM}, "Failed to dump input image: no memory"},
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
    {
      const FaultScope fault(FaultScope::Kind::kAllocation, c.kind == Trouble::kNoMemory ? 1 : 0);
      EXPECT_EQ(vorel_denoise_frame(handle, &call, &info), VOREL_DONE);
    }
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
