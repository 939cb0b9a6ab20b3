#include <map>
#include <thread>

#include "tests/core/handle_fixture.h"
#include "tests/support/faults.h"
#include "vorel/frame.h"

namespace {

class FrameCallTest : public HandleTest {
 protected:
  vorel* open_for(int width, int height) {
    const vorel_options options = vorel_default_options(width, height);
    vorel_status status = VOREL_BAD_RECORD;
    vorel* handle = vorel_open(&options, &status);
    EXPECT_EQ(status, VOREL_DONE);
    return handle;
  }
};

// A frame with any stride, odd sizes too; bytes outside the rows hold kOutside.
struct StridedFrame {
  static constexpr uint8_t kOutside = 0xA5;
  StridedFrame(int width, int height, int luma_stride, int chroma_stride)
      : luma(static_cast<size_t>(luma_stride * (height - 1) + width)),
        chroma(static_cast<size_t>(chroma_stride * ((height + 1) / 2 - 1) + (width + 1) / 2 * 2)),
        frame{sizeof(vorel_frame),
              luma.data(),
              chroma.data(),
              luma_stride,
              chroma_stride,
              width,
              height,
              VOREL_LAYOUT_NV21,
              640} {
    std::fill_n(luma.data(), luma.size(), kOutside);
    std::fill_n(chroma.data(), chroma.size(), kOutside);
  }

  // Calls `body` with each byte inside and its place in planes continued to `dense_width`.
  template <typename Body>
  void each(int dense_width, Body body) {
    for (int row = 0; row < frame.height; ++row) {
      for (int col = 0; col < frame.width; ++col) {
        body(&luma[static_cast<size_t>(row * frame.luma_stride + col)], false,
             static_cast<size_t>(row * dense_width + col));
      }
    }
    for (int row = 0; row < (frame.height + 1) / 2; ++row) {
      for (int col = 0; col < (frame.width + 1) / 2 * 2; ++col) {
        body(&chroma[static_cast<size_t>(row * frame.chroma_stride + col)], true,
             static_cast<size_t>(row * dense_width + col));
      }
    }
  }

