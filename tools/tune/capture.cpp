#include "tools/tune/capture.h"

#include "tools/files/failure.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/noise_model.h"
#include "tools/tune/burst.h"

namespace tool {
namespace {

constexpr int kBlock = 16;
constexpr int kSmallestSide = 64;
// Frames of a burst that are tested, each against the mean of the others.
constexpr size_t kTestedFrames = 3;

Nv21Frame cut_to_blocks(const std::string& path, const Nv21Frame& frame) {
  const Size size{frame.width / kBlock * kBlock, frame.height / kBlock * kBlock};
  if (size.width < kSmallestSide || size.height < kSmallestSide) {
    throw input_error(
        path, "is " + size_text({frame.width, frame.height}) + "; tuning needs at least 64 x 64");
  }
  return with_size(frame, size);
}

// All pictures of a file: one, or the frames of a video.
std::vector<Nv21Frame> read_frames(const std::string& path, const ReadOptions& options) {
  const std::unique_ptr<PictureInput> input = PictureInput::open(path, options);
  std::vector<Nv21Frame> frames;
  while (std::optional<Picture> picture = input->next()) {
    frames.push_back(cut_to_blocks(path, as_nv21(*picture, input->colour())));
  }
  if (frames.empty()) throw input_error(path, "holds no frame");
  return frames;
}

void check_size(const std::string& path, const Nv21Frame& frame, const std::string& other_path,
                const Nv21Frame& other) {
  if (frame.width == other.width && frame.height == other.height) return;
  throw input_error(path, "differs in size from " + other_path);
}

std::vector<Capture> make_noisy(const CaptureSource& source, const CaptureSettings& settings,
                                int number) {
  const int gain = source.noise_index / kNoiseIndexPerGain;
  if (gain < 1 || gain > kMaxGain || gain * kNoiseIndexPerGain != source.noise_index) {
    throw usage_error("noise index " + std::to_string(source.noise_index) +
                      ": noise can be made for multiples of 100 from 100 to " +
                      std::to_string(kMaxGain * kNoiseIndexPerGain));
  }
  const Picture picture = read_picture(source.clean, settings.read);
  const RgbImage noisy =
      add_camera_noise(as_rgb(picture), {gain, settings.seed, static_cast<uint64_t>(number)});
  const Colour colour = settings.read.colour();
  Nv21Frame truth = cut_to_blocks(source.clean, as_nv21(picture, colour));
  const ChromaImage chroma(truth);
  return {{source.scene, source.noise_index,
           cut_to_blocks(source.clean, rgb_to_nv21(noisy, truth.colour)), std::move(truth),
           chroma}};
}

std::vector<Capture> read_pairs(const CaptureSource& source, const CaptureSettings& settings) {
  const Nv21Frame truth = read_frames(source.clean, settings.read).front();
  std::vector<Capture> captures;
  for (const std::string& path : source.noisy) {
    for (Nv21Frame& frame : read_frames(path, settings.read)) {
      check_size(path, frame, source.clean, truth);
      captures.push_back(
          {source.scene, source.noise_index, std::move(frame), truth, ChromaImage(truth)});
    }
  }
  return captures;
}

std::vector<Capture> read_burst(const CaptureSource& source, const CaptureSettings& settings) {
  Burst burst;
  for (const std::string& path : source.noisy) {
    for (Nv21Frame& frame : read_frames(path, settings.read)) {
      if (!burst.empty()) check_size(path, frame, burst.first_name(), burst.frame(0));
      burst.add(path, std::move(frame));
    }
  }
  burst.check();
  std::vector<Capture> captures;
  const size_t tested = std::min(kTestedFrames, burst.size());
  for (size_t i = 0; i < tested; ++i) {
    const size_t index = i * burst.size() / tested;
    BurstTruth truth = burst.mean_without(index);
    captures.push_back({source.scene, source.noise_index, burst.frame(index),
                        std::move(truth.rounded), std::move(truth.chroma),
                        1.0 / static_cast<double>(burst.size())});
  }
  return captures;
}

}  // namespace

ChromaImage::ChromaImage(const Nv21Frame& frame)
    : cols(frame.chroma_width()),
      rows(frame.chroma_height()),
      pairs(frame.vu(), frame.vu() + frame.chroma_bytes()) {}

std::vector<Capture> load_captures(const CaptureSource& source, const CaptureSettings& settings,
                                   int number) {
  if (source.noisy.empty()) return make_noisy(source, settings, number);
  if (source.clean.empty()) return read_burst(source, settings);
  return read_pairs(source, settings);
}

}  // namespace tool
