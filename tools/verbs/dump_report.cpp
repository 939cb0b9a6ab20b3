#include "tools/verbs/dump_report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "tools/files/json_text.h"
#include "tools/library/dump_samples.h"

namespace tool {
namespace {

constexpr int kNameWidth = 52;
constexpr const char* kComponentKeys[] = {"y", "first", "second"};

std::string table_line(const std::string& name, const PixelValues& values, bool with_sign) {
  std::string line = "  " + name;
  line.resize(std::max<size_t>(line.size(), kNameWidth), ' ');
  for (const std::optional<double>& value : values) {
    char cell[32] = "-";
    if (value) std::snprintf(cell, sizeof(cell), with_sign ? "%+.2f" : "%.2f", *value);
    char padded[48];
    std::snprintf(padded, sizeof(padded), "%10s", cell);
    line += padded;
  }
  return line + "\n";
}

std::string heading(const char* name) {
  std::string line = std::string("  ") + name;
  line.resize(kNameWidth, ' ');
  return line + "         Y     first    second\n";
}

// Null for what is not there and what is no number.
json_t* number(const std::optional<double>& value) {
  return value && std::isfinite(*value) ? json_real(*value) : json_null();
}

json_t* values_json(const char* name_key, const std::string& name, const PixelValues& values) {
  json_t* object = json_object();
  json_object_set_new(object, name_key, json_text(name));
  for (size_t i = 0; i < std::size(kComponentKeys); ++i) {
    json_object_set_new(object, kComponentKeys[i], number(values[i]));
  }
  return object;
}

json_t* planes_json(const DumpFile& file) {
  json_t* list = json_array();
  for (const DumpPlane& plane : read_dump_planes(file)) {
    const SampleFigures figures = figures_of(plane.samples);
    json_array_append_new(
        list, json_pack("{s:s,s:o,s:o,s:f,s:f,s:I}", "component",
                        kComponentKeys[static_cast<size_t>(plane.component)], "least",
                        number(figures.least), "most", number(figures.most), "mean", figures.mean,
                        "deviation", figures.deviation, "not_numbers",
                        static_cast<json_int_t>(figures.not_numbers)));
  }
  return list;
}

}  // namespace

std::string trace_table(const DumpTrace& trace) {
  char title[96];
  std::snprintf(title, sizeof(title), "pixel %d,%d of %s\n", trace.pixel.x, trace.pixel.y,
                size_text(trace.frame).c_str());
  std::string table = title + heading("after the step");
  for (const TraceStep& step : trace.steps) table += table_line(step.name, step.values, false);
  table += heading("changed by");
  for (const TraceChange& row : trace.changes) table += table_line(row.stage, row.change, true);
  if (trace.largest) {
    const char* const kNames[] = {"Y", "first of each pair", "second of each pair"};
    char line[128];
    std::snprintf(line, sizeof(line), "  most changed by the %s: %s, %+.2f\n",
                  trace.largest->stage.c_str(),
                  kNames[static_cast<size_t>(trace.largest->component)], trace.largest->change);
    table += line;
  } else {
    table += "  no stage changed it\n";
  }
  return table +
         "  (first of each pair: V in NV21 frames; second: U; wavelet low bands are divided by "
         "4)\n";
}

std::string trace_json(const DumpTrace& trace) {
  json_t* steps = json_array();
  for (const TraceStep& step : trace.steps) {
    json_array_append_new(steps, values_json("step", step.name, step.values));
  }
  json_t* changes = json_array();
  for (const TraceChange& row : trace.changes) {
    json_array_append_new(changes, values_json("stage", row.stage, row.change));
  }
  json_t* largest = json_null();
  if (trace.largest) {
    largest = json_pack("{s:o,s:s,s:f}", "stage", json_text(trace.largest->stage), "component",
                        kComponentKeys[static_cast<size_t>(trace.largest->component)], "change",
                        trace.largest->change);
  }
  return json_lines(json_pack("{s:i,s:i,s:i,s:i,s:o,s:o,s:o}", "x", trace.pixel.x, "y",
                              trace.pixel.y, "width", trace.frame.width, "height",
                              trace.frame.height, "steps", steps, "changes", changes, "largest",
                              largest));
}

std::string list_json(const std::string& directory, const std::vector<DumpFile>& files) {
  json_t* dumps = json_array();
  for (const DumpFile& file : files) {
    json_array_append_new(
        dumps, json_pack("{s:o,s:i,s:i,s:s,s:o,s:o}", "file", json_text(file.name), "width",
                         file.size.width, "height", file.size.height, "layout", layout_text(file),
                         "explanation", json_text(file.explanation), "planes", planes_json(file)));
  }
  return json_lines(json_pack("{s:o,s:o}", "directory", json_text(directory), "dumps", dumps));
}

}  // namespace tool
