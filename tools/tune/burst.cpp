#include "tools/tune/burst.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

#include "tools/files/failure.h"

namespace tool {
namespace {

constexpr size_t kFewestFrames = 8;  // their mean keeps an eighth of the noise
// A frame may differ from the mean in this share of its blocks, and of its samples this share may
// be clipped.
constexpr double kMovedShare = 0.002;
constexpr double kClippedShare = 0.02;
// A block moved when its mean is off by so many deviations of blocks, and by one step at least.
constexpr float kMovedDeviations = 6.0F;
constexpr float kMovedSteps = 1.0F;
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
        const float count = static_cast<float>(kBlock * kBlock) / static_cast<float>(step);
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

using Differences = std::vector<float>;

// The deviation of values around 0, whatever a few of them do.
float robust_deviation(Differences values) {
  for (float& value : values) value = std::fabs(value);
  const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return 1.4826F * *middle;
}

std::string percent(double share) {
  char text[16];
  std::snprintf(text, sizeof(text), "%.1f %%", 100.0 * share);
  return text;
}

// Blocks of one plane, every frame's against the mean's. A frame that moved as a whole must not
// pass as a noisy one: all are held to the usual noise.
void check_still(const std::vector<std::string>& names, const std::vector<Differences>& frames) {
  std::vector<float> deviations;
  for (const Differences& differences : frames) {
    deviations.push_back(robust_deviation(differences));
  }
  const auto middle = deviations.begin() + static_cast<ptrdiff_t>(deviations.size() / 2);
  std::nth_element(deviations.begin(), middle, deviations.end());
  const float bound = std::max(kMovedSteps, kMovedDeviations * *middle);
  for (size_t i = 0; i < frames.size(); ++i) {
    const auto moved = std::count_if(frames[i].begin(), frames[i].end(),
                                     [bound](float d) { return std::fabs(d) > bound; });
    const double share = static_cast<double>(moved) / static_cast<double>(frames[i].size());
    if (share <= kMovedShare) continue;
    throw input_error(names[i], "shows something else than the rest of its burst in " +
                                    percent(share) +
                                    " of the picture: something moved, or the light changed");
  }
}

void check_light(const std::string& name, const Differences& luma) {
  const double sum = std::accumulate(luma.begin(), luma.end(), 0.0);
  if (std::fabs(sum) <= kLightSteps * static_cast<double>(luma.size())) return;
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
  const Differences scene = block_means(mean, frames_.front());
  const ptrdiff_t luma_blocks =
      ptrdiff_t{frames_[0].width / kBlock} * ptrdiff_t{frames_[0].height / kBlock};
  std::vector<Differences> luma;
  std::vector<Differences> chroma;
  for (size_t i = 0; i < size(); ++i) {
    if (i > 0 && frames_[i].data == frames_[i - 1].data) {
      throw input_error(names_[i], "is the same frame as " + names_[i - 1]);
    }
    Differences blocks = block_means({frames_[i].data.begin(), frames_[i].data.end()}, frames_[i]);
    for (size_t k = 0; k < scene.size(); ++k) blocks[k] -= scene[k];
    luma.emplace_back(blocks.begin(), blocks.begin() + luma_blocks);
    chroma.emplace_back(blocks.begin() + luma_blocks, blocks.end());
  }
  check_still(names_, luma);
  check_still(names_, chroma);
  for (size_t i = 0; i < size(); ++i) {
    check_light(names_[i], luma[i]);
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
