// Storage, failures and log lines of Sym4Transform.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/faults.h"
#include "tests/support/guarded_plane.h"
#include "tests/support/log_capture.h"
#include "vorel/wavelet/sym4_transform.h"

namespace {

constexpr int kWidth = 72;
constexpr int kHeight = 66;
constexpr size_t kWholePlane = 36 * 2 * 66;  // a low or high plane: a multiple of 8
constexpr int kBandSamples = 8 * 36 * 33;
constexpr size_t kHalfPlane = 36 * 2 * 33;  // an intermediate plane, likewise

// Planes for one run in each direction.
struct Frame {
  std::vector<_Float16> samples = std::vector<_Float16>(kWidth * kHeight, 100);
  std::vector<_Float16> bands = std::vector<_Float16>(kBandSamples, 0);
  buffer plane{samples.data(), kHeight, kWidth, 0, 0, 0, 0, 0, true};
  buffer subbands[8];

  Frame() {
    for (int i = 0; i < 8; ++i) {
      const bool small = i < 4;
      subbands[i] = {
          bands.data() + i * 36 * 33, small ? 17u : 33u, small ? 18u : 36u, 0, 0, 0, 0, 0, true};
    }
  }
  void forward(Sym4Transform& transform, unsigned level = 1) {
    transform.forwardWtRun(&plane, subbands, kWidth, kHeight, level, nullptr);
  }
  void inverse(Sym4Transform& transform, unsigned level = 1) {
    transform.inverseWtDifferentSband0Run(&subbands[0], subbands, &plane, kWidth, kHeight, level);
  }
};

bool set_up(Sym4Transform& transform, buffer* scratch, int debug = 0) {
  return transform.setup(kWidth, kHeight, kWidth / 2, kHeight / 2, debug, nullptr, nullptr,
                         scratch);
}

struct Lent {
  explicit Lent(size_t bytes) : memory(bytes) { std::fill_n(memory.data(), bytes, 0xA5); }
  buffer record() {
    return {memory.data(), 1, static_cast<uint32_t>(memory.size()), 0, 0, 0, 0, 0, false};
  }
  bool touched(size_t first, size_t end) const {
    return std::any_of(memory.data() + first, memory.data() + end,
                       [](uint8_t byte) { return byte != 0xA5; });
  }
  GuardedBytes memory;
};

TEST(Sym4Setup, TakesPlanesFromItsLevelsScratchInOrder) {
  // Exactly enough, and one byte short: then the plane asked for last comes from the heap.
  for (const size_t missing : {0, 1}) {
    Lent first(kHalfPlane + 2 * kWholePlane);
    Lent second(kHalfPlane + 2 * kWholePlane);
    buffer scratch[2] = {first.record(), second.record()};
    scratch[0].width -= static_cast<uint32_t>(missing);
    Frame frame;
    Sym4Transform transform;
    FaultScope heap(FaultScope::Kind::kAllocation, 0);
    ASSERT_TRUE(set_up(transform, scratch));
    EXPECT_EQ(heap.calls(), static_cast<int>(missing));
    frame.forward(transform);
    EXPECT_TRUE(first.touched(0, kHalfPlane));
    EXPECT_TRUE(first.touched(kHalfPlane, kHalfPlane + kWholePlane));
    EXPECT_EQ(first.touched(kHalfPlane + kWholePlane, first.memory.size()), missing == 0);
    EXPECT_FALSE(second.touched(0, second.memory.size()));
    frame.forward(transform, 2);
    EXPECT_TRUE(second.touched(0, kHalfPlane));
    transform.deallocate();
  }
}

TEST(Sym4Setup, FreesOnceWhatCameFromTheHeap) {
  Frame frame;
  Sym4Transform transform;
  ASSERT_TRUE(set_up(transform, nullptr));
  frame.forward(transform, 1);
  frame.inverse(transform, 2);
  transform.deallocate();
  transform.deallocate();
  // Without planes a run does nothing but say so.
  LogCapture log;
  std::fill(frame.bands.begin(), frame.bands.end(), _Float16{7});
  std::fill(frame.samples.begin(), frame.samples.end(), _Float16{7});
  frame.forward(transform);
  frame.inverse(transform);
  EXPECT_EQ(log.errors(), 2);
  EXPECT_EQ(std::count(frame.bands.begin(), frame.bands.end(), _Float16{7}), kBandSamples);
  EXPECT_EQ(std::count(frame.samples.begin(), frame.samples.end(), _Float16{7}), kWidth * kHeight);
}

TEST(Sym4Setup, ReportsMissingMemory) {
  int refused = 0;
  for_each_fault(FaultScope::Kind::kAllocation, [&](int) {
    Sym4Transform transform;
    LogCapture log;
    const bool ready = set_up(transform, nullptr);
    EXPECT_EQ(log.errors(), ready ? 0 : 1);
    if (!ready) ++refused;
    transform.deallocate();
  });
  EXPECT_EQ(refused, 6);
}

TEST(Sym4Setup, RefusesLevelsAndSizesWithoutPlanes) {
  Frame frame;
  Sym4Transform transform;
  ASSERT_TRUE(set_up(transform, nullptr));
  LogCapture log;
  frame.forward(transform, 0);
  frame.forward(transform, 3);
  transform.forwardWtRun(&frame.plane, frame.subbands, 16 * kWidth, kHeight, 1, nullptr);
  buffer wide = frame.subbands[0];
  wide.width = 4000;
  transform.inverseWtDifferentSband0Run(&wide, frame.subbands, &frame.plane, kWidth, kHeight, 1);
  EXPECT_EQ(log.errors(), 4);
  EXPECT_EQ(std::count(frame.bands.begin(), frame.bands.end(), _Float16{0}), kBandSamples);
  transform.deallocate();
}

// What was timed, in order.
std::vector<std::string> timed_names(const LogCapture& log) {
  std::vector<std::string> names;
  for (const std::string& text : log.texts()) {
    const size_t end = text.find(": elapsed time ");
    if (end != std::string::npos) names.push_back(text.substr(0, end));
  }
  return names;
}

// One line a pass and one a run, in the order of passes over whole planes.
TEST(Sym4Log, TimesEveryPassAtLevelOneOnly) {
  const std::vector<std::string> one_level = {
      "setup",     "fwt",          "fwtVert",
      "fwtVert",   "forwardWtRun", "iwtVert",
      "iwtVert",   "iwt",          "inverseWtDifferentSband0Run",
      "deallocate"};
  std::vector<std::string> two_levels = one_level;
  two_levels.insert(two_levels.begin() + 3, {"fwtVert", "fwt", "fwt"});
  two_levels.insert(two_levels.begin() + 8, {"iwt", "iwt", "iwtVert"});
  for (const int debug : {0, 1, 2, 5}) {
    for (const bool two : {false, true}) {
      LogCapture log;
      Frame frame;
      Sym4Transform transform;
      ASSERT_TRUE(set_up(transform, nullptr, debug));
      if (!two) transform.setWtCfg(2, 2, 2);
      frame.forward(transform);
      frame.inverse(transform);
      transform.deallocate();
      std::vector<std::string> expected;
      if (debug == 1) {
        for (const std::string& name : two ? two_levels : one_level) {
          expected.push_back("Sym4Transform::" + name);
        }
      }
      EXPECT_EQ(timed_names(log), expected);
    }
  }
}

TEST(Sym4Log, TellsOfAPitchThatDiffers) {
  // Half the width is odd: twice its half, rounded up, is one more.
  Sym4Transform transform;
  ASSERT_TRUE(transform.setup(70, 66, 35, 33, 0, nullptr, nullptr, nullptr));
  Frame frame;
  for (int i = 4; i < 8; ++i) frame.subbands[i].width = 35;
  LogCapture log;
  transform.inverseWtDifferentSband0Run(&frame.subbands[0], frame.subbands, &frame.plane, 70, 66,
                                        1);
  EXPECT_EQ(log.texts(), std::vector<std::string>{"iwtVertPitch: 1"});
  log.clear();
  frame.inverse(transform);
  EXPECT_EQ(log.count_prefix("iwtVertPitch"), 0);
  transform.deallocate();
}

}  // namespace
