#include "tools/verbs/denoise_summary.h"

#include <cstdio>

#include "tools/files/printable.h"

namespace tool {
namespace {

std::string line(const char* label, const std::string& text) {
  std::string padded = label;
  padded.resize(13, ' ');
  return "  " + padded + printable(text) + "\n";
}

std::string number(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof(text), "%.*f", decimals, value);
  return text;
}

std::string time_line(const DenoiseSummary& summary) {
  const std::string each = number(summary.milliseconds / summary.frames, 1) + " ms";
  if (summary.frames == 1) return line("time", each);
  return line("time", each + " per frame, " + std::to_string(summary.frames) + " frames");
}

std::string plane_text(const char* name, const ChangeCount::Plane& plane) {
  if (plane.changed == 0) return std::string(name) + " unchanged";
  // A share too small for the format must not read as nothing.
  const bool little = plane.changed > 0 && plane.share_percent() < 0.05;
  return std::string(name) + " " + (little ? "under 0.1" : number(plane.share_percent(), 1)) +
         " % of samples, mean change " + number(plane.mean(), 2);
}

std::string change_line(const DenoiseSummary& summary) {
  if (summary.skipped_frames == summary.frames) {
    return line("changed", "nothing: noise index " + std::to_string(summary.noise_index) +
                               " is below the tuning's enableNoiseIndex " +
                               std::to_string(summary.enable_noise_index));
  }
  const ChangeCount& change = summary.change;
  if (change.luma().changed == 0 && change.chroma().changed == 0) {
    return line("changed", "nothing: this tuning leaves every sample as it was");
  }
  return line("changed",
              plane_text("chroma", change.chroma()) + "; " + plane_text("luma", change.luma()));
}

}  // namespace

std::string summary_text(const DenoiseSummary& summary) {
  std::string text = printable(summary.input + " -> " + summary.output) + "\n";
  text += line("tuning",
               summary.tuning + (summary.tuning_date.empty() ? "" : ", " + summary.tuning_date));
  text += line("sensor", summary.sensor);
  text += line("noise index", summary.noise_index_text);
  text += line("size", size_text(summary.size));
  text += time_line(summary);
  text += change_line(summary);
  if (!summary.compare.empty()) {
    text += line("compare", "before and after" +
                                std::string(summary.truth.empty() ? "" : " and the truth") +
                                ", side by side, in " + summary.compare);
  }
  if (!summary.dumps.empty()) text += line("dumps", summary.dumps);
  if (!summary.truth.empty()) {
    text += line("truth", summary.truth);
    text += distance_table(summary.distances);
  }
  return text;
}

}  // namespace tool
