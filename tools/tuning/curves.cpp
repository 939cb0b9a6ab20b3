#include "tools/tuning/curves.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "tools/files/print_text.h"

namespace tool {
namespace {

constexpr int kPanelWidth = 560;
constexpr int kPanelHeight = 340;
constexpr int kLeft = 52;  // of the plot in its panel
constexpr int kTop = 40;
constexpr int kPlotWidth = 370;
constexpr int kPlotHeight = 250;
constexpr int kTitleHeight = 40;
constexpr int kSteps = 240;

// Colours that people tell apart whatever they see of red and green; each curve has its own dashes
// too.
constexpr const char* kColours[] = {"#0072b2", "#d55e00", "#009e73", "#cc79a7", "#b8860b"};
constexpr const char* kDashes[] = {"none", "8 3", "3 3", "10 3 2 3", "2 2"};

struct Panel {
  const char* title;
  std::vector<const char*> paths;
  bool is_logarithmic;
};

const std::vector<Panel>& panels() {
  static const std::vector<Panel> all = {
      {"Wavelet thresholds (noise power)",
       {"MFD_UV_tuning.denoiseThrChroma0Table", "MFD_UV_tuning.denoiseThrChroma1Table",
        "MFD_UV_tuning.denoiseThrChroma2Table", "MFD_UV_tuning.denoiseThrChroma3Table",
        "MFD_UV_tuning.denoiseThrChroma4Table"},
       true},
      {"Spatial path: how far chroma and luma are drawn",
       {"interleaving_tuning.d_UV_thresh_table", "interleaving_tuning.cs_upper_thresh_table",
        "interleaving_tuning.cs_lower_thresh_table", "interleaving_tuning.d_Y_upper_thresh_table",
        "interleaving_tuning.d_Y_lower_thresh_table"},
       false},
      {"Radial mode", {"MFD_UV_tuning.radialModeTable"}, false},
      {"Saturation (percent; grey levels)",
       {"MFD_UV_tuning.CSatParam1Table", "MFD_UV_tuning.CSatParam2Table",
        "MFD_UV_tuning.CSatThr1Table", "MFD_UV_tuning.CSatThr2Table"},
       false},
  };
  return all;
}

std::string escaped(const std::string& text) {
  std::string safe;
  for (const char c : text) {
    safe += c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : std::string(1, c);
  }
  return safe;
}

// A value axis: from value to fraction of the height.
class ValueAxis {
 public:
  ValueAxis(const Panel& panel, const LoadedTuning& loaded)
      : is_logarithmic_(panel.is_logarithmic) {
    double least = 0;
    double most = 1;
    for (const char* path : panel.paths) {
      for (size_t i = 0; i < loaded.levels(); ++i) {
        const double value = loaded.stored(*find_key(path), i);
        if (!std::isfinite(value)) continue;
        least = std::min(least, value);
        most = std::max(most, value);
      }
    }
    if (is_logarithmic_) {
      add_powers(most);
    } else {
      add_steps(least, most);
    }
  }

  [[nodiscard]] const std::vector<double>& ticks() const { return ticks_; }
  [[nodiscard]] double fraction(double value) const {
    if (!std::isfinite(value)) return 1;
    const double first = scaled(ticks_.front());
    return std::clamp((scaled(value) - first) / (scaled(ticks_.back()) - first), 0.0, 1.0);
  }

 private:
  // Thresholds below the first tick, 0.0 above all, lie on the axis.
  void add_powers(double most) {
    const int powers = static_cast<int>(std::ceil(std::log10(most))) + 1;
    for (int power = -1; power < powers; ++power) ticks_.push_back(std::pow(10, power));
  }

  void add_steps(double least, double most) {
    double step = std::pow(10, std::floor(std::log10((most - least) / 2)));
    while ((most - least) / step > 6) step *= 2;
    const int first = static_cast<int>(std::floor(least / step));
    const int last = static_cast<int>(std::ceil(most / step));
    for (int i = first; i <= last; ++i) ticks_.push_back(i * step);
  }

  [[nodiscard]] double scaled(double value) const {
    return is_logarithmic_ ? std::log10(std::max(value, 0.1)) : value;
  }

  bool is_logarithmic_;
  std::vector<double> ticks_;
};

class Drawing {
 public:
  explicit Drawing(const LoadedTuning& loaded) : loaded_(loaded) {
    const auto& tuning = loaded.tuning();
    const auto [least, most] = std::minmax_element(std::begin(tuning.NILevel),
                                                   std::begin(tuning.NILevel) + loaded.levels());
    first_ = std::max(std::min(*least, tuning.enableNoiseIndex), 1) / std::sqrt(2.0);
    last_ = std::max(static_cast<double>(*most), 2 * first_) * std::sqrt(2.0);
  }

