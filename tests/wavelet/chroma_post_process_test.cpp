#include "vorel/wavelet/chroma_post_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <list>
#include <random>
#include <string>
#include <vector>

#include "platform/cpu.h"
#include "tests/support/faults.h"
#include "tests/support/log_capture.h"
#include "vorel/wavelet/border_handler.h"
#include "vorel/wavelet/denoise.h"
#include "vorel/wavelet/sym4_transform.h"
#include "wavelet/chroma_band.h"
#include "wavelet/chroma_process.h"

namespace {

constexpr uint16_t kNan = 0x7E00;

// What lent memory holds before the stage writes to it.
enum class Fill { kZero, kRandom, kNan, kNothingLent };

struct Parameters {
  _Float16 thresholds[5] = {40, 40, 28, 5, 2};
  _Float16 radial_mode = 0;
  _Float16 sat_param_1 = 0;
  _Float16 sat_param_2 = 0;
};

// Four planes as a handle of the frame's size lends them.
struct LentPlanes {
  LentPlanes(int width, int height, Fill fill) {
    const uint32_t cols = static_cast<uint32_t>((width / 2 + 65) & ~1);
    const uint32_t rows = static_cast<uint32_t>((height / 2 + 65) & ~1);
    const uint32_t aligned = static_cast<uint32_t>((height + 15) & ~15);
    const uint32_t sizes[4][2] = {{2 * rows, cols},
                                  {2 * rows, cols},
                                  {aligned, static_cast<uint32_t>(width)},
                                  {aligned, static_cast<uint32_t>(width)}};
    std::mt19937 random(3);
    for (int i = 0; i < 4; ++i) {
      memory[i].resize((sizes[i][0] * sizes[i][1] + 1) / 2);
      for (uint16_t& word : memory[i]) {
        word =
            fill == Fill::kNan ? kNan : static_cast<uint16_t>(fill == Fill::kRandom ? random() : 0);
      }
      if (fill == Fill::kNothingLent) continue;
      records[i].data = memory[i].data();
      records[i].height = sizes[i][0];
      records[i].width = sizes[i][1];
    }
  }
  std::vector<uint16_t> memory[4];
  buffer records[4] = {};
};

std::vector<uint8_t> make_chroma(int width, int height) {
  std::mt19937 random(9);
  std::vector<uint8_t> chroma(static_cast<size_t>(width) * static_cast<size_t>(height / 2));
  for (size_t i = 0; i < chroma.size(); ++i) {
    chroma[i] = static_cast<uint8_t>(90 + i % 2 * 60 + i / 96 % 20 + random() % 40);
  }
  return chroma;
}

buffer describe_pairs(std::vector<uint8_t>* chroma, int width, int height) {
  buffer pairs{};
  pairs.data = chroma->data();
  pairs.height = pairs.innerHeight = static_cast<uint32_t>(height / 2);
  pairs.width = static_cast<uint32_t>(width);
  pairs.innerWidth = pairs.width / 2;
  pairs.kind = VOREL_PLANE_PAIRS;
  return pairs;
}

std::vector<uint8_t> run_stage(int width, int height, Fill fill, Parameters p = {},
                               ThreadPool* pool = nullptr, int debug = 0) {
  std::vector<uint8_t> chroma = make_chroma(width, height);
  LentPlanes lent(width, height, fill);
  buffer pairs = describe_pairs(&chroma, width, height);
  ChromaPostProcess process;
  EXPECT_TRUE(process.setup(width, height, p.thresholds, p.radial_mode, p.sat_param_1,
                            p.sat_param_2, 65, 40, debug, nullptr, pool, nullptr, nullptr,
                            lent.records));
  EXPECT_EQ(process.chromaPostProcess(&pairs, &pairs), 0);
  process.deallocate();
  return chroma;
}

class ChromaPostProcessTest : public ::testing::Test {
 protected:
  LogCapture log_;
};

constexpr int kSizes[][2] = {{16, 2},   {16, 17},   {48, 50},   {128, 72},
                             {144, 54}, {176, 146}, {160, 960}, {1008, 34}};

TEST_F(ChromaPostProcessTest, UndefinedSamplesNeverReachTheOutput) {
  for (const auto& [width, height] : kSizes) {
    for (float radial : {0.0f, 2.0f, -1.3f}) {
      SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height));
      Parameters p;
      p.radial_mode = static_cast<_Float16>(radial);
      const std::vector<uint8_t> expected = run_stage(width, height, Fill::kZero, p);
      EXPECT_NE(expected, make_chroma(width, height));
      EXPECT_EQ(run_stage(width, height, Fill::kRandom, p), expected);
      EXPECT_EQ(run_stage(width, height, Fill::kNan, p), expected);
      EXPECT_EQ(run_stage(width, height, Fill::kNothingLent, p), expected);
    }
  }
}

