#include "tools/tune/burst.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/files/failure.h"

namespace tool {
namespace {

constexpr size_t kFewestFrames = 8;  // their mean keeps an eighth of the noise
// A frame may differ from the mean in this share of its blocks, and of its samples this share may
// be clipped.
constexpr double kMovedShare = 0.002;
constexpr double kClippedShare = 0.02;
// A block moved when its mean is off by so many deviations of blocks, and by one step at least.
constexpr double kMovedDeviations = 6.0;
constexpr double kMovedSteps = 1.0;
// Mean luma of a frame may differ from the burst's by so many steps.
constexpr double kLightSteps = 1.0;
constexpr int kBlock = 16;  // luma samples; 16 samples of 8 chroma pairs

struct Plane {
  size_t offset;
  int width;  // bytes
  int height;
};

std::vector<Plane> planes_of(const Nv21Frame& frame) {
  return {{0, frame.width, frame.height},
          {frame.luma_bytes(), frame.chroma_stride(), frame.chroma_height()}};
}

// Means of blocks: of luma, and of each chroma component.
std::vector<float> block_means(const std::vector<float>& samples, const Nv21Frame& frame) {
  std::vector<float> means;
  for (const Plane& plane : planes_of(frame)) {
    const int step = plane.offset == 0 ? 1 : 2;
    for (int y = 0; y + kBlock <= plane.height; y += kBlock) {
      for (int x = 0; x + kBlock <= plane.width; x += kBlock) {
        float sums[2] = {};
        for (int row = y; row < y + kBlock; ++row) {
          const float* line = samples.data() + plane.offset + size_t(row) * size_t(plane.width);
          for (int col = x; col < x + kBlock; ++col) sums[col % step] += line[col];
        }
        const float count = static_cast<float>(kBlock * kBlock / step);
        for (int i = 0; i < step; ++i) means.push_back(sums[i] / count);
      }
    }
  }
  return means;
}

// Samples that reach a limit in this frame but not in all: noise was cut off there.
double clipped_share(const Nv21Frame& frame, const std::vector<float>& mean) {
  size_t clipped = 0;
  for (size_t i = 0; i < mean.size(); ++i) {
    const bool at_limit = frame.data[i] == 0 || frame.data[i] == 255;
    clipped += at_limit && mean[i] > 0 && mean[i] < 255 ? 1 : 0;
  }
  return static_cast<double>(clipped) / static_cast<double>(mean.size());
}

// The deviation of values around 0, whatever a few of them do.
double robust_deviation(std::vector<float> values) {
  for (float& value : values) value = std::fabs(value);
  const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return 1.4826 * static_cast<double>(*middle);
}

std::string percent(double share) {
  char text[16];
  std::snprintf(text, sizeof(text), "%.1f %%", 100.0 * share);
  return text;
}

void check_still(const std::string& name, const std::vector<float>& differences, double bound) {
  const auto moved = std::count_if(differences.begin(), differences.end(),
                                   [bound](float d) { return std::fabs(d) > bound; });
  const double share = static_cast<double>(moved) / static_cast<double>(differences.size());
  if (share <= kMovedShare) return;
  throw input_error(name, "shows something else than the rest of its burst in " + percent(share) +
                              " of the picture: something moved, or the light changed");
}

// The first differences are those of luma.
void check_light(const std::string& name, const std::vector<float>& differences, size_t luma) {
  double sum = 0.0;
  for (size_t i = 0; i < luma; ++i) sum += static_cast<double>(differences[i]);
  if (std::fabs(sum) <= kLightSteps * static_cast<double>(luma)) return;
  throw input_error(name, sum > 0 ? "is brighter than the rest of its burst"
                                  : "is darker than the rest of its burst");
}

void check_unclipped(const std::string& name, const Nv21Frame& frame,
                     const std::vector<float>& mean) {
  const double share = clipped_share(frame, mean);
  if (share <= kClippedShare) return;
  throw input_error(name, percent(share) +
                              " of its samples are black or white to the limit: the mean of such "
                              "samples is no truth; expose so that nothing clips");
}

}  // namespace

void Burst::add(const std::string& name, Nv21Frame frame) {
  sums_.resize(frame.data.size());
  for (size_t i = 0; i < sums_.size(); ++i) sums_[i] += frame.data[i];
  names_.push_back(name);
  frames_.push_back(std::move(frame));
}

void Burst::check() const {
  if (size() < kFewestFrames) {
    throw input_error(names_.front(), "is one of " + std::to_string(size()) +
                                          " frames of a burst; its mean needs at least " +
                                          std::to_string(kFewestFrames));
  }
  std::vector<float> mean(sums_.begin(), sums_.end());
  for (float& value : mean) value /= static_cast<float>(size());
  const std::vector<float> scene = block_means(mean, frames_.front());
  std::vector<std::vector<float>> differences;
  std::vector<float> deviations;
  for (const Nv21Frame& frame : frames_) {
    differences.push_back(block_means({frame.data.begin(), frame.data.end()}, frame));
    for (size_t i = 0; i < scene.size(); ++i) differences.back()[i] -= scene[i];
    deviations.push_back(static_cast<float>(robust_deviation(differences.back())));
  }
  // A frame that moved as a whole must not pass as a noisy one: all are held to the usual noise.
  const auto middle = deviations.begin() + static_cast<ptrdiff_t>(deviations.size() / 2);
  std::nth_element(deviations.begin(), middle, deviations.end());
  const double bound = std::max(kMovedSteps, kMovedDeviations * static_cast<double>(*middle));
  const auto luma_blocks = static_cast<size_t>(frames_[0].width / kBlock) *
                           static_cast<size_t>(frames_[0].height / kBlock);
  for (size_t i = 0; i < size(); ++i) {
    check_still(names_[i], differences[i], bound);
    check_light(names_[i], differences[i], luma_blocks);
    check_unclipped(names_[i], frames_[i], mean);
  }
}

BurstTruth Burst::mean_without(size_t index) const {
  const Nv21Frame& left_out = frames_[index];
  const auto count = static_cast<float>(size() - 1);
  BurstTruth truth{Nv21Frame(left_out.width, left_out.height, left_out.colour),
                   ChromaImage(left_out)};
  for (size_t i = 0; i < sums_.size(); ++i) {
    const float mean = static_cast<float>(sums_[i] - left_out.data[i]) / count;
    truth.rounded.data[i] = static_cast<uint8_t>(std::lround(mean));
    if (i >= left_out.luma_bytes()) truth.chroma.pairs[i - left_out.luma_bytes()] = mean;
  }
  return truth;
}

}  // namespace tool
