#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/log_capture.h"
#include "tests/support/source_path.h"
#include "tests/tuning/expected_file.h"
#include "tests/tuning/tuning_fields.h"
#include "tuning/tuning.h"

namespace {

// A block in which every value is -1, so that a value that nobody writes is seen.
cnr_tuning unwritten() {
  cnr_tuning tuning{};
  for_each_field(tuning, [](const char*, const auto* values, int count) {
    using Value = std::remove_cv_t<std::remove_reference_t<decltype(*values)>>;
    std::fill_n(const_cast<Value*>(values), count, static_cast<Value>(-1));
  });
  return tuning;
}

// One of the texts below tests/tuning/data/built_in.
void expect_built_in(const std::vector<std::string>& lines, const char* file) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  expect_file(text, source_path(std::string("tests/tuning/data/built_in/") + file));
}

}  // namespace

TEST(TuningDefaults, AreTheBuiltInValues) {
  cnr_tuning tuning = unwritten();
  set_default_tuning(&tuning);
  expect_built_in(field_texts(tuning), "defaults.txt");
}

TEST(TuningLog, ListsTheWholeBlock) {
  cnr_tuning tuning{};
  set_default_tuning(&tuning);
  tuning.NILevelNum = 2;
  tuning.bilateralfiltering_tuning.span_UV_col = 9;
  for (int i = 0; i < 16; ++i) tuning.bilateralfiltering_tuning.val_weight[i] = 100 + i;
  for (int i = 0; i < 12; ++i) tuning.mfd_uv_tuning.CSatThr2Table[i] = static_cast<float>(i) / 4;
  tuning.interleaving_tuning.cs_lower_thresh_table[1] = 35;
  tuning.mfd_uv_tuning.enable = 0;
  const LogCapture log;
  log_tuning(&tuning);
  for (const LogLine& line : log.lines()) EXPECT_EQ(line.priority, 4);
  expect_built_in(log.texts(), "listing.txt");
}

TEST(TuningLog, ReadsNoLevelThatIsNotThere) {
  cnr_tuning tuning{};
  set_default_tuning(&tuning);
  for (const int levels : {-5, 0, 13, 1000000}) {
    tuning.NILevelNum = levels;
    const LogCapture log;
    log_tuning(&tuning);
    EXPECT_EQ(log.count_prefix("interleave, NILevel "), levels > 12 ? 12 : 0);
    EXPECT_EQ(log.count_prefix("NILevel["), levels > 12 ? 12 : 0);
    EXPECT_EQ(log.count_prefix("MFD_UV, NILevel "), 12);
  }
}

TEST(TuningLog, ShowsTheValuesInForce) {
  cnr_tuning tuning{};
  set_default_tuning(&tuning);
  tuning.bilateralfiltering_tuning.span_UV_row = 8;
  tuning.interleaving_tuning.cs_lower_thresh = 37;
  mfd_uv_tuning& wavelet = tuning.mfd_uv_tuning;
  for (int i = 0; i < 5; ++i) wavelet.denoiseThrChroma[i] = 10.0f * static_cast<float>(i) + 0.5f;
  wavelet.radialMode = -1.0f;
  wavelet.CSatParam1 = 1.0f;
  wavelet.CSatParam2 = 2.0f;
  wavelet.CSatThr1 = 3.0f;
  wavelet.CSatThr2 = 4.0f;
  const LogCapture log;
  log_current_tuning(&tuning);
  for (const LogLine& line : log.lines()) EXPECT_EQ(line.priority, 4);
  expect_built_in(log.texts(), "in_force.txt");
}