TEST_F(ChromaPostProcessTest, RadialModeGivesSlopeAndCap) {
  const struct {
    float mode, slope, cap;
  } cases[] = {{0, 0, 2},      {0.5f, 1.5f, 3.5f},      {1, 2, 4}, {2, 3, 5}, {-0.5f, 1.125f, 2.5f},
               {-1, 1.25f, 3}, {-1.25f, 1.3125f, 3.25f}};
  const Parameters p;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.mode);
    chroma_process process{};
    ASSERT_TRUE(set_up_chroma(
        &process,
        {48, 50, p.thresholds, static_cast<_Float16>(c.mode), {}, {}, nullptr, 1, nullptr}));
    EXPECT_EQ(static_cast<float>(process.model.slope), c.slope);
    EXPECT_EQ(static_cast<float>(process.model.cap), c.cap);
    release_chroma(&process);
  }
}

// The strongest chroma there is, pixel by pixel, stays finite on its way through both transforms.
TEST_F(ChromaPostProcessTest, ExtremeChromaStaysFinite) {
  constexpr int kWidth = 176;
  constexpr int kHeight = 146;
  std::vector<uint8_t> chroma(kWidth * (kHeight / 2));
  std::mt19937 random(5);
  for (uint8_t& sample : chroma) sample = random() % 2 != 0 ? 255 : 0;
  LentPlanes lent(kWidth, kHeight, Fill::kZero);
  buffer pairs = describe_pairs(&chroma, kWidth, kHeight);
  Parameters p;
  p.radial_mode = 2;
  ChromaPostProcess process;
  ASSERT_TRUE(process.setup(kWidth, kHeight, p.thresholds, p.radial_mode, -20, 35, 65, 40, 0,
                            nullptr, nullptr, nullptr, nullptr, lent.records));
  process.chromaPostProcess(&pairs, &pairs);
  process.deallocate();
  const size_t pitch = lent.records[0].width;
  for (int plane = 0; plane < 2; ++plane) {
    for (size_t row = 32; row < 32 + kHeight / 2; ++row) {
      for (size_t col = 32; col < 32 + kWidth / 2; ++col) {
        const uint16_t bits = lent.memory[plane][row * pitch + col];
        ASSERT_NE(bits & 0x7C00, 0x7C00) << plane << " " << row << " " << col;
      }
    }
  }
}

// A bordered plane, its subbands and what the exported passes make of it.
class PassedPlane {
 public:
  PassedPlane(int width, int height) : cols_(padded(width)), rows_(padded(height)) {
    io = make(cols_, rows_);
    io.padX = io.padY = 32;
    io.innerWidth = static_cast<uint32_t>(width / 2);
    io.innerHeight = static_cast<uint32_t>(height / 2);
    for (int i = 0; i < 7; ++i) {
      const uint32_t part = i < 4 ? 4 : 2;
      subbands_[i] = make(cols_ / 2 * 2 / part, i < 4 ? (rows_ / 2 + 1) / 2 : rows_ / 2);
    }
  }

