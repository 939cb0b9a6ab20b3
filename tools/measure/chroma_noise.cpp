#include "tools/measure/chroma_noise.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tool {
namespace {

constexpr int kBlock = 64;  // pixels a side

// Pixels that hold less noise than the sensor delivered, and the step between those looked at.
constexpr int kBlack = 8;
constexpr int kWhite = 250;
constexpr int kLumaStep = 4;

constexpr double kQuiet = 0.25;  // the quiet part of the blocks
constexpr double kQuietest = 0.1;
constexpr double kMiddle = 0.5;

// How much busy places and agreeing planes lower the estimate; from noisy pictures whose clean form
// is known (docs/noise-index.md).
constexpr double kImpurityPower = 1.75;

// Added before logarithms are taken: what rounding to whole steps leaves of a flat picture.
constexpr double kLeastChroma = 0.02;
constexpr double kLeastLuma = 0.2;

// Reported are the first ones; means of 8 x 8 samples serve the estimate too.
constexpr int kScales = kNoiseScales + 1;
// Single samples have no say in it: JPEG files leave little of their noise.
constexpr int kFirstEstimatingScale = 1;
constexpr int kDecidingScale = 2;

struct Plane {
  const uint8_t* samples;
  size_t stride;
  int step;  // bytes from a sample to the next
};

// Mean products of the diagonal differences of two planes.
struct Moments {
  double first;
  double second;
  double both;
};
using BlockMoments = std::array<Moments, kScales>;

// Neither mostly clipped nor without any difference, as the bars beside a picture are.
bool is_usable(const FrameView& frame, int x0, int y0) {
  int clipped = 0;
  int total = 0;
  int least = 255;
  int most = 0;
  for (int y = y0; y < y0 + kBlock; y += kLumaStep) {
    const uint8_t* row = frame.luma + static_cast<size_t>(y) * frame.luma_stride;
    for (int x = x0; x < x0 + kBlock; x += kLumaStep) {
      const int luma = row[x];
      clipped += luma <= kBlack || luma >= kWhite;
      ++total;
      least = std::min(least, luma);
      most = std::max(most, luma);
    }
  }
  return 2 * clipped <= total && least < most;
}

// `Side` samples a side; sums over 2 x 2 samples take their place from scale to scale.
template <int Side>
struct Block {
  Block(const Plane& plane, int x0, int y0) {
    const uint8_t* row = plane.samples + static_cast<size_t>(y0) * plane.stride +
                         static_cast<size_t>(x0) * static_cast<size_t>(plane.step);
    for (int y = 0; y < Side; ++y, row += plane.stride) {
      for (int x = 0; x < Side; ++x) sums[y * Side + x] = row[x * plane.step];
    }
  }

  void halve(int side) {
    for (int y = 0; y < side / 2; ++y) {
      const uint16_t* above = sums + 2 * y * side;
      for (int x = 0; x < side / 2; ++x) {
        const uint16_t* corner = above + 2 * x;
        // At most 64 * 255.
        sums[y * (side / 2) + x] =
            static_cast<uint16_t>(corner[0] + corner[1] + corner[side] + corner[side + 1]);
      }
    }
  }

