#include "tools/tune/tuning_values.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <numeric>

namespace tool {
namespace {

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + "\"";
}

std::string whole(int value) { return std::to_string(value); }

// At most three digits, and always a decimal point: without one a real number reads as 0.
std::string real(double value) {
  char text[32];
  std::snprintf(text, sizeof(text), value < 100 ? "%.3g" : "%.0f", value);
  std::string result = text;
  if (result.find_first_of(".e") == std::string::npos) result += ".0";
  return result;
}

using LevelText = std::function<std::string(const LevelValues&)>;

std::string table(const char* indent, const char* key, const std::vector<LevelValues>& levels,
                  const LevelText& text) {
  std::string result = std::string(indent) + quoted(key) + ": [";
  for (const LevelValues& level : levels) {
    if (&level != &levels.front()) result += ", ";
    result += text(level);
  }
  return result + "]";
}

std::string spatial_section(const std::vector<LevelValues>& levels) {
  const auto line = [&](const char* key, int SpatialValues::* value) {
    return table("      ", key, levels,
                 [value](const LevelValues& level) { return whole(level.spatial.*value); });
  };
  return "    \"interleaving_tuning\": {\n" +
         line("d_Y_upper_thresh_table", &SpatialValues::d_y_upper) + ",\n" +
         line("d_Y_lower_thresh_table", &SpatialValues::d_y_lower) + ",\n" +
         line("d_UV_thresh_table", &SpatialValues::d_uv) + ",\n" +
         line("cs_upper_thresh_table", &SpatialValues::cs_upper) + ",\n" +
         line("cs_lower_thresh_table", &SpatialValues::cs_lower) + "\n    },\n";
}

std::string wavelet_section(const TuningValues& values) {
  const auto constant = [&](const char* key, const char* value) {
    return table("      ", key, values.levels, [value](const LevelValues&) { return value; });
  };
  std::string text =
      "    \"MFD_UV_tuning\": {\n      \"enable\": " + whole(values.wavelet_path ? 1 : 0) + ",\n" +
      constant("radialModeTable", "0.0");
  for (size_t i = 0; i < kThresholds; ++i) {
    const std::string key = "denoiseThrChroma" + std::to_string(i) + "Table";
    text += ",\n" + table("      ", key.c_str(), values.levels,
                          [i](const LevelValues& level) { return real(level.thresholds[i]); });
  }
  return text + ",\n" + constant("CSatParam1Table", "0.0") + ",\n" +
         constant("CSatParam2Table", "0.0") + ",\n" + constant("CSatThr1Table", "65.0") + ",\n" +
         constant("CSatThr2Table", "40.0") + "\n    }\n";
}

// Between a and b in equal ratios, `share` of the way.
double ratio_between(double a, double b, double share) { return a * std::pow(b / a, share); }

int ratio_between(int a, int b, double share) {
  return static_cast<int>(
      std::lround(ratio_between(static_cast<double>(a), static_cast<double>(b), share)));
}

LevelValues between(const LevelValues& low, const LevelValues& high, double share) {
  LevelValues level = low;
  level.interpolated = true;
  level.noise_index = ratio_between(low.noise_index, high.noise_index, share);
  for (size_t i = 0; i < kThresholds; ++i) {
    level.thresholds[i] =
        rounded_threshold(ratio_between(low.thresholds[i], high.thresholds[i], share));
  }
  for (const auto field : {&SpatialValues::d_uv, &SpatialValues::cs_upper, &SpatialValues::cs_lower,
                           &SpatialValues::d_y_upper, &SpatialValues::d_y_lower}) {
    level.spatial.*field = ratio_between(low.spatial.*field, high.spatial.*field, share);
  }
  if (low.chroma_noise && high.chroma_noise) {
    level.chroma_noise = ratio_between(*low.chroma_noise, *high.chroma_noise, share);
  }
  return level;
}

// Into how many steps each gap between neighbours is cut: doublings, or what there is room for.
std::vector<int> steps_in_gaps(const std::vector<LevelValues>& levels) {
  std::vector<double> octaves;
  std::vector<int> steps;
  for (size_t i = 1; i < levels.size(); ++i) {
    octaves.push_back(std::log2(static_cast<double>(levels[i].noise_index) /
                                std::max(1, levels[i - 1].noise_index)));
    steps.push_back(std::max(1, static_cast<int>(std::lround(octaves.back()))));
  }
  const auto level_count = [&steps] {
    return std::accumulate(steps.begin(), steps.end(), size_t{1});
  };
  while (level_count() > kMaxLevels) {
    size_t finest = steps.size();
    for (size_t i = 0; i < steps.size(); ++i) {
      if (steps[i] == 1) continue;
      if (finest == steps.size() || octaves[i] / steps[i] < octaves[finest] / steps[finest]) {
        finest = i;
      }
    }
    if (finest == steps.size()) break;
    --steps[finest];
  }
  return steps;
}

}  // namespace

double rounded_threshold(double threshold) { return std::strtod(real(threshold).c_str(), nullptr); }

std::string tuning_text(const TuningValues& values) {
  const std::vector<LevelValues>& levels = values.levels;
  std::string text = "[\n  {\n    \"CNRTuningSetfile\": {\"Date\": " + quoted(values.date) +
                     "},\n    \"enable\": " + whole(values.spatial_path ? 1 : 0) + ",\n" +
                     table("    ", "noiseIndex_values", levels,
                           [](const LevelValues& level) { return whole(level.noise_index); }) +
                     ",\n";
  const bool has_noise = std::all_of(levels.begin(), levels.end(), [](const LevelValues& level) {
    return level.chroma_noise.has_value();
  });
  if (has_noise) {
    text += table("    ", "chromaNoise_values", levels,
                  [](const LevelValues& level) { return real(*level.chroma_noise); }) +
            ",\n";
  }
  text += "    \"enableNoiseIndex\": " + whole(values.enable_noise_index) +
          ",\n"
          "    \"bilateralfiltering_tuning\": {\n"
          "      \"span_row\": 3,\n"
          "      \"span_col\": 3,\n"
          "      \"val_delta_th\": 7,\n"
          "      \"val_weight_coef\": [65489, 1375, -5503, 835, -37],\n"
          "      \"val_weight_denom_shift\": 10\n"
          "    },\n";
  return text + spatial_section(levels) + wavelet_section(values) + "  }\n]\n";
}

void fill_wide_gaps(std::vector<LevelValues>& levels) {
  const std::vector<int> steps = steps_in_gaps(levels);
  std::vector<LevelValues> filled;
  for (size_t i = 0; i < levels.size(); ++i) {
    filled.push_back(levels[i]);
    if (i + 1 == levels.size()) break;
    for (int step = 1; step < steps[i]; ++step) {
      filled.push_back(between(levels[i], levels[i + 1], static_cast<double>(step) / steps[i]));
    }
  }
  levels = filled;
}

}  // namespace tool
