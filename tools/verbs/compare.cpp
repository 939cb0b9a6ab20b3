#include "tools/verbs/compare.h"

#include <cstdio>

#include "tools/files/failure.h"
#include "tools/files/input_file.h"
#include "tools/files/printable.h"
#include "tools/measure/distance_table.h"
#include "tools/pictures/colour.h"
#include "tools/report/chart_layout.h"
#include "tools/report/chart_picture.h"
#include "tools/tune/parallel.h"
#include "tools/verbs/compare_charts.h"
#include "tools/verbs/result_page.h"

namespace tool {
namespace {

struct Source {
  std::string path;
  std::unique_ptr<PictureInput> input;
};

struct Decoded {
  Nv21Frame frame;
  RgbImage image;
};

// The next frame of every file; an empty list when all end at once.
std::vector<Decoded> next_frames(std::vector<Source>& sources, Colour colour) {
  std::vector<std::optional<Picture>> pictures(sources.size());
  std::vector<std::optional<Decoded>> next(sources.size());
  for_each_in_parallel(sources.size(), [&](size_t i) {
    pictures[i] = sources[i].input->next();
    if (pictures[i]) next[i] = {as_nv21(*pictures[i], colour), as_rgb(*pictures[i])};
  });
  std::vector<Decoded> frames;
  for (size_t i = 0; i < sources.size(); ++i) {
    const std::string& path = sources[i].path;
    if (next[i].has_value() != next[0].has_value()) {
      throw input_error(path, "has not as many frames as " + sources.front().path);
    }
    if (!next[i]) continue;
    warn_of_losses(path, *pictures[i]);
    const Size size{next[i]->image.width, next[i]->image.height};
    const Size first{next[0]->image.width, next[0]->image.height};
    if (!(size == first)) {
      throw input_error(path, "is " + size_text(size) + ", but " + sources.front().path + " is " +
                                  size_text(first));
    }
    frames.push_back(std::move(*next[i]));
  }
  return frames;
}

std::vector<Source> open_sources(const CompareOptions& options) {
  std::vector<Source> sources;
  const auto add = [&](const std::string& path) {
    sources.push_back({path, PictureInput::open(path, options.read)});
  };
  if (options.truth) add(*options.truth);
  for (const std::string& path : options.pictures) add(path);
  return sources;
}

// The names of all pictures that are compared, the reference first.
std::vector<std::string> names_of(const std::vector<Source>& sources, bool has_chart) {
  std::vector<std::string> names;
  if (has_chart) names.emplace_back("the chart");
  for (const Source& source : sources) names.push_back(source.path);
  return names;
}

// The frame of every file, after the chart when that is the reference.
std::vector<Decoded> next_with_reference(std::vector<Source>& sources, Colour colour,
                                         bool has_chart) {
  std::vector<Decoded> frames = next_frames(sources, colour);
  if (!has_chart || frames.empty()) return frames;
  const Size size{frames[0].image.width, frames[0].image.height};
  if (!(size == kChartSize)) {
    throw input_error(sources.front().path,
                      "is " + size_text(size) + ", but the chart is " + size_text(kChartSize));
  }
  RgbImage chart = chart_picture();
  Nv21Frame frame = rgb_to_nv21(chart, colour);
  frames.insert(frames.begin(), {std::move(frame), std::move(chart)});
  return frames;
}

// The reference comes first among the sources and, when it is a truth, last in the picture.
void write_side_by_side(const CompareOptions& options, const std::vector<Decoded>& frames) {
  const bool has_truth = options.truth || options.chart;
  std::vector<const RgbImage*> images;
  for (size_t i = has_truth ? 1 : 0; i < frames.size(); ++i) images.push_back(&frames[i].image);
  if (has_truth) images.push_back(&frames.front().image);
  const RgbImage picture = side_by_side(images, options.crop, options.zoom);
  const std::unique_ptr<PictureOutput> output = PictureOutput::open(*options.output);
  output->write({picture, {}});
  output->finish();
}

// The first frames, the reference first among them too.
Page compare_page(const CompareOptions& options, const std::vector<std::string>& names,
                  const std::vector<Decoded>& frames) {
  Page page;
  std::vector<NamedFrame> compared;
  for (size_t i = 0; i < frames.size(); ++i) {
    const RgbImage& image = frames[i].image;
    page.pictures.push_back(
        {names[i], options.crop ? side_by_side({&image}, options.crop, 1) : image});
    if (i > 0) compared.push_back({names[i], &frames[i].frame});
  }
  // A truth is what the others are held against, not one of the two to be judged.
  if ((options.truth || options.chart) && frames.size() > 2) {
    page.left = 1;
    page.right = 2;
  }
  page.title = names[page.left] + " and " + names[page.right];
  page.facts = {{"against", names.front()},
                {"size", size_text({frames[0].image.width, frames[0].image.height})}};
  page.curves = {nearness_curves(names.front(), frames.front().frame, compared)};
  return page;
}

void check_usage(const CompareOptions& options) {
  if (options.truth && options.chart) {
    throw usage_error("--truth and --chart both name the truth; give one of them");
  }
  if (options.pictures.size() + (options.truth || options.chart ? 1 : 0) < 2) {
    throw usage_error("compare needs two pictures, or one and --truth or --chart");
  }
  if (options.output == kStandardStream) {
    throw usage_error("the figures go to standard output; give the picture a file");
  }
  std::vector<std::string> inputs = options.pictures;
  if (options.truth) inputs.push_back(*options.truth);
  std::vector<std::string> outputs;
  for (const auto& output : {options.output, options.page}) {
    if (output) outputs.push_back(*output);
  }
  check_outputs(outputs, inputs, options.force);
}

}  // namespace

void run_compare(const CompareOptions& options) {
  check_usage(options);
  std::vector<Source> sources = open_sources(options);
  const Colour colour = sources.front().input->colour();
  const std::vector<std::string> names = names_of(sources, options.chart);
  std::vector<NamedDistance> distances;
  for (size_t i = 1; i < names.size(); ++i) distances.push_back({names[i], {}});

  int frame_count = 0;
  Size size{};
  std::vector<ChartFigures> charts;
  Page page;
  while (true) {
    const std::vector<Decoded> frames = next_with_reference(sources, colour, options.chart);
    if (frames.empty()) break;
    const Decoded& reference = frames.front();
    size = {reference.frame.width, reference.frame.height};
    for (size_t i = 1; i < frames.size(); ++i) {
      distances[i - 1].distance.add(frames[i].frame, frames[i].image, reference.frame,
                                    reference.image);
    }
    if (frame_count++ > 0) continue;
    for (size_t i = 1; i < frames.size() && measures_charts(options); ++i) {
      charts.push_back(measure_chart(options, frames[i].frame, reference.frame, names.front()));
    }
    if (options.output) write_side_by_side(options, frames);
    if (options.page) page = compare_page(options, names, frames);
  }
  if (frame_count == 0) throw input_error(sources.front().path, "holds no frame");

  if (options.page) {
    page.tables = {distance_figures(names.front(), distances)};
    for (size_t i = 0; i < charts.size(); ++i) {
      for (Table& table : chart_tables(names[i + 1], charts[i])) {
        page.tables.push_back(std::move(table));
      }
    }
    write_text_file(*options.page, page_html(page));
  }
  if (options.json) {
    std::fputs(distance_json(names.front(), distances, charts).c_str(), stdout);
    return;
  }
  std::printf("against %s (%s%s)\n", printable(names.front()).c_str(), size_text(size).c_str(),
              frame_count > 1 ? (", " + std::to_string(frame_count) + " frames").c_str() : "");
  std::fputs(distance_table(distances).c_str(), stdout);
  for (size_t i = 0; i < charts.size(); ++i) {
    for (const Table& table : chart_tables(names[i + 1], charts[i])) {
      std::printf("\n%s\n%s", printable(table.title).c_str(), table_text(table).c_str());
    }
  }
  if (options.output) std::printf("  side by side in %s\n", options.output->c_str());
  if (options.page) std::printf("  page in %s\n", options.page->c_str());
}

}  // namespace tool