  void denoise(const Parameters& p, _Float16 A, _Float16 B) {
    Sym4Transform transform;
    ASSERT_TRUE(transform.setup(static_cast<int>(cols_), static_cast<int>(rows_),
                                static_cast<int>(cols_ / 2), static_cast<int>(rows_ / 2), 0,
                                nullptr, nullptr, nullptr));
    const int source[] = {0, 1, 1, 2, 3, 3, 4};
    _Float16 thresholds[7];
    for (int i = 0; i < 7; ++i) {
      thresholds[i] = p.thresholds[source[i]] * static_cast<_Float16>(36.40625f);
    }
    transform.forwardWtRun(&io, subbands_, cols_, rows_, 1, nullptr);
    Denoise().denoiseChroma1And2HaarRun(subbands_, nullptr, thresholds, A, B, nullptr);
    transform.inverseWtDifferentSband0Run(subbands_, subbands_, &io, cols_, rows_, 1);
    transform.deallocate();
  }

  buffer io{};

 private:
  static uint32_t padded(int size) { return static_cast<uint32_t>(size / 2 + 65) & ~1u; }
  buffer make(uint32_t cols, uint32_t rows) {
    storage_.emplace_back(size_t{cols} * rows, _Float16{0});
    return {storage_.back().data(), rows, cols, 0, 0, 0, 0, 0, true};
  }

  uint32_t cols_;
  uint32_t rows_;
  std::list<std::vector<_Float16>> storage_;
  buffer subbands_[7];
};

// Bands of rows, in any order, give what the exported passes give over whole planes.
TEST_F(ChromaPostProcessTest, BandsEqualThePassesOverWholePlanes) {
  for (const auto& [width, height] : kSizes) {
    SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height));
    Parameters p;
    p.thresholds[0] = -40;
    const saturation_curve curve = {-20, 35, 65, 40};
    const _Float16 A = 3, B = 5;
    std::vector<uint8_t> chroma = make_chroma(width, height), expected(chroma.size());
    buffer pairs = describe_pairs(&chroma, width, height);
    buffer out = describe_pairs(&expected, width, height);
    PassedPlane first(width, height), second(width, height);
    BorderHandler::getInstance()->runCopyAndPad(&pairs, &first.io, &second.io, 0, first.io.height);
    const buffer sources[2] = {first.io, second.io};
    std::vector<_Float16> copies[2];
    buffer planes[2];
    for (int i = 0; i < 2; ++i) {
      const auto* samples = static_cast<const _Float16*>(sources[i].data);
      copies[i].assign(samples, samples + size_t{sources[i].width} * sources[i].height);
      planes[i] = sources[i];
      planes[i].data = copies[i].data();
    }
    Parameters other = p;  // of the second plane
    other.thresholds[0] = other.thresholds[1] = 20;
    first.denoise(p, A, B);
    second.denoise(other, A, B);
    Denoise().applySaturationRegion(&first.io, &second.io, &out, nullptr, curve.param1,
                                    curve.param2, curve.thr1, curve.thr2, 0, out.height);

    std::vector<uint8_t> bytes(chroma.size(), 77);
    buffer band_out = describe_pairs(&bytes, width, height);
    const _Float16 scale = static_cast<_Float16>(36.40625f);
    const auto scaled = [&](const Parameters& of) {
      std::array<_Float16, 7> table;
      constexpr int kSource[] = {0, 1, 1, 2, 3, 3, 4};
      for (int i = 0; i < 7; ++i) table[i] = of.thresholds[kSource[i]] * scale;
      table[0] = table[0] < 0 ? -table[0] : table[0];
      return table;
    };
    const auto thresholds = scaled(p), other_thresholds = scaled(other);
    const chroma_frame frame = {
        planes, &band_out, {thresholds.data(), other_thresholds.data()}, {A, B}, curve};
    for (const int count : {1, 2, 7, height / 2}) {
      SCOPED_TRACE(count);
      std::fill(bytes.begin(), bytes.end(), uint8_t{77});
      for (int band = count - 1; band >= 0 && count <= height / 2; --band) {
        // What a band finds in its memory is nothing to it.
        std::vector<uint16_t> memory(chroma_band_samples(frame), kNan);
        PassTimes times[2];
        const span rows = {height / 2 * band / count, height / 2 * (band + 1) / count};
        denoise_chroma_band(frame, rows, memory.data(), times);
        const size_t written = static_cast<size_t>(rows.end) * static_cast<size_t>(width);
        ASSERT_TRUE(band + 1 < count || written == bytes.size());
      }
      if (count <= height / 2) ASSERT_EQ(bytes, expected);
    }
  }
}

