#include "tools/verbs/denoise_page.h"

#include <cstdio>

#include "tools/verbs/result_page.h"

namespace tool {
namespace {

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.2f", value);
  return text;
}

Table change_table(const ChangeCount& change) {
  Table table{"What changed", {"plane", "samples changed, %", "mean change, steps"}, {}};
  const auto add = [&table](const char* name, const ChangeCount::Plane& plane) {
    table.rows.push_back({name, number(plane.share_percent()), number(plane.mean())});
  };
  add("chroma", change.chroma());
  add("luma", change.luma());
  return table;
}

}  // namespace

Page denoise_page(DenoiseSummary& summary, const std::string& tuning_text) {
  Page page;
  page.title = summary.input + " denoised";
  page.facts = {{"result", summary.output},
                {"tuning", summary.tuning},
                {"sensor", summary.sensor},
                {"noise index", summary.noise_index_text},
                {"size", size_text(summary.size)}};
  if (summary.frames > 1) page.facts.push_back({"frames", std::to_string(summary.frames)});
  page.pictures = std::move(summary.pictures);
  page.reference = page.pictures.size() > 2 ? 2 : 0;
  if (!summary.distances.empty()) {
    page.tables.push_back(distance_figures(summary.truth, summary.distances));
  }
  page.tables.push_back(change_table(summary.change));
  page.curves = std::move(summary.curves);
  page.curves.push_back(strength_curves(tuning_text));
  return page;
}

}  // namespace tool