  std::string draw(const std::string& title) {
    const int width = 2 * kPanelWidth;
    const int height = kTitleHeight + 2 * kPanelHeight;
    svg_ = print_text(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%d\" height=\"%d\" "
        "viewBox=\"0 0 %d %d\" font-family=\"sans-serif\" font-size=\"11\">\n",
        width, height, width, height);
    svg_ += "<title>" + escaped(title) + "</title>\n" + kStyle;
    svg_ += print_text("<rect class=\"paper\" width=\"%d\" height=\"%d\"/>\n", width, height);
    svg_ += "<text x=\"16\" y=\"26\" font-size=\"15\">" + escaped(title) +
            " over the noise index; grey: below the gate</text>\n";
    for (size_t i = 0; i < panels().size(); ++i) {
      svg_ += print_text("<g transform=\"translate(%d %d)\">\n",
                         static_cast<int>(i % 2) * kPanelWidth + kLeft,
                         kTitleHeight + static_cast<int>(i / 2) * kPanelHeight + kTop);
      draw_panel(panels()[i]);
      svg_ += "</g>\n";
    }
    return svg_ + "</svg>\n";
  }

 private:
  static constexpr char kStyle[] =
      "<style>text{fill:#222}.paper{fill:#fff}.grid{stroke:#ddd}.gate{fill:#8888;opacity:.3}"
      ".curve{fill:none;stroke-width:2}"
      "@media(prefers-color-scheme:dark){text{fill:#eee}.paper{fill:#181818}.grid{stroke:#444}}"
      "</style>\n";

  [[nodiscard]] double x_of(double noise_index) const {
    const double part = std::log(std::max(noise_index, first_) / first_) / std::log(last_ / first_);
    return kPlotWidth * std::min(part, 1.0);
  }
  [[nodiscard]] static double y_of(const ValueAxis& axis, double value) {
    return kPlotHeight * (1 - axis.fraction(value));
  }

  void draw_panel(const Panel& panel) {
    const ValueAxis axis(panel, loaded_);
    svg_ += print_text("<text x=\"0\" y=\"-12\" font-size=\"13\">%s</text>\n", panel.title);
    draw_gate();
    for (const double tick : axis.ticks()) {
      const double y = y_of(axis, tick);
      svg_ += print_text("<path class=\"grid\" d=\"M0 %.1fH%d\"/>", y, kPlotWidth);
      svg_ += print_text("<text x=\"-6\" y=\"%.1f\" text-anchor=\"end\">%g</text>\n", y + 4, tick);
    }
    draw_level_axis();
    for (size_t i = 0; i < panel.paths.size(); ++i) draw_curve(*find_key(panel.paths[i]), axis, i);
  }

  // Grey where frames are left as they are.
  void draw_gate() {
    const double x = x_of(loaded_.tuning().enableNoiseIndex);
    if (x <= 0) return;
    svg_ += print_text(
        "<rect class=\"gate\" width=\"%.1f\" height=\"%d\"><title>below the gate: frames "
        "are left as they are</title></rect>\n",
        x, kPlotHeight);
  }

  // A tick at every level, a number where there is room for it.
  void draw_level_axis() {
    double room_from = -1000;
    for (size_t i = 0; i < loaded_.levels(); ++i) {
      const double x = x_of(loaded_.level(i));
      svg_ += print_text("<path class=\"grid\" d=\"M%.1f 0V%d\"/>", x, kPlotHeight);
      if (x - room_from < 40) continue;
      room_from = x;
      svg_ += print_text("<text x=\"%.1f\" y=\"%d\" text-anchor=\"middle\">%d</text>\n", x,
                         kPlotHeight + 16, loaded_.level(i));
    }
  }

  void draw_curve(const KnownKey& known, const ValueAxis& axis, size_t number) {
    const char* colour = kColours[number % std::size(kColours)];
    const std::string line = print_text("stroke=\"%s\" stroke-dasharray=\"%s\"", colour,
                                        kDashes[number % std::size(kDashes)]);
    svg_ += "<path class=\"curve\" " + line + " d=\"";
    for (int step = 0; step <= kSteps; ++step) {
      const double noise_index = first_ * std::pow(last_ / first_, step / double{kSteps});
      const int whole = static_cast<int>(std::min(noise_index, double{INT32_MAX}));
      svg_ += print_text("%s%.1f %.1f", step == 0 ? "M" : " ", x_of(noise_index),
                         y_of(axis, loaded_.for_frame(known, whole)));
    }
    svg_ += "\"><title>" + known.path() + "</title></path>\n";
    for (size_t i = 0; i < loaded_.levels(); ++i) {
      svg_ += print_text("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"2.5\" fill=\"%s\"/>",
                         x_of(loaded_.level(i)), y_of(axis, loaded_.stored(known, i)), colour);
    }
    const int y = 8 + 18 * static_cast<int>(number);
    svg_ +=
        print_text("<path class=\"curve\" %s d=\"M%d %dh22\"/>", line.c_str(), kPlotWidth + 8, y);
    std::string name = known.key.name;
    for (const char* ending : {"_table", "Table"}) {
      if (name.ends_with(ending)) name.resize(name.size() - std::string(ending).size());
    }
    svg_ += print_text("<text x=\"%d\" y=\"%d\">%s</text>\n", kPlotWidth + 36, y + 4, name.c_str());
  }

  const LoadedTuning& loaded_;
  double first_ = 1;
  double last_ = 2;
  std::string svg_;
};

}  // namespace

std::string curves_svg(const LoadedTuning& loaded, const std::string& title) {
  return Drawing(loaded).draw(title);
}

}  // namespace tool
