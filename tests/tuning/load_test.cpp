// Files that are no cases of data/: missing, huge, deep, special, and memory that runs short.
#include <gtest/gtest.h>
#include <jansson.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "tests/support/faults.h"
#include "tests/support/log_capture.h"
#include "tests/support/source_path.h"
#include "tests/support/temp_dir.h"
#include "tests/tuning/tuning_fields.h"
#include "tuning/tuning.h"

namespace {

namespace fs = std::filesystem;

class LoadTest : public testing::Test {
 protected:
  fs::path file() const { return directory.path() / "vorel_CASE.json"; }

  // Whether the file of sensor CASE loads and changes something.
  bool loads() {
    cnr_tuning defaults{};
    set_default_tuning(&defaults);
    cnr_tuning tuning = defaults;
    load_tuning_file("CASE", &tuning);
    return !changed_fields(defaults, tuning).empty();
  }

  static auto descriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  }

  TempDir directory;
  ScopedEnv firmware{"VOREL_FIRMWARE_DIR", directory.path().c_str()};
  LogCapture log;
};

// Counts jansson's allocations and fails one of them.
int g_allocations = 0;
int g_failing_allocation = 0;
void* count_malloc(size_t bytes) {
  return ++g_allocations == g_failing_allocation ? nullptr : std::malloc(bytes);
}

}  // namespace

TEST_F(LoadTest, RefusesWhatIsNoFile) {
  const std::string refused = "Cannot open " + file().string();
  const auto open_before = descriptors();
  int refusals = 0;
  const auto expect_refusal = [&](const char* what) {
    SCOPED_TRACE(what);
    json_t* root = reinterpret_cast<json_t*>(&refusals);
    EXPECT_FALSE(LoadJson("CASE", root));
    EXPECT_EQ(root, reinterpret_cast<json_t*>(&refusals));  // untouched
    EXPECT_FALSE(loads());
    refusals += 2;
    EXPECT_EQ(log.count(refused), refusals);
    EXPECT_EQ(log.count("LoadJson(CASE) failed"), refusals / 2);
    EXPECT_EQ(log.count_prefix("JSON["), 0);
  };
  expect_refusal("missing");

  fs::create_directory(file());
  expect_refusal("directory");
  fs::remove(file());

  ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
  expect_refusal("pipe without a writer");
  fs::remove(file());

  fs::create_symlink(file(), file());
  expect_refusal("link to itself");
  fs::remove(file());

  fs::create_symlink("/dev/zero", file());
  expect_refusal("endless device");
  EXPECT_EQ(descriptors(), open_before);
}

TEST_F(LoadTest, FollowsLinksToFiles) {
  const auto open_before = descriptors();
  directory.write("other.json", "[{\"enable\": 0}]");
  fs::create_symlink(directory.path() / "other.json", file());
  EXPECT_TRUE(loads());
  EXPECT_EQ(descriptors(), open_before);
}

TEST_F(LoadTest, HoldsPathsTo511Bytes) {
  // "<directory>/vorel_<name>.json"; components stay below the file system's 255 bytes.
  const auto load_with_path_length = [&](size_t length) {
    fs::path deep = directory.path();
    while (deep.string().size() + 101 < length - 60) deep /= std::string(100, 'd');
    const size_t rest = length - deep.string().size() - std::strlen("/vorel_.json");
    const std::string name(rest, 'n');
    fs::create_directories(deep);
    std::ofstream(deep / ("vorel_" + name + ".json")) << "[{\"enable\": 0}]";
    const ScopedEnv other("VOREL_FIRMWARE_DIR", deep.c_str());
    json_t* root = nullptr;
    const bool loaded = LoadJson(name.c_str(), root);
    EXPECT_EQ(loaded, root != nullptr);
    ReleaseJson(root);
    EXPECT_EQ(log.count_prefix("Cannot open " + deep.string() + "/vorel_n"), loaded ? 0 : 1);
    return loaded;
  };
  EXPECT_TRUE(load_with_path_length(511));
  EXPECT_FALSE(load_with_path_length(512));
  EXPECT_FALSE(load_with_path_length(900));
}