TEST_F(ChromaPostProcessTest, WorkersAndOrderChangeNothing) {
  const std::vector<uint8_t> expected = run_stage(176, 146, Fill::kZero);
  for (int workers : {1, 2, 6}) {
    assume_usable_cpus(workers);
    ThreadPool pool;
    ASSERT_EQ(pool.init(workers, 0xFF, 0), 0);
    EXPECT_EQ(run_stage(176, 146, Fill::kNan, {}, &pool), expected);
    // With dumps, here into no folder, planes are denoised as a whole.
    EXPECT_EQ(run_stage(176, 146, Fill::kNan, {}, &pool, 5), expected);
    pool.deinit();
  }
  assume_usable_cpus(0);
}

// Planes, rows and the object's own record come from the heap when nothing is lent. With dumps,
// here into no folder, planes are denoised as a whole.
TEST_F(ChromaPostProcessTest, WithoutMemoryTheChromaStaysAndAnErrorSaysSo) {
  const std::vector<uint8_t> before = make_chroma(48, 50);
  int debug = 0;
  const auto attempt = [&](int nth) {
    SCOPED_TRACE(nth);
    log_.clear();
    std::vector<uint8_t> chroma = before;
    buffer pairs = describe_pairs(&chroma, 48, 50);
    Parameters p;
    ChromaPostProcess process;
    const bool done = process.setup(48, 50, p.thresholds, 0, 0, 0, 65, 40, debug, nullptr, nullptr,
                                    nullptr, nullptr, nullptr) &&
                      process.chromaPostProcess(&pairs, &pairs) == 0;
    process.deallocate();
    EXPECT_EQ(log_.count_containing("alloc is fail") == 0, done);
    EXPECT_EQ(chroma == before, !done);
  };
  // The record, 17 planes, the transform's 6, and the rows of one band or of two planes.
  EXPECT_EQ(for_each_fault(FaultScope::Kind::kAllocation, attempt), 25);
  debug = 5;
  EXPECT_EQ(for_each_fault(FaultScope::Kind::kAllocation, attempt), 26);
}

TEST_F(ChromaPostProcessTest, ThresholdsOfZeroKeepTheChroma) {
  Parameters p;
  for (_Float16& threshold : p.thresholds) threshold = 0;
  const std::vector<uint8_t> before = make_chroma(176, 146);
  const std::vector<uint8_t> after = run_stage(176, 146, Fill::kNan, p);
  int largest = 0;
  for (size_t i = 0; i < before.size(); ++i) {
    largest = std::max(largest, std::abs(before[i] - after[i]));
  }
  // The transforms alone give the samples back to a few roundings of half precision.
  EXPECT_LE(largest, 2);
}

TEST_F(ChromaPostProcessTest, SetupLogsSizesAndSetsTheLevels) {
  Parameters p;
  ChromaPostProcess process;
  ASSERT_TRUE(process.setup(4000, 3000, p.thresholds, 0, 0, 0, 65, 40, 0, nullptr, nullptr, nullptr,
                            nullptr, nullptr));
  EXPECT_EQ(log_.count("ChromaPostProcess::setup, UVSize 2000, 1500, UVSizeb 2064, 1564, UVL1Sizeb "
                       "1032, 782, UVL2Sizeb 516, 391"),
            1);
  EXPECT_EQ(process.getWtRange(0, WT_SUBBAND_FIRST), 4u);
  EXPECT_EQ(process.getWtRange(0, WT_SUBBAND_LAST), 8u);
  EXPECT_EQ(process.getWtRange(2, WT_SUBBAND_LAST), 7u);
  process.setWtCfg(0, 2, 3);
  EXPECT_EQ(process.getWtRange(0, WT_SUBBAND_FIRST), 0u);
  EXPECT_EQ(process.getWtRange(1, WT_SUBBAND_LAST), 8u);
  process.deallocate();
  process.deallocate();
}

}  // namespace
