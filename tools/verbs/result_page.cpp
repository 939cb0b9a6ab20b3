#include "tools/verbs/result_page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "tools/files/atomic_file.h"
#include "tools/tuning/frame_values.h"

namespace tool {
namespace {

// Most differences are below; beyond, the curves are flat.
constexpr size_t kMostSteps = 24;
// Points of a strength curve: enough to see that values lie on straight lines between levels.
constexpr int kPoints = 48;

// Percent of the samples that are off by at most so many steps.
std::vector<double> nearness(const Nv21Frame& frame, const Nv21Frame& reference) {
  std::array<size_t, 256> counts{};
  for (size_t i = 0; i < frame.chroma_bytes(); ++i) {
    ++counts[static_cast<size_t>(std::abs(frame.vu()[i] - reference.vu()[i]))];
  }
  std::vector<double> shares;
  size_t below = 0;
  for (size_t steps = 0; steps <= kMostSteps; ++steps) {
    below += counts[steps];
    shares.push_back(100.0 * static_cast<double>(below) /
                     static_cast<double>(frame.chroma_bytes()));
  }
  return shares;
}

}  // namespace

void write_text_file(const std::string& path, const std::string& text) {
  AtomicFile file(path);
  file.write(text);
  file.commit();
}

Table distance_figures(const std::string& reference, const std::vector<NamedDistance>& pictures) {
  Table table{"Against " + reference, {}, distance_cells(pictures)};
  table.headings = std::move(table.rows.front());
  table.rows.erase(table.rows.begin());
  return table;
}

PageCurves nearness_curves(const std::string& reference_name, const Nv21Frame& reference,
                           const std::vector<NamedFrame>& frames) {
  PageCurves curves{"Chroma samples and how far they are from " + reference_name,
                    "off by at most, 8-bit steps",
                    "percent of samples",
                    false,
                    false,
                    {},
                    {}};
  for (size_t steps = 0; steps <= kMostSteps; ++steps) {
    curves.x.push_back(static_cast<double>(steps));
  }
  for (const NamedFrame& frame : frames) {
    curves.lines.push_back({frame.name, nearness(*frame.frame, reference)});
  }
  return curves;
}

PageCurves strength_curves(const std::string& tuning_text) {
  const LoadedTuning loaded(tuning_text);
  PageCurves curves{"Thresholds of the tuning", "noise index", "threshold", true, true, {}, {}};
  const double first = std::max(loaded.level(0), 1);
  const double last = std::max<double>(loaded.level(loaded.levels() - 1), 2 * first);
  for (int i = 0; i <= kPoints; ++i) {
    curves.x.push_back(std::round(first * std::pow(last / first, i / double{kPoints})));
  }
  for (char number = '0'; number < '5'; ++number) {
    const std::string name = std::string("denoiseThrChroma") + number;
    const KnownKey& known = *find_key("MFD_UV_tuning." + name + "Table");
    PageCurves::Line line{name, {}};
    for (const double x : curves.x) {
      const double value = loaded.for_frame(known, static_cast<int>(x));
      // A logarithmic axis has no 0.
      line.values.push_back(value > 0 ? value : std::nan(""));
    }
    curves.lines.push_back(std::move(line));
  }
  return curves;
}

}  // namespace tool
