#include "tools/library/dump_trace.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>

#include "tools/files/failure.h"
#include "tools/library/dump_samples.h"

namespace tool {
namespace {

constexpr double kLowScale = 0.25;  // as pictures of dumps show low bands

std::filesystem::file_time_type time_of(const DumpFile& file) {
  std::error_code error;
  return std::filesystem::last_write_time(file.path, error);
}

// Of each step and component one dump: the newest, and of the two that a plane may have the one
// with its border.
std::vector<const DumpFile*> dumps_of_frame(const std::vector<DumpFile>& files) {
  std::map<std::pair<int, DumpComponent>, const DumpFile*> chosen;
  for (const DumpFile& file : files) {
    if (file.layout == DumpLayout::kDamaged) continue;
    const DumpFile*& best = chosen[{file.order, file.component}];
    const bool is_better = best == nullptr || (best->cropped && !file.cropped) ||
                           (best->cropped == file.cropped && time_of(file) > time_of(*best));
    if (is_better) best = &file;
  }
  std::vector<const DumpFile*> dumps;
  for (const auto& [key, file] : chosen) dumps.push_back(file);
  return dumps;
}

// The sample of a plane that holds a pixel of the frame. Chroma of packed frames has all rows.
double sample_at(const DumpFile& file, const DumpPlane& plane, DumpPixel pixel, bool is_packed) {
  const bool is_chroma_of_frame =
      file.content == DumpContent::kFrame && plane.component != DumpComponent::kLuma;
  const int scale = is_chroma_of_frame ? 2 : file.scale;
  const int rows = is_packed && scale == 2 ? 1 : scale;
  const int x = std::min(pixel.x / scale + file.border, plane.size.width - 1);
  const int y = std::min(pixel.y / rows + file.border, plane.size.height - 1);
  const float sample =
      plane.samples[static_cast<size_t>(y) * static_cast<size_t>(plane.size.width) +
                    static_cast<size_t>(x)];
  return file.content == DumpContent::kLow ? sample * kLowScale : sample;
}

// A component's values where the frame itself has them.
class Chain {
 public:
  void add(DumpStage stage, double value) { values_[stage] = value; }

  // Calls made_by(stage, change) for each stage, in order. `has_spatial` says whether there are
  // dumps of the spatial path.
  template <typename MadeBy>
  void walk(bool is_luma, bool has_spatial, MadeBy made_by) const {
    const auto start = values_.find(DumpStage::kInput);
    if (start == values_.end()) return;
    double before = start->second;
    const bool has_wavelet = values_.contains(DumpStage::kSpatial);
    for (const auto& [stage, value] : values_) {
      if (stage == DumpStage::kSpatial && has_spatial) made_by("spatial path", value - before);
      if (stage == DumpStage::kWavelet) made_by("wavelet path", value - before);
      if (stage == DumpStage::kSaturation) made_by("saturation and rounding", value - before);
      if (stage == DumpStage::kOutput && (is_luma || !has_wavelet)) {
        made_by(has_spatial ? "spatial path" : "whole library", value - before);
      }
      before = value;
    }
  }

 private:
  std::map<DumpStage, double> values_;
};

}  // namespace

DumpTrace trace_pixel(const std::string& directory, const std::vector<DumpFile>& files,
                      DumpPixel pixel) {
  const std::vector<const DumpFile*> dumps = dumps_of_frame(files);
  const auto frame = std::find_if(dumps.begin(), dumps.end(), [](const DumpFile* file) {
    return file->content == DumpContent::kFrame;
  });
  if (frame == dumps.end()) throw input_error(directory, "has no dump of a whole frame");
  DumpTrace trace{pixel, (*frame)->size, {}, {}, {}};
  if (pixel.x >= trace.frame.width || pixel.y >= trace.frame.height) {
    throw usage_error("--trace does not lie in the frame, which is " + size_text(trace.frame));
  }
  const bool is_packed = (*frame)->layout == DumpLayout::kYuyv;

  Chain chains[3];
  bool has_spatial = false;
  int order = -1;
  for (const DumpFile* file : dumps) {
    if (file->order != order) trace.steps.push_back({file->step, {}});
    order = file->order;
    has_spatial |= file->scale == 16;
    for (const DumpPlane& plane : read_dump_planes(*file)) {
      if (plane.samples.empty()) continue;  // chroma of a frame with one row
      const auto component = static_cast<size_t>(plane.component);
      const double value = sample_at(*file, plane, pixel, is_packed);
      trace.steps.back().values[component] = value;
      if (file->stage != DumpStage::kBetween) chains[component].add(file->stage, value);
    }
  }

  for (size_t component = 0; component < 3; ++component) {
    chains[component].walk(component == 0, has_spatial, [&](const char* stage, double change) {
      auto row = std::find_if(trace.changes.begin(), trace.changes.end(),
                              [&](const TraceChange& known) { return known.stage == stage; });
      if (row == trace.changes.end()) row = trace.changes.insert(row, {stage, {}});
      row->change[component] = change;
      const double most = trace.largest ? std::fabs(trace.largest->change) : 0;
      if (std::fabs(change) > most) {
        trace.largest = {stage, static_cast<DumpComponent>(component), change};
      }
    });
  }
  return trace;
}

}  // namespace tool