  GuardedPlane<uint8_t> luma;
  GuardedPlane<uint8_t> chroma;
  vorel_frame frame;
};

// The frame continued by hand and given to vorel_run is what any size and stride must equal; a
// frame with the pair the other way round, swapped back, too.
TEST_F(FrameCallTest, AnySizeStrideAndLayoutEqualsTheContinuedFrame) {
  use_tuning(kBothPaths);
  const struct {
    int width, height, luma_stride, chroma_stride;
  } sizes[] = {{64, 48, 64, 64}, {64, 48, 80, 96}, {64, 47, 64, 64}, {63, 48, 63, 64},
               {33, 31, 40, 34}, {2, 2, 2, 2},     {3, 3, 7, 5},     {112, 100, 112, 113}};
  for (const auto& size : sizes) {
    SCOPED_TRACE(std::to_string(size.width) + "x" + std::to_string(size.height));
    const int width = (size.width + 15) / 16 * 16;
    const int height = size.height + size.height % 2;
    TestFrame expected(width, height);
    StridedFrame given(size.width, size.height, size.luma_stride, size.chroma_stride);
    given.each(width, [&](uint8_t* byte, bool chroma, size_t at) {
      *byte = chroma ? expected.uv[at] : expected.y[at];
    });
    const auto continue_rows = [&](GuardedPlane<uint8_t>& plane, int rows, int all, size_t step) {
      for (int row = 0; row < all; ++row) {
        const size_t inside = step == 1 ? static_cast<size_t>(size.width)
                                        : static_cast<size_t>((size.width + 1) / 2 * 2);
        const size_t from = static_cast<size_t>(std::min(row, rows - 1) * width);
        for (size_t col = 0; col < static_cast<size_t>(width); ++col) {
          const size_t last = inside - step + col % step;
          plane[static_cast<size_t>(row * width) + col] = plane[from + std::min(col, last)];
          if (col >= inside) plane[static_cast<size_t>(row * width) + col] = plane[from + last];
        }
      }
    };
    continue_rows(expected.y, size.height, height, 1);
    continue_rows(expected.uv, (size.height + 1) / 2, height / 2, 2);
    StridedFrame swapped(size.width, size.height, size.luma_stride, size.chroma_stride);
    std::copy_n(given.luma.data(), given.luma.size(), swapped.luma.data());
    swapped.each(width, [&](uint8_t* byte, bool chroma, size_t at) {
      if (chroma) *byte = expected.uv[at ^ 1];
    });
    swapped.frame.layout = VOREL_LAYOUT_NV12;

    vorel* handle = open_for(size.width, size.height);
    run(handle, &expected);
    EXPECT_EQ(vorel_denoise_frame(handle, &given.frame, nullptr), VOREL_DONE);
    EXPECT_EQ(vorel_denoise_frame(handle, &swapped.frame, nullptr), VOREL_DONE);
    StridedFrame wanted(size.width, size.height, size.luma_stride, size.chroma_stride);
    wanted.each(width, [&](uint8_t* byte, bool chroma, size_t at) {
      *byte = chroma ? expected.uv[at] : expected.y[at];
    });
    EXPECT_TRUE(
        std::equal(given.luma.data(), given.luma.data() + given.luma.size(), wanted.luma.data()));
    EXPECT_TRUE(std::equal(given.chroma.data(), given.chroma.data() + given.chroma.size(),
                           wanted.chroma.data()));
    swapped.each(width, [&](uint8_t* byte, bool chroma, size_t at) {
      ASSERT_EQ(*byte, chroma ? expected.uv[at ^ 1] : expected.y[at]);
    });
    vorel_deinit(handle);
  }
}

// Whatever fails, the calls return and the status tells what has become of the frame.
TEST_F(FrameCallTest, StatusIsTrueWhateverFails) {
  const std::string tuning = "[" + kBothPaths + "]";
  const TestFrame untouched(70, 64);
  TestFrame processed(70, 64);
  vorel_options options = vorel_default_options(70, 64);
  options.tuning_text = tuning.data();
  options.tuning_text_bytes = tuning.size();
  const auto attempt = [&](TestFrame* frame) {
    vorel_status status = VOREL_DONE;
    vorel* handle = vorel_open(&options, &status);
    vorel_frame_info info{};
    info.size = sizeof(info);
    if (handle != nullptr) {
      status = denoise(handle, frame, 640, &info);
      EXPECT_EQ(info.status, status);
      if (status == VOREL_DONE) EXPECT_EQ(info.skipped, 0u);
      if (status == VOREL_STAGE_SKIPPED) EXPECT_NE(info.skipped, 0u);
      vorel_deinit(handle);
    }
    return status;
  };
  ASSERT_EQ(attempt(&processed), VOREL_DONE);
  ASSERT_NE(processed.bytes(), untouched.bytes());
  std::map<vorel_status, int> seen;
  int without_half_planes = 0;
  using Kind = FaultScope::Kind;
  using Span = FaultScope::Span;
  // Which call of several threads is the n-th differs from run to run; all later ones fail surely.
  for (const auto& [kind, span] : {std::pair(Kind::kAllocation, Span::kOnce),
                                   {Kind::kAllocation, Span::kFromThere},
                                   {Kind::kThreadCreate, Span::kOnce}}) {
    const auto body = [&](int nth) {
      SCOPED_TRACE(nth);
      log_.clear();
      TestFrame frame(70, 64);
      const vorel_status status = attempt(&frame);
      ++seen[status];
      if (status == VOREL_DONE) EXPECT_TRUE(frame.bytes() == processed.bytes());
      if (status < 0) EXPECT_TRUE(frame.bytes() == untouched.bytes());
      if (status != VOREL_DONE) EXPECT_GE(log_.errors(), 1);
      if (log_.count("vorel_interleave, skipped: no half-precision planes") > 0) {
        EXPECT_EQ(status, VOREL_NO_MEMORY);
        EXPECT_EQ(log_.count("MFD_UV, skipped: no half-precision planes"), 1);
        ++without_half_planes;
      }
    };
    for_each_fault(kind, body, span);
  }
  EXPECT_GE(seen[VOREL_NO_THREADS], 8);      // starter, driver, six workers
  EXPECT_GE(seen[VOREL_NO_MEMORY], 12 + 1);  // init's; own planes and half planes
  EXPECT_GE(without_half_planes, 1);
  EXPECT_GE(seen[VOREL_STAGE_SKIPPED], 1);
}

TEST_F(FrameCallTest, InfoTellsValuesStagesAndTimes) {
  use_tuning(R"({"enableNoiseIndex": 90, "noiseIndex_values": [100, 1100, 2100],
    "CNRTuningSetfile": {"Date": "2026-01-02"}, "MFD_UV_tuning": {"CSatThr2Table": [1.5, 2.5]},
    "interleaving_tuning": {"cs_upper_thresh_table": [10, 110, 120]}})");
  vorel* handle = open_for(64, 64);
  TestFrame frame(64, 64);
  const struct {
    int index, low, high, cs_upper;
    float threshold;
  } cases[] = {{90, 0, 0, 10, 1.5f},
               {600, 0, 1, 60, 2.0f},
               {1100, 1, 1, 110, 2.5f},
               {9000, 2, 2, 120, 40.0f}};
  vorel_frame_info info{};
  info.size = sizeof(info);
  for (const auto& c : cases) {
    EXPECT_EQ(denoise(handle, &frame, c.index, &info), VOREL_DONE);
    EXPECT_EQ(info.status, VOREL_DONE);
    EXPECT_EQ(info.noise_index, c.index);
    EXPECT_EQ(info.enable_noise_index, 90);
    EXPECT_EQ(info.level_low, c.low);
    EXPECT_EQ(info.level_high, c.high);
    EXPECT_EQ(info.cs_upper_thresh, c.cs_upper);
    EXPECT_EQ(info.CSatThr2, c.threshold);
    EXPECT_EQ(info.denoiseThrChroma[4], 60.0f);
    EXPECT_EQ(info.workers, 6);
    EXPECT_EQ(info.spatial + 2 * info.wavelet, 3);
    int64_t stages = 0;
    for (int64_t usec : info.stage_usec) {
      EXPECT_GE(usec, 0);
      stages += usec;
    }
    EXPECT_GT(info.stage_usec[VOREL_STAGE_MFD_UV], 0);
    EXPECT_GE(info.total_usec, stages);
  }
  EXPECT_EQ(denoise(handle, &frame, 89, &info), VOREL_BELOW_GATE);
  EXPECT_EQ(info.status, VOREL_BELOW_GATE);
  EXPECT_EQ(info.workers + info.cs_upper_thresh + info.stage_usec[0], 0);
  EXPECT_EQ(info.spatial + 2 * info.wavelet, 3);
  info.size -= 1;
  EXPECT_EQ(denoise(handle, &frame, 640, &info), VOREL_BAD_RECORD);
  EXPECT_EQ(denoise(nullptr, &frame, 640, &info), VOREL_BAD_HANDLE);
  EXPECT_EQ(info.status, VOREL_BELOW_GATE) << "a record of unknown size is not written";