TEST_F(LoadTest, TakesHugeFiles) {
  // 64 MB: a long text and many blank lines before the key that counts.
  std::string text = "[{\"note\": \"" + std::string(32u << 20, 'x') + "\"," +
                     std::string(32u << 20, '\n') + "\"enable\": 0}]";
  directory.write("vorel_CASE.json", text);
  EXPECT_TRUE(loads());
  EXPECT_EQ(log.count("JSON[vorel_CASE.json] fileSize=" + std::to_string(text.size())), 1);

  // A file without blocks behind it: too large to be a tuning.
  fs::resize_file(file(), uintmax_t{1} << 31);
  EXPECT_FALSE(loads());
  EXPECT_EQ(log.count("LoadJson, " + file().string() + " is too large"), 1);
}

TEST_F(LoadTest, RefusesDeepNesting) {
  const auto nested = [](size_t depth) {
    return "[{\"enable\": 0, \"note\": " + std::string(depth, '[') + std::string(depth, ']') + "}]";
  };
  directory.write("vorel_CASE.json", nested(2000));
  EXPECT_TRUE(loads());
  directory.write("vorel_CASE.json", nested(1000000));
  EXPECT_FALSE(loads());
  EXPECT_EQ(log.count_containing("maximum parsing depth reached"), 1);
  directory.write("vorel_CASE.json", std::string(1000000, '['));
  EXPECT_FALSE(loads());
  EXPECT_EQ(log.count("LoadJson(CASE) failed"), 2);
}

TEST_F(LoadTest, SurvivesEveryTruncation) {
  std::ifstream sample(source_path("tuning/samples/vorel_NOTHING.json"));
  std::ostringstream whole;
  whole << sample.rdbuf();
  std::string text = whole.str();
  while (!text.empty() && text.back() != ']') text.pop_back();
  for (size_t length = 0; length < text.size(); length += 7) {
    directory.write("vorel_CASE.json", text.substr(0, length));
    ASSERT_FALSE(loads()) << length;
  }
  directory.write("vorel_CASE.json", text);
  EXPECT_TRUE(loads());
}

TEST_F(LoadTest, ReportsShortMemoryForTheText) {
  directory.write("vorel_CASE.json", "[{\"enable\": 0}]");
  {
    const FaultScope fault(FaultScope::Kind::kAllocation, 1);
    EXPECT_FALSE(loads());
    EXPECT_TRUE(fault.fired());
  }
  EXPECT_EQ(log.count("LoadJson, no memory for 15 bytes of " + file().string()), 1);
  EXPECT_EQ(log.count("LoadJson(CASE) failed"), 1);
  EXPECT_TRUE(loads());
}

TEST_F(LoadTest, ReportsShortMemoryForTheTree) {
  directory.write("vorel_CASE.json",
                  "[{\"enable\": 0, \"CNRTuningSetfile\": {\"Date\": \"x\"}, \"f\": [1, 2.5]}]");
  json_set_alloc_funcs(count_malloc, std::free);
  int failed = 0;
  for (int nth = 1;; ++nth) {
    g_allocations = 0;
    g_failing_allocation = nth;
    const bool loaded = loads();
    if (g_allocations < nth) {
      EXPECT_TRUE(loaded);
      break;
    }
    if (!loaded) ++failed;  // the parser can do without some of them
  }
  json_set_alloc_funcs(std::malloc, std::free);
  EXPECT_GT(failed, 10);
  EXPECT_EQ(log.count_prefix("Error loading JSON file "), failed);
  EXPECT_EQ(log.count("LoadJson(CASE) failed"), failed);
}

TEST_F(LoadTest, ReadersDropAReferenceOfARefusedRoot) {
  cnr_tuning tuning{};
  char version[kTuningVersionSize] = "before";
  for (const char* text : {"{}", "[{}, 3]"}) {
    json_t* root = json_loads(text, 0, nullptr);
    ASSERT_NE(root, nullptr);
    json_incref(root);
    json_incref(root);
    EXPECT_EQ(root->refcount, 3u);
    getTuningVersions(root, version);
    EXPECT_EQ(root->refcount, 2u);
    decodeJson(root, &tuning);
    EXPECT_EQ(root->refcount, 1u);
    ReleaseJson(root);  // the last one: leak checkers watch
  }
  json_t* good = json_loads("[{}]", 0, nullptr);
  getTuningVersions(good, version);
  decodeJson(good, &tuning);
  EXPECT_EQ(good->refcount, 1u);
  ReleaseJson(good);
  EXPECT_STREQ(version, "before");

  log.clear();
  getTuningVersions(nullptr, version);
  decodeJson(nullptr, &tuning);
  ReleaseJson(nullptr);
  decodeJson(json_true(), &tuning);  // a value that is never freed
  EXPECT_EQ(log.count("Error loading JSON: root is not an array"), 3);
}
