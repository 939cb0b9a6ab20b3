// Every field of the tuning by name, listed apart from the table that the library works with.
#ifndef VOREL_TESTS_TUNING_TUNING_FIELDS_H_
#define VOREL_TESTS_TUNING_TUNING_FIELDS_H_

#include <cmath>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "tuning/tuning.h"
#include "vorel/tuning.h"

// As a handle loads the file of its sensor.
inline void load_tuning_file(const char* sensor_name, cnr_tuning* tuning) {
  char version[kTuningVersionSize];
  static_cast<void>(load_tuning({sensor_name, nullptr, nullptr, 0}, tuning, version));
}

// Calls visit(name, first value, count) for each field.
template <typename Visitor>
void for_each_field(const cnr_tuning& t, Visitor visit) {
  visit("enable", &t.enable, 1);
  visit("NILevelNum", &t.NILevelNum, 1);
  visit("NILevel", t.NILevel, 12);
  visit("enableNoiseIndex", &t.enableNoiseIndex, 1);
  visit("tab_bit", &t.boxfiltering_tuning.tab_bit, 1);

  const bilateralfiltering_tuning& b = t.bilateralfiltering_tuning;
  visit("span_Y_row", &b.span_Y_row, 1);
  visit("span_Y_col", &b.span_Y_col, 1);
  visit("span_UV_row", &b.span_UV_row, 1);
  visit("span_UV_col", &b.span_UV_col, 1);
  visit("val_delta_th", &b.val_delta_th, 1);
  visit("val_weight_coef", b.val_weight_coef, 5);
  visit("val_weight_denom_shift", &b.val_weight_denom_shift, 1);
  visit("val_weight", b.val_weight, 16);

  const interleaving_tuning& i = t.interleaving_tuning;
  visit("d_Y_upper_thresh", &i.d_Y_upper_thresh, 1);
  visit("d_Y_lower_thresh", &i.d_Y_lower_thresh, 1);
  visit("d_UV_thresh", &i.d_UV_thresh, 1);
  visit("cs_upper_thresh", &i.cs_upper_thresh, 1);
  visit("cs_lower_thresh", &i.cs_lower_thresh, 1);
  visit("d_Y_upper_thresh_table", i.d_Y_upper_thresh_table, 12);
  visit("d_Y_lower_thresh_table", i.d_Y_lower_thresh_table, 12);
  visit("d_UV_thresh_table", i.d_UV_thresh_table, 12);
  visit("cs_upper_thresh_table", i.cs_upper_thresh_table, 12);
  visit("cs_lower_thresh_table", i.cs_lower_thresh_table, 12);

  const mfd_uv_tuning& m = t.mfd_uv_tuning;
  visit("MFD_UV.enable", &m.enable, 1);
  visit("radialMode", &m.radialMode, 1);
  visit("denoiseThrChroma", m.denoiseThrChroma, 5);
  visit("CSatParam1", &m.CSatParam1, 1);
  visit("CSatParam2", &m.CSatParam2, 1);
  visit("CSatThr1", &m.CSatThr1, 1);
  visit("CSatThr2", &m.CSatThr2, 1);
  visit("radialModeTable", m.radialModeTable, 12);
  visit("denoiseThrChroma0Table", m.denoiseThrChroma0Table, 12);
  visit("denoiseThrChroma1Table", m.denoiseThrChroma1Table, 12);
  visit("denoiseThrChroma2Table", m.denoiseThrChroma2Table, 12);
  visit("denoiseThrChroma3Table", m.denoiseThrChroma3Table, 12);
  visit("denoiseThrChroma4Table", m.denoiseThrChroma4Table, 12);
  visit("CSatParam1Table", m.CSatParam1Table, 12);
  visit("CSatParam2Table", m.CSatParam2Table, 12);
  visit("CSatThr1Table", m.CSatThr1Table, 12);
  visit("CSatThr2Table", m.CSatThr2Table, 12);
}

inline std::string value_text(int32_t value) { return std::to_string(value); }
inline std::string value_text(float value) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.9g", static_cast<double>(value));
  return text;
}

// One text "name = value" or "name[index] = value" per value of the whole tuning.
inline std::vector<std::string> field_texts(const cnr_tuning& tuning) {
  std::vector<std::string> texts;
  for_each_field(tuning, [&](const char* name, const auto* values, int count) {
    for (int i = 0; i < count; ++i) {
      const std::string index = count > 1 ? "[" + std::to_string(i) + "]" : "";
      texts.push_back(name + index + " = " + value_text(values[i]));
    }
  });
  return texts;
}

// The texts of the values in which `tuning` differs from `from`.
inline std::vector<std::string> changed_fields(const cnr_tuning& from, const cnr_tuning& tuning) {
  const std::vector<std::string> before = field_texts(from);
  std::vector<std::string> changed;
  std::vector<std::string> after = field_texts(tuning);
  for (size_t i = 0; i < after.size(); ++i) {
    if (after[i] != before[i]) changed.push_back(std::move(after[i]));
  }
  return changed;
}

#endif  // VOREL_TESTS_TUNING_TUNING_FIELDS_H_