  vorel_handle_info made{};
  EXPECT_EQ(vorel_get_handle_info(handle, &made), VOREL_BAD_RECORD);
  made.size = sizeof(made);
  EXPECT_EQ(vorel_get_handle_info(nullptr, &made), VOREL_BAD_HANDLE);
  EXPECT_EQ(vorel_get_handle_info(handle, &made), VOREL_DONE);
  EXPECT_EQ(made.tuning_loaded, 1);
  EXPECT_EQ(made.level_count, 3);
  EXPECT_EQ(made.levels[2], 2100);
  EXPECT_EQ(made.workers, 6);
  EXPECT_STREQ(made.sensor_name, "NOTHING");
  EXPECT_STREQ(made.tuning_date, "2026-01-02");
  EXPECT_STREQ(made.dump_path, "");
  vorel_deinit(handle);
}

TEST_F(FrameCallTest, HandleTellsWhichPathsTuningAndOptionsLeaveOn) {
  for (int bits = 0; bits < 16; ++bits) {
    SCOPED_TRACE(bits);
    const int spatial = bits & 1, wavelet = bits >> 1 & 1;
    const std::string text = R"([{"enable": )" + std::to_string(spatial) +
                             R"(, "MFD_UV_tuning": {"enable": )" + std::to_string(wavelet) + "}}]";
    vorel_options options = vorel_default_options(64, 48);
    options.tuning_text = text.data();
    options.tuning_text_bytes = text.size();
    options.disable_spatial = bits >> 2 & 1;
    options.disable_wavelet = bits >> 3 & 1;
    vorel* handle = vorel_open(&options, nullptr);
    vorel_handle_info info{};
    info.size = sizeof(info);
    EXPECT_EQ(vorel_get_handle_info(handle, &info), VOREL_DONE);
    EXPECT_EQ(info.spatial, spatial != 0 && options.disable_spatial == 0 ? 1 : 0);
    EXPECT_EQ(info.wavelet, wavelet != 0 && options.disable_wavelet == 0 ? 1 : 0);
    vorel_deinit(handle);
  }
}