  uint16_t sums[Side * Side];
};

int32_t diagonal_difference(const uint16_t* corner, int side) {
  return corner[0] - corner[1] - corner[side] + corner[side + 1];
}

Moments moments_of(const uint16_t* first, const uint16_t* second, int side, int samples_in_sum) {
  int64_t squares_first = 0;
  int64_t squares_second = 0;
  int64_t products = 0;
  for (int y = 0; y + 1 < side; ++y) {
    for (int x = y * side; x + 1 < (y + 1) * side; ++x) {
      // At most 2 * 64 * 255, so that products fit.
      const int32_t a = diagonal_difference(first + x, side);
      const int32_t b = diagonal_difference(second + x, side);
      squares_first += a * a;
      squares_second += b * b;
      products += a * b;
    }
  }
  // A difference of four has twice the deviation of one.
  const double scale = 1.0 / (4.0 * samples_in_sum * samples_in_sum * (side - 1) * (side - 1));
  return {static_cast<double>(squares_first) * scale, static_cast<double>(squares_second) * scale,
          static_cast<double>(products) * scale};
}

template <int Side>
BlockMoments block_moments(const Plane& first, const Plane& second, int x0, int y0,
                           int first_scale) {
  Block<Side> a(first, x0, y0);
  Block<Side> b(second, x0, y0);
  BlockMoments moments{};
  int side = Side;
  int samples_in_sum = 1;
  for (int scale = 0; scale < kScales; ++scale) {
    if (scale >= first_scale) {
      moments[static_cast<size_t>(scale)] = moments_of(a.sums, b.sums, side, samples_in_sum);
    }
    a.halve(side);
    b.halve(side);
    side /= 2;
    samples_in_sum *= 4;
  }
  return moments;
}

// Of the usable blocks; `Side` samples of the planes cover a block's side. Scales before the first
// one stay 0.
template <int Side>
std::vector<BlockMoments> all_moments(const FrameView& frame, const Plane& first,
                                      const Plane& second, int first_scale) {
  std::vector<BlockMoments> blocks;
  for (int y = 0; y + kBlock <= frame.height; y += kBlock) {
    for (int x = 0; x + kBlock <= frame.width; x += kBlock) {
      if (!is_usable(frame, x, y)) continue;
      blocks.push_back(block_moments<Side>(first, second, x / (kBlock / Side), y / (kBlock / Side),
                                           first_scale));
    }
  }
  return blocks;
}

// The value below which a share of them lies.
double quantile(std::vector<double> values, double share) {
  std::sort(values.begin(), values.end());
  const double place = share * static_cast<double>(values.size() - 1);
  const auto below = static_cast<size_t>(place);
  const size_t above = std::min(below + 1, values.size() - 1);
  return values[below] + (place - std::floor(place)) * (values[above] - values[below]);
}

template <typename Value>
double quantile_of(const std::vector<BlockMoments>& blocks, int scale, double share, Value value) {
  std::vector<double> values;
  values.reserve(blocks.size());
  for (const BlockMoments& block : blocks) {
    values.push_back(value(block[static_cast<size_t>(scale)]));
  }
  return quantile(std::move(values), share);
}

template <typename Value>
NoiseByScale quiet_noise(const std::vector<BlockMoments>& blocks, Value mean_square) {
  NoiseByScale noise;
  for (int scale = 0; scale < kNoiseScales; ++scale) {
    noise[static_cast<size_t>(scale)] = std::sqrt(quantile_of(blocks, scale, kQuiet, mean_square));
  }
  return noise;
}

double log_ratio(double noise, double other, double least_other) {
  return std::log((noise + kLeastChroma) / (other + least_other));
}

double deviation(const Moments& m) { return std::sqrt((m.first + m.second) / 2); }

// What is left of the deviation when the planes agree: all of it for planes that have nothing in
// common, nothing when one follows from the other.
double own_deviation(const Moments& m) {
  return std::sqrt(std::sqrt(std::max(m.first * m.second - m.both * m.both, 0.0)));
}

double own_share(const Moments& m) {
  const double all = deviation(m);
  return all > 0 ? own_deviation(m) / all : 0;
}

// How far a scale looks like noise alone: the quiet blocks' own deviation against that of middling
// blocks, and how little the planes agree. About 0.8 for pure noise.
double purity(const std::vector<BlockMoments>& blocks, int scale) {
  const double busy = quantile_of(blocks, scale, kMiddle, deviation);
  if (busy <= 0) return 0;
  return quantile_of(blocks, scale, kQuiet, own_deviation) / busy *
         quantile_of(blocks, scale, kQuiet, own_share);
}

double quiet_noise_of(const std::vector<BlockMoments>& blocks, int scale) {
  return quantile_of(blocks, scale, kQuiet, own_deviation);
}

// Of the means of a scale to those of the next finer one.
double coarseness(const std::vector<BlockMoments>& blocks, int scale) {
  return log_ratio(quiet_noise_of(blocks, scale), quiet_noise_of(blocks, scale - 1), kLeastChroma);
}

// Means of 4 x 4 samples say how much noise there is; the scale that looks least like noise says
// how far that is to be believed.
double estimate_from(const std::vector<BlockMoments>& blocks) {
  double least = purity(blocks, kFirstEstimatingScale);
  for (int scale = kFirstEstimatingScale + 1; scale < kScales; ++scale) {
    least = std::min(least, purity(blocks, scale));
  }
  return quiet_noise_of(blocks, kDecidingScale) * std::pow(least, kImpurityPower);
}

std::vector<BlockMoments> chroma_moments(const FrameView& frame, int first_scale) {
  const Plane first{frame.chroma, frame.chroma_stride, 2};
  const Plane second{frame.chroma + 1, frame.chroma_stride, 2};
  return all_moments<kBlock / 2>(frame, first, second, first_scale);
}

}  // namespace

std::optional<ChromaNoise> measure_chroma_noise(const FrameView& frame) {
  const std::vector<BlockMoments> blocks = chroma_moments(frame, 0);
  if (blocks.size() < kLeastNoiseBlocks) return std::nullopt;
  const double quiet = quiet_noise_of(blocks, kDecidingScale);
  const double busy = quantile_of(blocks, kDecidingScale, kMiddle, deviation);
  // Of means of 4 x 4 pixels, as 2 x 2 chroma samples are.
  const double luma = measure_luma_noise(frame)->back();
  const double coarse = coarseness(blocks, kDecidingScale + 1);
  return ChromaNoise{
      .first = quiet_noise(blocks, [](const Moments& m) { return m.first; }),
      .second = quiet_noise(blocks, [](const Moments& m) { return m.second; }),
      .estimate = estimate_from(blocks),
      .quiet = quiet,
      .purity = busy > 0 ? quiet / busy : 0,
      .own_share = quantile_of(blocks, kDecidingScale, kQuiet, own_share),
      .coarseness = coarse,
      .to_luma = log_ratio(quiet_noise_of(blocks, kFirstEstimatingScale), luma, kLeastLuma),
      .evenness = log_ratio(quantile_of(blocks, kDecidingScale, kQuietest, own_deviation), quiet,
                            kLeastChroma),
      .bend = coarse - coarseness(blocks, 1)};
}

std::optional<double> estimate_chroma_noise(const FrameView& frame) {
  const std::vector<BlockMoments> blocks = chroma_moments(frame, kFirstEstimatingScale);
  if (blocks.size() < kLeastNoiseBlocks) return std::nullopt;
  return estimate_from(blocks);
}

std::optional<NoiseByScale> measure_luma_noise(const FrameView& frame) {
  const Plane luma{frame.luma, frame.luma_stride, 1};
  const std::vector<BlockMoments> blocks = all_moments<kBlock>(frame, luma, luma, 0);
  if (blocks.size() < kLeastNoiseBlocks) return std::nullopt;
  return quiet_noise(blocks, [](const Moments& m) { return m.first; });
}

}  // namespace tool
