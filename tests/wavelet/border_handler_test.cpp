#include "vorel/wavelet/border_handler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

#include "tests/support/guarded_plane.h"
#include "tests/wavelet/plain_half.h"

namespace {

constexpr int kBorder = 32;

int padded(int inner) { return (inner + 2 * kBorder + 1) & ~1; }

// A bordered plane at the edge of memory.
struct Bordered {
  Bordered(int inner_width, int inner_height)
      : width(padded(inner_width)),
        height(padded(inner_height)),
        samples(static_cast<size_t>(width) * height) {
    std::fill_n(samples.data(), samples.size(), kNotANumber);
  }
  buffer record(int inner_width, int inner_height) {
    return {samples.data(),
            static_cast<uint32_t>(height),
            static_cast<uint32_t>(width),
            VOREL_PLANE_FIRST,
            kBorder,
            kBorder,
            static_cast<uint32_t>(inner_width),
            static_cast<uint32_t>(inner_height),
            true};
  }
  _Float16 at(int x, int y) const { return samples[static_cast<size_t>(y) * width + x]; }
  std::vector<uint16_t> bits() const {
    return half_bits(std::vector<_Float16>(samples.data(), samples.data() + samples.size()));
  }

  int width;
  int height;
  GuardedPlane<_Float16> samples;
};

// Interleaved pairs in rows of `stride` bytes; the last row ends where memory ends.
struct Pairs {
  Pairs(int w, int h, int stride_bytes, uint32_t seed)
      : width(w),
        height(h),
        stride(stride_bytes),
        bytes(static_cast<size_t>(stride) * (h - 1) + 2 * static_cast<size_t>(w)) {
    std::mt19937 random(seed);
    fill_pattern(bytes.data(), bytes.size(), Pattern::kRandom, random);
  }
  buffer record() {
    return {bytes.data(),
            static_cast<uint32_t>(height),
            static_cast<uint32_t>(stride),
            VOREL_PLANE_PAIRS,
            0,
            0,
            0,
            0,
            true};
  }
  uint8_t at(int x, int y, int byte) const {
    return bytes.data()[static_cast<size_t>(y) * stride + 2 * static_cast<size_t>(x) + byte];
  }

  int width;
  int height;
  int stride;
  GuardedBytes bytes;
};

struct PadSize {
  int width;
  int height;
};
const PadSize kPadSizes[] = {{1, 1}, {2, 2}, {8, 1}, {15, 3}, {16, 9}, {17, 8}, {31, 5}, {40, 50}};

TEST(BorderHandler, PairsBecomeTwoPlanesWithTheNearestSampleAround) {
  for (const PadSize size : kPadSizes) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    Pairs pairs(size.width, size.height, 2 * size.width + 6, 1);
    Bordered first(size.width, size.height), second(size.width, size.height);
    buffer in = pairs.record();
    buffer planes[2] = {first.record(size.width, size.height),
                        second.record(size.width, size.height)};
    BorderHandler::getInstance()->runCopyAndPad(&in, &planes[0], &planes[1], 0, first.height);
    for (int y = 0; y < first.height; ++y) {
      for (int x = 0; x < first.width; ++x) {
        const int from_x = std::clamp(x - kBorder, 0, size.width - 1);
        const int from_y = std::clamp(y - kBorder, 0, size.height - 1);
        ASSERT_EQ(static_cast<int>(first.at(x, y)), pairs.at(from_x, from_y, 0)) << x << ' ' << y;
        ASSERT_EQ(static_cast<int>(second.at(x, y)), pairs.at(from_x, from_y, 1)) << x << ' ' << y;
      }
    }

    // Four bands, in any order, give the same.
    Bordered band_first(size.width, size.height), band_second(size.width, size.height);
    planes[0].data = band_first.samples.data();
    planes[1].data = band_second.samples.data();
    const unsigned quarter = static_cast<unsigned>(first.height) / 4;
    const unsigned cuts[] = {0, quarter, 2 * quarter, 3 * quarter, planes[0].height};
    for (const int band : {2, 0, 3, 1}) {
      BorderHandler::getInstance()->runCopyAndPad(&in, &planes[0], &planes[1], cuts[band],
                                                  cuts[band + 1]);
    }
    EXPECT_EQ(band_first.bits(), first.bits());
    EXPECT_EQ(band_second.bits(), second.bits());

    // Borders made from the inner samples alone are the same.
    for (Bordered* plane : {&band_first, &band_second}) {
      for (int i = 0; i < plane->width * plane->height; ++i) {
        const int x = i % plane->width - kBorder;
        const int y = i / plane->width - kBorder;
        const bool inner = x >= 0 && y >= 0 && x < size.width && y < size.height;
        if (!inner) plane->samples[i] = kNotANumber;
      }
    }
    for (const int band : {2, 0, 3, 1}) {
      BorderHandler::getInstance()->runPad(&planes[0], &planes[1], cuts[band], cuts[band + 1]);
    }
    EXPECT_EQ(band_first.bits(), first.bits());
    EXPECT_EQ(band_second.bits(), second.bits());
  }
}

