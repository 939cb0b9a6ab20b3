#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/log_capture.h"
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

// `expected` with one value repeated for all, or all of them.
template <typename Value>
std::vector<std::string> texts(const std::string& name, int count, std::vector<Value> expected) {
  std::vector<std::string> lines;
  for (int i = 0; i < count; ++i) {
    lines.push_back(name + (count > 1 ? "[" + std::to_string(i) + "]" : "") + " = " +
                    value_text(expected[expected.size() > 1 ? i : 0]));
  }
  return lines;
}

}  // namespace

TEST(TuningDefaults, AreTheBuiltInValues) {
  std::vector<std::string> expected;
  const auto ints = [&](const char* name, int count, std::vector<int32_t> values) {
    const auto lines = texts(name, count, std::move(values));
    expected.insert(expected.end(), lines.begin(), lines.end());
  };
  const auto reals = [&](const char* name, int count, float value) {
    const auto lines = texts(name, count, std::vector<float>{value});
    expected.insert(expected.end(), lines.begin(), lines.end());
  };
  ints("enable", 1, {1});
  ints("NILevelNum", 1, {12});
  ints("NILevel", 12, {100, 107, 160, 320, 640, 1280, 2560, 5120, 7680, 10240, 20480, 40960});
  ints("enableNoiseIndex", 1, {40960});
  ints("tab_bit", 1, {4});
  for (const char* span : {"span_Y_row", "span_Y_col", "span_UV_row", "span_UV_col"}) {
    ints(span, 1, {3});
  }
  ints("val_delta_th", 1, {7});
  ints("val_weight_coef", 5, {65489, 1375, -5503, 835, -37});
  ints("val_weight_denom_shift", 1, {10});
  ints("val_weight", 16, {-1});  // left alone
  ints("d_Y_upper_thresh", 1, {4});
  ints("d_Y_lower_thresh", 1, {1});
  ints("d_UV_thresh", 1, {16});
  ints("cs_upper_thresh", 1, {48});
  ints("cs_lower_thresh", 1, {36});
  ints("d_Y_upper_thresh_table", 12, {4});
  ints("d_Y_lower_thresh_table", 12, {1});
  ints("d_UV_thresh_table", 12, {16});
  ints("cs_upper_thresh_table", 12, {48});
  ints("cs_lower_thresh_table", 12, {36});
  ints("MFD_UV.enable", 1, {1});
  reals("radialMode", 1, -1);  // left alone, as the other current values
  reals("denoiseThrChroma", 5, -1);
  for (const char* name : {"CSatParam1", "CSatParam2", "CSatThr1", "CSatThr2"}) reals(name, 1, -1);
  reals("radialModeTable", 12, 0);
  reals("denoiseThrChroma0Table", 12, 100);
  reals("denoiseThrChroma1Table", 12, 90);
  reals("denoiseThrChroma2Table", 12, 70);
  reals("denoiseThrChroma3Table", 12, 70);
  reals("denoiseThrChroma4Table", 12, 60);
  reals("CSatParam1Table", 12, 0);
  reals("CSatParam2Table", 12, 0);
  reals("CSatThr1Table", 12, 65);
  reals("CSatThr2Table", 12, 40);

  cnr_tuning tuning = unwritten();
  set_default_tuning(&tuning);
  EXPECT_EQ(field_texts(tuning), expected);
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
  const std::vector<std::string> lines = log.texts();
  const std::vector<std::string> head = {
      "enable 1",
      "NILevelNum 2",
      "NILevel[0] 100",
      "NILevel[1] 107",
      "enableNoiseIndex 40960",
      "boxfilter, tab_bit 4",
      "bilteralfilter, span_Y_row 3, span_Y_col 3, span_UV_row 3, span_UV_col 9",
      "bilteralfilter, val_delta_th 7, val_weight_coef 65489, 1375, -5503, 835, -37, "
      "val_weight_denom_shift 10",
      "bilteralfilter, val_weight[0] 100"};
  const std::vector<std::string> middle = {
      "bilteralfilter, val_weight[15] 115",
      "interleave, NILevel 0, d_Y_upper_thresh_table 4, d_Y_lower_thresh_table 1, "
      "d_UV_thresh_table 16, cs_upper_thresh_table 48 cs_lower_thresh_table 36",
      "interleave, NILevel 1, d_Y_upper_thresh_table 4, d_Y_lower_thresh_table 1, "
      "d_UV_thresh_table 16, cs_upper_thresh_table 48 cs_lower_thresh_table 35",
      "MFD_UV, enable 0",
      "MFD_UV, NILevel 0, radialModeTable 0.0, denoiseThrChromaTable 100.0, 90.0, 70.0, 70.0, "
      "60.0, CSatParam1Table 0.0, CSatParam2Table 0.0, CSatThr1Table 65.0, CSatThr2Table 0.0"};
  const std::string last =
      "MFD_UV, NILevel 11, radialModeTable 0.0, denoiseThrChromaTable 100.0, 90.0, 70.0, 70.0, "
      "60.0, CSatParam1Table 0.0, CSatParam2Table 0.0, CSatThr1Table 65.0, CSatThr2Table 2.8";
  ASSERT_EQ(lines.size(), 8u + 16 + 2 + 1 + 12);
  EXPECT_TRUE(std::equal(head.begin(), head.end(), lines.begin()));
  EXPECT_TRUE(std::equal(middle.begin(), middle.end(), lines.begin() + 23));
  EXPECT_EQ(lines.back(), last);
  for (const LogLine& line : log.lines()) EXPECT_EQ(line.priority, 4);
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
  EXPECT_EQ(log.texts(),
            (std::vector<std::string>{
                "vorel, enable 1", "vorel, tab_bit 4",
                "vorel, span_row 3, span_col 3, val_delta_th 7, val_weight_coef 65489, 1375, "
                "-5503, 835, -37, val_weight_denom_shift 10",
                "vorel, d_Y_upper_thresh 4, d_Y_lower_thresh 1, d_UV_thresh 16, cs_upper_thresh "
                "48, cs_lower_thresh 37",
                "MFD_UV, enable 1, radialMode -1.0, denoiseThrChroma 0.5, 10.5, 20.5, 30.5, 40.5, "
                "CSatParam1 1.0, CSatParam2 2.0, CSatThr1 3.0, CSatThr2 4.0"}));
  for (const LogLine& line : log.lines()) EXPECT_EQ(line.priority, 4);
}
