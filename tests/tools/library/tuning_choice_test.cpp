#include "tools/library/tuning_choice.h"

#include <gmock/gmock.h>
#include <jansson.h>
#include <stdlib.h>

#include "tests/support/source_path.h"
#include "tests/tools/run_command.h"
#include "tools/files/failure.h"
#include "tools/tuning/check.h"
#include "tools/tuning/edit.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using tool::choose_tuning;
using tool::TuningChoice;

constexpr char kTuning[] = R"([{"old": 1}, {"CNRTuningSetfile": {"Date": "d"}, "enable": 1,
  "MFD_UV_tuning": {"enable": 1, "CSatThr1Table": [65.0, 1.5]}}])";

class TuningChoiceTest : public testing::Test {
 protected:
  TuningChoiceTest() { unsetenv("VOREL_FIRMWARE_DIR"); }
  ~TuningChoiceTest() override { unsetenv("VOREL_FIRMWARE_DIR"); }

  TestDirectory directory;
};

TEST_F(TuningChoiceTest, WithoutAnythingTheSampleIsUsedForEverySensor) {
  const TuningChoice choice = choose_tuning({std::nullopt, 120, false, false});
  EXPECT_EQ(choice.text, tool::kSampleTuning);
  EXPECT_THAT(choice.description, HasSubstr("sample"));
  EXPECT_EQ(choice.model, "WT1200");
  EXPECT_THAT(tool::check_tuning_text(tool::kSampleTuning), IsEmpty());
  EXPECT_EQ(std::string(tool::kSampleTuning),
            read_text(source_path("tuning/samples/vorel_NOTHING.json")));
}

TEST_F(TuningChoiceTest, DirectoryComesFromOptionOrEnvironment) {
  write_text(directory / "vorel_NOTHING.json", kTuning);
  setenv("VOREL_FIRMWARE_DIR", directory.path().c_str(), 1);
  const TuningChoice choice = choose_tuning({std::nullopt, 0, false, false});
  EXPECT_EQ(choice.description, directory / "vorel_NOTHING.json");
  EXPECT_EQ(choice.text, kTuning);
  const TuningChoice other = choose_tuning({directory.path(), 120, false, false});
  EXPECT_THAT(other.description, HasSubstr("has no vorel_WT1200.json"));
  EXPECT_TRUE(other.is_built_in);
}

TEST_F(TuningChoiceTest, NoneLeavesEveryBuiltInValueInForce) {
  const TuningChoice choice = choose_tuning({"none", 0, false, false});
  EXPECT_TRUE(choice.is_built_in);
  EXPECT_THAT(tool::check_tuning_text(choice.text), IsEmpty());
  json_t* root = json_loads(choice.text.c_str(), 0, nullptr);
  ASSERT_EQ(json_array_size(root), 1u);
  EXPECT_EQ(json_object_size(json_array_get(root, 0)), 1u) << "the date alone";
  json_decref(root);
}

TEST_F(TuningChoiceTest, PathSwitchesChangeTheTextOnly) {
  const std::string path = directory / "t.json";
  write_text(path, kTuning);
  const TuningChoice choice = choose_tuning({path, 0, true, true});
  json_t* root = json_loads(choice.text.c_str(), 0, nullptr);
  const json_t* last = json_array_get(root, 1);
  EXPECT_EQ(json_integer_value(json_object_get(last, "enable")), 0);
  const json_t* wavelet = json_object_get(last, "MFD_UV_tuning");
  EXPECT_EQ(json_integer_value(json_object_get(wavelet, "enable")), 0);
  const json_t* value = json_array_get(json_object_get(wavelet, "CSatThr1Table"), 0);
  EXPECT_TRUE(json_is_real(value)) << "65.0 must not become 65, which the library reads as 0";
  json_decref(root);
  EXPECT_EQ(read_text(path), kTuning);
}

TEST_F(TuningChoiceTest, EachSwitchTouchesItsOwnPath) {
  const auto enables = [](bool spatial_off, bool wavelet_off) {
    const std::string text = tool::with_paths_off("t", "[{}]", spatial_off, wavelet_off);
    json_t* root = json_loads(text.c_str(), 0, nullptr);
    const json_t* object = json_array_get(root, 0);
    const bool spatial = json_object_get(object, "enable") == nullptr;
    const bool wavelet = json_object_get(object, "MFD_UV_tuning") == nullptr;
    json_decref(root);
    return std::pair(spatial, wavelet);
  };
  EXPECT_EQ(enables(true, false), std::pair(false, true));
  EXPECT_EQ(enables(false, true), std::pair(true, false));
}

TEST_F(TuningChoiceTest, UselessFilesAreRefusedOnlyWhenNamed) {
  const std::string path = directory / "vorel_NOTHING.json";
  for (const char* text : {"", "{", "{}", "[]", "[1]", "[{}, 2]"}) {
    write_text(path, text);
    try {
      static_cast<void>(choose_tuning({path, 0, false, false}));
      FAIL() << "accepted: " << text;
    } catch (const tool::Failure& failure) {
      EXPECT_EQ(failure.status(), tool::kBadInput) << text;
      EXPECT_THAT(failure.what(), HasSubstr(path));
    }
    const TuningChoice choice = choose_tuning({directory.path(), 0, false, false});
    EXPECT_TRUE(choice.is_built_in) << "as on the phone";
    EXPECT_THAT(choice.description, HasSubstr("built-in values (" + path));
  }
  EXPECT_THROW(static_cast<void>(choose_tuning({directory / "none.json", 0, false, false})),
               tool::Failure);
}

TEST_F(TuningChoiceTest, UnknownSensorsGetANamedFileAndElseTheBuiltInValues) {
  write_text(directory / "t.json", kTuning);
  const TuningChoice choice = choose_tuning({std::nullopt, 99, false, false});
  EXPECT_EQ(choice.model, "");
  EXPECT_TRUE(choice.is_built_in);
  EXPECT_TRUE(choose_tuning({directory.path(), 99, false, false}).is_built_in);
  EXPECT_EQ(choose_tuning({directory / "t.json", 99, false, false}).text, kTuning);
}

}  // namespace
