#include "tools/verbs/denoise_summary.h"

#include <cstdio>

#include "tools/files/json_text.h"
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

std::string change_text(const DenoiseSummary& summary) {
  if (summary.skipped_frames == summary.frames) {
    return "nothing: noise index " + std::to_string(summary.strength.noise_index) +
           " is below the tuning's enableNoiseIndex " + std::to_string(summary.enable_noise_index);
  }
  const ChangeCount& change = summary.change;
  if (change.luma().changed == 0 && change.chroma().changed == 0) {
    return "nothing: this tuning leaves every sample as it was";
  }
  return plane_text("chroma", change.chroma()) + "; " + plane_text("luma", change.luma());
}

json_t* plane_object(const ChangeCount::Plane& plane) {
  return json_pack("{sfsf}", "changed_percent", plane.share_percent(), "mean_change", plane.mean());
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
  text += line("changed", change_text(summary));
  if (!summary.compare.empty()) {
    text += line("compare", "before and after" +
                                std::string(summary.truth.empty() ? "" : " and the truth") +
                                ", side by side, in " + summary.compare);
  }
  if (!summary.page.empty()) text += line("page", summary.page);
  if (!summary.dumps.empty()) text += line("dumps", summary.dumps);
  if (!summary.truth.empty()) {
    text += line("truth", summary.truth);
    text += distance_table(summary.distances);
  }
  return text;
}

std::string summary_line(const DenoiseSummary& summary) {
  return summary.input + " -> " + summary.output + ": noise index " + summary.noise_index_text +
         ", changed " + change_text(summary);
}

json_t* summary_object(const DenoiseSummary& summary) {
  json_t* object = json_object();
  const auto set = [&](const char* key, json_t* value) { json_object_set_new(object, key, value); };
  set("input", json_text(summary.input));
  set("output", json_text(summary.output));
  set("tuning", json_text(summary.tuning));
  set("tuning_date", json_text(summary.tuning_date));
  set("sensor", json_text(summary.sensor));
  set("noise_index", json_integer(summary.strength.noise_index));
  set("percent", json_integer(summary.strength.percent));
  set("noise_index_source", json_text(summary.noise_index_text));
  set("width", json_integer(summary.size.width));
  set("height", json_integer(summary.size.height));
  set("frames", json_integer(summary.frames));
  set("skipped_frames", json_integer(summary.skipped_frames));
  set("milliseconds", json_real(summary.milliseconds));
  set("luma", plane_object(summary.change.luma()));
  set("chroma", plane_object(summary.change.chroma()));
  if (!summary.dumps.empty()) set("dumps", json_text(summary.dumps));
  if (!summary.distances.empty()) {
    set("truth", json_text(summary.truth));
    set("distances", distance_list(summary.distances));
  }
  if (!summary.trouble.empty()) set("error", json_text(summary.trouble));
  return object;
}

std::string summary_json(const DenoiseSummary& summary) {
  return json_lines(summary_object(summary));
}

}  // namespace tool
