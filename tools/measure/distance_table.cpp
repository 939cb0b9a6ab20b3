#include "tools/measure/distance_table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/files/json_text.h"
#include "tools/measure/chart_json.h"

namespace tool {
namespace {

struct Figure {
  const char* label;
  const char* key;
  double (PictureDistance::*value)() const;
  bool more_is_better;
};

constexpr Figure kFigures[] = {
    {"PSNR Y, dB", "psnr_y", &PictureDistance::psnr_y, true},
    {"PSNR U, dB", "psnr_u", &PictureDistance::psnr_u, true},
    {"PSNR V, dB", "psnr_v", &PictureDistance::psnr_v, true},
    {"CIEDE2000, mean", "ciede2000", &PictureDistance::mean_ciede2000, false},
};
constexpr size_t kLabelWidth = 17;
constexpr size_t kGap = 2;

double rounded(double value) {
  return std::isfinite(value) ? std::round(value * 100) / 100 : value;
}

// "  +2.31 better"; figures that print alike are the same.
std::string judgement(const Figure& figure, double value, double first) {
  const double now = rounded(value);
  const double before = rounded(first);
  if (now == before) return " (same)";
  const char* word = (now > before) == figure.more_is_better ? "better" : "worse";
  if (!std::isfinite(now) || !std::isfinite(before)) return std::string(" (") + word + ")";
  char text[64];
  std::snprintf(text, sizeof(text), " (%+.2f %s)", now - before, word);
  return text;
}

std::string padded(const std::string& text, size_t width) {
  return text + std::string(width > text.size() ? width - text.size() : 0, ' ');
}

}  // namespace

std::string figure_text(double figure) {
  if (!std::isfinite(figure)) return "equal";
  char text[32];
  std::snprintf(text, sizeof(text), "%.2f", figure);
  return text;
}

std::vector<std::vector<std::string>> distance_cells(const std::vector<NamedDistance>& pictures) {
  std::vector<std::vector<std::string>> rows{{""}};
  for (const NamedDistance& picture : pictures) rows.front().push_back(picture.name);
  for (const Figure& figure : kFigures) {
    rows.push_back({figure.label});
    const double first = (pictures.front().distance.*figure.value)();
    for (const NamedDistance& picture : pictures) {
      const double value = (picture.distance.*figure.value)();
      const bool is_first = rows.back().size() == 1;
      rows.back().push_back(figure_text(value) + (is_first ? "" : judgement(figure, value, first)));
    }
  }
  return rows;
}

std::string distance_table(const std::vector<NamedDistance>& pictures) {
  const std::vector<std::vector<std::string>> rows = distance_cells(pictures);
  std::string table;
  for (const std::vector<std::string>& row : rows) {
    std::string line = padded(row.front(), kLabelWidth);
    for (size_t column = 1; column < row.size(); ++column) {
      size_t width = 0;
      for (const auto& other : rows) width = std::max(width, other[column].size());
      line += padded(row[column], width + kGap);
    }
    table += "  " + line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  }
  return table;
}

json_t* distance_list(const std::vector<NamedDistance>& pictures) {
  json_t* list = json_array();
  for (const NamedDistance& picture : pictures) {
    json_t* entry = json_object();
    json_object_set_new(entry, "file", json_text(picture.name));
    for (const Figure& figure : kFigures) {
      const double value = (picture.distance.*figure.value)();
      json_object_set_new(entry, figure.key, std::isfinite(value) ? json_real(value) : json_null());
    }
    json_array_append_new(list, entry);
  }
  return list;
}

std::string distance_json(const std::string& reference, const std::vector<NamedDistance>& pictures,
                          const std::vector<ChartFigures>& charts) {
  json_t* list = distance_list(pictures);
  for (size_t i = 0; i < charts.size(); ++i) {
    json_t* entry = json_array_get(list, i);
    json_object_set_new(entry, "patches", patches_json(charts[i]));
    if (!charts[i].edges.empty()) json_object_set_new(entry, "edges", edges_json(charts[i]));
  }
  return json_lines(json_pack("{s:o,s:o}", "reference", json_text(reference), "pictures", list));
}

}  // namespace tool
