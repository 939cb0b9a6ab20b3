#include "tools/tuning/typed_key.h"

#include <gmock/gmock.h>

#include "tools/files/failure.h"
#include "tools/library/tuning_choice.h"
#include "tools/tuning/edit.h"
#include "tools/tuning/frame_values.h"

namespace {

using namespace tool;
using testing::HasSubstr;

// What the failure says; empty when there is none.
std::string failure_of(const std::function<void()>& call) {
  try {
    call();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), kBadUsage);
    return failure.what();
  }
  return "";
}

TEST(TypedKey, EverySpellingLeadsToTheKey) {
  for (const char* text : {"MFD_UV_tuning.denoiseThrChroma1Table", "denoiseThrChroma1Table",
                           "MFD_UV_tuning.denoiseThrChroma1", "denoiseThrChroma1"}) {
    EXPECT_EQ(typed_key(text).known->path(), "MFD_UV_tuning.denoiseThrChroma1Table") << text;
  }
  EXPECT_EQ(typed_key("cs_upper_thresh").known->path(),
            "interleaving_tuning.cs_upper_thresh_table");
  EXPECT_EQ(typed_key("enable").known->path(), "enable");
  EXPECT_EQ(typed_key("MFD_UV_tuning.enable").known->path(), "MFD_UV_tuning.enable");
  EXPECT_EQ(typed_key("val_weight_coef[3]").index, 3U);
  for (const auto& [text, reason] :
       {std::pair("denoiseThrChrom1", "did you mean denoiseThrChroma1?"),
        std::pair("val_weight_coef", "[0] to "), std::pair("val_weight_coef[5]", "[4]"),
        std::pair("d_UV_thresh[0]", "holds at every level"),
        std::pair("noiseIndex_values", "no value that changes a frame"),
        std::pair("chromaNoise_values", "no value that changes a frame"),
        std::pair("CNRTuningSetfile.Date", "no value that changes a frame")}) {
    const std::string name = text;
    EXPECT_THAT(failure_of([&] { static_cast<void>(typed_key(name)); }), HasSubstr(reason)) << name;
  }
}

TEST(TypedKey, ValuesLieInTheKeysRange) {
  const KnownKey& real = *typed_key("denoiseThrChroma0").known;
  EXPECT_EQ(typed_value(real, "5"), 5.0);
  EXPECT_EQ(typed_value(real, "640"), 640.0);
  for (const auto& [text, reason] :
       {std::pair("641", "outside 0.0 to 640.0"), std::pair("-0.5", "counts as its magnitude"),
        std::pair("5x", "is no number"), std::pair("", "is no number"),
        std::pair("inf", "is no number")}) {
    const std::string value = text;
    EXPECT_THAT(failure_of([&] { static_cast<void>(typed_value(real, value)); }),
                HasSubstr(reason));
  }
  EXPECT_THAT(
      failure_of([] { static_cast<void>(typed_value(*typed_key("span_row").known, "2.5")); }),
      HasSubstr("is no integer"));
}

// The value holds for every frame, and nothing else changes, whether the file has the key or not.
TEST(TypedKey, EditedTuningDiffersInOneValue) {
  for (const std::string& text : {std::string(kSampleTuning), std::string("[{}]")}) {
    const LoadedTuning before(text);
    for (const char* name :
         {"denoiseThrChroma3", "d_UV_thresh", "span_col", "val_weight_coef[2]", "radialMode"}) {
      const TypedKey key = typed_key(name);
      const LoadedTuning after(with_value("", text, key, 2));
      for (const KnownKey& known : known_keys()) {
        if (known.key.type == key_type::kText || known.for_command) continue;
        const size_t count =
            known.per_level ? before.levels() : static_cast<size_t>(known.key.count);
        for (size_t i = 0; i < count; ++i) {
          const bool is_meant =
              known.path() == key.known->path() && (known.per_level || i == key.index);
          EXPECT_EQ(after.stored(known, i), is_meant ? 2.0 : before.stored(known, i))
              << name << ": " << known.path() << i;
        }
      }
    }
  }
}

}  // namespace
