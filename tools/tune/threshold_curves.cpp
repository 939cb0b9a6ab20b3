#include "tools/tune/threshold_curves.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "vorel/wavelet.h"

namespace tool {
namespace {

// The wavelet stage multiplies thresholds by this and divides coefficients by that.
constexpr _Float16 kThresholdScale = std::bit_cast<_Float16>(uint16_t{0x508D});  // 36.40625
constexpr _Float16 kDetailScale = std::bit_cast<_Float16>(uint16_t{0x45D7});     // 5.83984375
constexpr int kThresholdOfBand[kChromaBands] = {0, 1, 1, 2, 3, 3, 4};

constexpr int kEntriesPerOctave = 2;
constexpr int kTile = 8;         // coefficients on each side of an area
constexpr float kEdgeRatio = 3;  // truth against the noise's deviation

constexpr int kOctaves = 12;  // from the floor to the highest cap
constexpr int kEntries = kOctaves * kEntriesPerOctave + 1;
static_assert(kThresholdFloor * (1 << kOctaves) == kThresholdCaps[1]);

double entry_threshold(int entry) {
  return kThresholdFloor * std::exp2(static_cast<double>(entry) / kEntriesPerOctave);
}

// The inner area of a noisy band against the same of the truth.
class BandPair {
 public:
  BandPair(const ChromaBand& noisy, const ChromaBand& truth, double truth_noise_share)
      : noisy_(noisy), count_(static_cast<size_t>(noisy.inner_rows) * size_t(noisy.inner_cols)) {
    truth_.resize(count_);
    weights_.resize(count_);
    copy_inner(truth, [this](size_t i, _Float16 value) { truth_[i] = static_cast<float>(value); });
    double sum = 0.0;
    copy_inner(noisy, [&](size_t i, _Float16 value) {
      const double error = static_cast<double>(value) - static_cast<double>(truth_[i]);
      sum += error * error;
    });
    const double power = sum / static_cast<double>(count_);
    truth_power_ = power * truth_noise_share;
    noise_power_ = power - truth_power_;
    const float bound = kEdgeRatio * static_cast<float>(std::sqrt(noise_power_));
    for (size_t i = 0; i < count_; ++i) {
      weights_[i] = std::fabs(truth_[i]) > bound ? 1.0f : 0.0f;
      edge_count_ += static_cast<double>(weights_[i]);
    }
    untouched_tiles_ = tile_errors(inner(noisy));
  }

  [[nodiscard]] double noise_power() const { return noise_power_; }
  [[nodiscard]] size_t count() const { return count_; }
  [[nodiscard]] const ChromaBand& noisy() const { return noisy_; }

  // The dense inner area.
  [[nodiscard]] std::vector<_Float16> inner(const ChromaBand& band) const {
    std::vector<_Float16> dense(count_);
    copy_inner(band, [&](size_t i, _Float16 value) { dense[i] = value; });
    return dense;
  }

  [[nodiscard]] ErrorSums sums_of(const std::vector<_Float16>& dense) const {
    const std::vector<Tile> tiles = tile_errors(dense);
    ErrorSums sums;
    for (size_t i = 0; i < tiles.size(); ++i) {
      const double worse = double(tiles[i].squares) - double(untouched_tiles_[i].squares);
      sums.squares += tiles[i].squares;
      sums.edges += tiles[i].edges;
      sums.harm += std::max(0.0, worse);
    }
    sums.squares -= truth_power_ * static_cast<double>(count_);
    sums.edges -= truth_power_ * edge_count_;
    return sums;
  }

 private:
  struct Tile {
    float squares = 0;
    float edges = 0;
  };

  template <typename Store>
  void copy_inner(const ChromaBand& band, const Store& store) const {
    size_t i = 0;
    for (int row = 0; row < noisy_.inner_rows; ++row) {
      const _Float16* samples = band.samples.data() + band.inner_offset(row);
      for (int col = 0; col < noisy_.inner_cols; ++col) store(i++, samples[col]);
    }
  }

  [[nodiscard]] std::vector<Tile> tile_errors(const std::vector<_Float16>& dense) const {
    const int cols = noisy_.inner_cols;
    const int across = (cols + kTile - 1) / kTile;
    const int down = (noisy_.inner_rows + kTile - 1) / kTile;
    std::vector<Tile> tiles(static_cast<size_t>(across) * static_cast<size_t>(down));
    std::vector<float> errors(static_cast<size_t>(cols));
    for (int row = 0; row < noisy_.inner_rows; ++row) {
      const size_t first = static_cast<size_t>(row) * static_cast<size_t>(cols);
      const _Float16* samples = dense.data() + first;
      const float* truth = truth_.data() + first;
      for (int col = 0; col < cols; ++col) {
        const float error = static_cast<float>(samples[col]) - truth[col];
        errors[size_t(col)] = error * error;
      }
      const float* weights = weights_.data() + first;
      Tile* tile = tiles.data() + size_t(row / kTile) * size_t(across);
      for (int col = 0; col < cols; ++tile) {
        for (const int end = std::min(cols, col + kTile); col < end; ++col) {
          tile->squares += errors[size_t(col)];
          tile->edges += weights[col] * errors[size_t(col)];
        }
      }
    }
    return tiles;
  }

