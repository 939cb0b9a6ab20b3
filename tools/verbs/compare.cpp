#include "tools/verbs/compare.h"

#include <cstdio>

#include "tools/files/failure.h"
#include "tools/files/input_file.h"
#include "tools/measure/distance_table.h"
#include "tools/pictures/colour.h"
#include "tools/tune/parallel.h"

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
  std::vector<std::optional<Decoded>> next(sources.size());
  for_each_in_parallel(sources.size(), [&](size_t i) {
    const std::optional<Picture> picture = sources[i].input->next();
    if (!picture) return;
    warn_of_losses(sources[i].path, *picture);
    next[i] = {as_nv21(*picture, colour), as_rgb(*picture)};
  });
  std::vector<Decoded> frames;
  for (size_t i = 0; i < sources.size(); ++i) {
    const std::string& path = sources[i].path;
    if (next[i].has_value() != next[0].has_value()) {
      throw input_error(path, "has not as many frames as " + sources.front().path);
    }
    if (!next[i]) continue;
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

// The reference comes first among the sources and, when it is a truth, last in the picture.
void write_side_by_side(const CompareOptions& options, const std::vector<Decoded>& frames) {
  std::vector<const RgbImage*> images;
  for (size_t i = options.truth ? 1 : 0; i < frames.size(); ++i) images.push_back(&frames[i].image);
  if (options.truth) images.push_back(&frames.front().image);
  const RgbImage picture = side_by_side(images, options.crop, options.zoom);
  const std::unique_ptr<PictureOutput> output = PictureOutput::open(*options.output);
  output->write({picture, {}});
  output->finish();
}

}  // namespace

void run_compare(const CompareOptions& options) {
  if (options.pictures.size() + (options.truth ? 1 : 0) < 2) {
    throw usage_error("compare needs two pictures, or one and --truth");
  }
  if (options.output == kStandardStream) {
    throw usage_error("the figures go to standard output; give the picture a file");
  }
  if (options.output) {
    std::vector<std::string> inputs = options.pictures;
    if (options.truth) inputs.push_back(*options.truth);
    check_outputs({*options.output}, inputs, options.force);
  }
  std::vector<Source> sources = open_sources(options);
  const Colour colour = sources.front().input->colour();
  std::vector<NamedDistance> distances;
  for (size_t i = 1; i < sources.size(); ++i) distances.push_back({sources[i].path, {}});

  int frame_count = 0;
  Size size{};
  for (std::vector<Decoded> frames = next_frames(sources, colour); !frames.empty();
       frames = next_frames(sources, colour), ++frame_count) {
    const Decoded& reference = frames.front();
    size = {reference.frame.width, reference.frame.height};
    for (size_t i = 1; i < frames.size(); ++i) {
      distances[i - 1].distance.add(frames[i].frame, frames[i].image, reference.frame,
                                    reference.image);
    }
    if (options.output && frame_count == 0) write_side_by_side(options, frames);
  }
  if (frame_count == 0) throw input_error(sources.front().path, "holds no frame");

  if (options.json) {
    std::fputs(distance_json(sources.front().path, distances).c_str(), stdout);
    return;
  }
  std::printf("against %s (%s%s)\n", sources.front().path.c_str(), size_text(size).c_str(),
              frame_count > 1 ? (", " + std::to_string(frame_count) + " frames").c_str() : "");
  std::fputs(distance_table(distances).c_str(), stdout);
  if (options.output) std::printf("  side by side in %s\n", options.output->c_str());
}

}  // namespace tool