// Tuning of a named file or text must be usable; the sensor's own need not be there.
TEST_F(FrameCallTest, OptionsNameTheTuning) {
  firmware_.write("any name", R"([{"enableNoiseIndex": 11}])");
  firmware_.write("broken", R"([{"enableNoiseIndex": )");
  const std::string file = firmware_.path() / "any name";
  const std::string broken = firmware_.path() / "broken";
  const std::string text = R"([{"enableNoiseIndex": 22}] and more)";
  const struct {
    const char* path;
    const char* text;
    size_t bytes;
    const char* thread_name;
    vorel_status status;
    int enable_noise_index;
  } cases[] = {
      {nullptr, nullptr, 0, "12345678", VOREL_DONE, 40960},
      {file.c_str(), nullptr, 0, "a", VOREL_DONE, 11},
      {nullptr, text.data(), 26, "a", VOREL_DONE, 22},
      {nullptr, text.data(), 25, "a", VOREL_BAD_TUNING, 0},
      {nullptr, text.data(), 0, "a", VOREL_BAD_TUNING, 0},
      {nullptr, "{}", 2, "a", VOREL_BAD_TUNING, 0},
      {nullptr, "[1]", 3, "a", VOREL_BAD_TUNING, 0},
      {broken.c_str(), nullptr, 0, "a", VOREL_BAD_TUNING, 0},
      {"/absent", nullptr, 0, "a", VOREL_BAD_TUNING, 0},
      {file.c_str(), text.data(), 26, "a", VOREL_BAD_OPTION, 0},
      {nullptr, nullptr, 0, "123456789", VOREL_BAD_OPTION, 0},
      {nullptr, nullptr, 0, "", VOREL_BAD_OPTION, 0},
      {nullptr, nullptr, 0, nullptr, VOREL_BAD_OPTION, 0},
  };
  for (const auto& c : cases) {
    vorel_options options = vorel_default_options(18, 4);
    options.tuning_path = c.path;
    options.tuning_text = c.text;
    options.tuning_text_bytes = c.bytes;
    options.thread_name = c.thread_name;
    vorel_status status = VOREL_BAD_RECORD;
    log_.clear();
    vorel* handle = vorel_open(&options, &status);
    EXPECT_EQ(status, c.status);
    EXPECT_EQ(handle != nullptr, status == VOREL_DONE);
    if (status == VOREL_BAD_TUNING) EXPECT_GE(log_.errors(), 2) << "the loader tells what is wrong";
    if (handle == nullptr) continue;
    EXPECT_EQ(handle->tuning.enableNoiseIndex, c.enable_noise_index);
    TestFrame frame(18, 4);
    EXPECT_EQ(denoise(handle, &frame, 50000), VOREL_DONE);
    vorel_deinit(handle);
  }
  EXPECT_EQ(vorel_open(nullptr, nullptr), nullptr);
}

// A vorel_run that keeps the slot may have taken it before the frame call began to wait.
TEST_F(FrameCallTest, WaitsForNoCallThatHasEnded) {
  use_tuning(kSpatialOnly);
  vorel* handle = open_for(64, 64);
  pthread_mutex_lock(&handle->slot_mutex[0]);
  std::thread waiting([&] {
    TestFrame frame(64, 64);
    EXPECT_EQ(denoise(handle, &frame), VOREL_DONE);
    EXPECT_EQ(denoise(handle, &frame), VOREL_DONE);
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  handle->slot_abandoned = 1;
  waiting.join();
  EXPECT_EQ(handle->slot_abandoned, 1);
  pthread_mutex_unlock(&handle->slot_mutex[0]);
  vorel_deinit(handle);
}

}  // namespace