  const ChromaBand& noisy_;
  size_t count_;
  std::vector<float> truth_;
  std::vector<float> weights_;  // 1 where the truth stands out
  std::vector<Tile> untouched_tiles_;
  double noise_power_ = 0.0;
  double truth_power_ = 0.0;  // of the truth's own noise, which adds to every error
  double edge_count_ = 0.0;
};

_Float16 scaled(double threshold) { return static_cast<_Float16>(threshold) * kThresholdScale; }

ErrorSums shrunk_details(const BandPair& pair, double threshold) {
  std::vector<_Float16> dense = pair.inner(pair.noisy());
  Denoise().shrinkage1(dense.data(), scaled(threshold), 0, 0, pair.noisy().inner_rows,
                       pair.noisy().inner_cols, 8, 0, kDetailScale);
  return pair.sums_of(dense);
}

ErrorSums shrunk_low_band(const BandPair& pair, double threshold) {
  ChromaBand band = pair.noisy();
  buffer record{};
  record.data = band.samples.data();
  record.width = static_cast<uint32_t>(band.cols);
  record.height = static_cast<uint32_t>(band.rows);
  record.borrowed = true;
  Denoise().haarL2Denoise(&record, nullptr, scaled(threshold), 0, 0, nullptr);
  return pair.sums_of(pair.inner(band));
}

// Cubic through four neighbours, which the outer two only bend.
ErrorSums between(const std::vector<ErrorSums>& entries, double position) {
  const int last = static_cast<int>(entries.size()) - 1;
  const int i = std::clamp(static_cast<int>(std::floor(position)), 0, last - 1);
  const double t = position - i;
  const auto entry = [&](int index) { return entries[size_t(std::clamp(index, 0, last))]; };
  const auto cubic = [t](double a, double b, double c, double d) {
    const double slope_b = 0.5 * (c - a);
    const double slope_c = 0.5 * (d - b);
    const double bend = 2 * (b - c) + slope_b + slope_c;
    return b + t * (slope_b + t * ((c - b - slope_b - bend) + t * bend));
  };
  const ErrorSums a = entry(i - 1), b = entry(i), c = entry(i + 1), d = entry(i + 2);
  return {cubic(a.squares, b.squares, c.squares, d.squares),
          cubic(a.edges, b.edges, c.edges, d.edges), cubic(a.harm, b.harm, c.harm, d.harm)};
}

}  // namespace

ErrorSums& ErrorSums::operator+=(const ErrorSums& other) {
  squares += other.squares;
  edges += other.edges;
  harm += other.harm;
  return *this;
}

ThresholdCurves::ThresholdCurves(const PlaneBands& noisy, const PlaneBands& truth,
                                 double truth_noise_share)
    : truth_is_mean_(truth_noise_share > 0.0) {
  std::array<double, kThresholds> counts{};
  for (std::vector<ErrorSums>& curve : entries_) curve.resize(size_t(kEntries));
  for (size_t band = 0; band < kChromaBands; ++band) {
    const BandPair pair(noisy[band], truth[band], truth_noise_share);
    const auto threshold = static_cast<size_t>(kThresholdOfBand[band]);
    const auto count = static_cast<double>(pair.count());
    untouched_ += pair.sums_of(pair.inner(noisy[band]));
    samples_ += count;
    noise_power_[threshold] += pair.noise_power() * count;
    counts[threshold] += count;
    for (int i = 0; i < kEntries; ++i) {
      entries_[threshold][size_t(i)] += band == 0 ? shrunk_low_band(pair, entry_threshold(i))
                                                  : shrunk_details(pair, entry_threshold(i));
    }
  }
  for (size_t i = 0; i < kThresholds; ++i) noise_power_[i] /= counts[i];
}

ErrorSums ThresholdCurves::at(const Thresholds& thresholds) const {
  ErrorSums sums;
  for (size_t i = 0; i < kThresholds; ++i) {
    const double value = std::max(thresholds[i], kThresholdFloor);
    sums += between(entries_[i], std::log2(value / kThresholdFloor) * kEntriesPerOctave);
  }
  return sums;
}

}  // namespace tool