TEST(BorderHandler, TwoByTwoGivesFourQuadrants) {
  Pairs pairs(2, 2, 4, 1);
  const uint8_t bytes[] = {0, 255, 1, 128, 2, 127, 3, 7};
  std::copy(std::begin(bytes), std::end(bytes), pairs.bytes.data());
  Bordered first(2, 2), second(2, 2);
  buffer in = pairs.record();
  buffer planes[2] = {first.record(2, 2), second.record(2, 2)};
  BorderHandler::getInstance()->runCopyAndPad(&in, &planes[0], &planes[1], 0, 66);
  const uint16_t first_bits[] = {0x0000, 0x3C00, 0x4000, 0x4200};   // 0, 1, 2, 3
  const uint16_t second_bits[] = {0x5BF8, 0x5800, 0x57F0, 0x4700};  // 255, 128, 127, 7
  for (int y = 0; y < 66; ++y) {
    for (int x = 0; x < 66; ++x) {
      const int quadrant = y / 33 * 2 + x / 33;
      ASSERT_EQ(half_bits(first.at(x, y)), first_bits[quadrant]);
      ASSERT_EQ(half_bits(second.at(x, y)), second_bits[quadrant]);
    }
  }
}

TEST(BorderHandler, EmptyInnerAreaIsLeftAlone) {
  for (const PadSize size : {PadSize{0, 4}, PadSize{4, 0}}) {
    Bordered first(4, 4), second(4, 4);
    buffer planes[2] = {first.record(size.width, size.height),
                        second.record(size.width, size.height)};
    Pairs pairs(4, 4, 8, 1);
    buffer in = pairs.record();
    const std::vector<uint16_t> before = first.bits();
    BorderHandler::getInstance()->runCopyAndPad(&in, &planes[0], &planes[1], 0, 68);
    BorderHandler::getInstance()->runPad(&planes[0], &planes[1], 0, 68);
    EXPECT_EQ(first.bits(), before);
    EXPECT_EQ(second.bits(), before);
  }
}

TEST(BorderHandler, StripsABorder) {
  std::vector<_Float16> bordered(9 * 7);
  for (size_t i = 0; i < bordered.size(); ++i) bordered[i] = static_cast<_Float16>(i);
  GuardedPlane<_Float16> out(4 * 3);
  BorderHandler::getInstance()->stripPad(bordered.data(), out.data(), 9, 2, 1, 4, 3);
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 4; ++x) {
      EXPECT_EQ(static_cast<int>(out[y * 4 + x]), (y + 1) * 9 + x + 2);
    }
  }
}

TEST(BoxFilter3x3, EqualsThePlainForm) {
  std::mt19937 random(2);
  for (const PadSize size : {PadSize{1, 1}, PadSize{2, 3}, PadSize{3, 1}, PadSize{37, 6}}) {
    SCOPED_TRACE(size.width);
    const size_t count = static_cast<size_t>(size.width) * size.height;
    GuardedPlane<_Float16> in(count), out(count);
    const std::vector<_Float16> samples = random_halves(count, -300, 300, random);
    std::copy(samples.begin(), samples.end(), in.data());
    buffer records[2] = {};
    for (buffer& record : records) {
      record.width = static_cast<uint32_t>(size.width);
      record.height = static_cast<uint32_t>(size.height);
    }
    records[0].data = in.data();
    records[1].data = out.data();
    boxFilter3x3(&records[0], &records[1], nullptr);
    for (int y = 0; y < size.height; ++y) {
      for (int x = 0; x < size.width; ++x) {
        PlainHalf sum = 0.0;
        for (int dy = -1; dy <= 1; ++dy) {
          for (int dx = -1; dx <= 1; ++dx) {
            const int from_x = std::clamp(x + dx, 0, size.width - 1);
            const int from_y = std::clamp(y + dy, 0, size.height - 1);
            sum = sum + PlainHalf(in[static_cast<size_t>(from_y) * size.width + from_x]);
          }
        }
        const PlainHalf mean = sum * PlainHalf(1.0 / 9);
        ASSERT_EQ(half_bits(out[static_cast<size_t>(y) * size.width + x]), half_bits(mean))
            << x << ' ' << y;
      }
    }
  }
}

}  // namespace
