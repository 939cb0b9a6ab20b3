// Handles and frames for tests of the pipeline.
#ifndef VOREL_TESTS_CORE_HANDLE_FIXTURE_H_
#define VOREL_TESTS_CORE_HANDLE_FIXTURE_H_

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "core/handle.h"
#include "tests/support/guarded_plane.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

inline constexpr char kDebugVariable[] = "PERSIST_VENDOR_LIBVOREL_DEBUG";

// A frame of dense planes that end at unreadable pages.
struct TestFrame {
  TestFrame(int frame_width, int frame_height, uint32_t seed = 1)
      : width(frame_width),
        height(frame_height),
        y(static_cast<size_t>(frame_width) * static_cast<size_t>(frame_height)),
        uv(static_cast<size_t>(frame_width) * static_cast<size_t>(frame_height / 2)) {
    std::mt19937 random(seed);
    for (size_t i = 0; i < y.size(); ++i) {
      const size_t row = i / static_cast<size_t>(width);
      y[i] = static_cast<uint8_t>(60 + i % static_cast<size_t>(width) / 9 % 90 + row / 5 % 40 +
                                  random() % 24);
    }
    for (size_t i = 0; i < uv.size(); ++i) {
      const size_t column = i % static_cast<size_t>(width);
      uv[i] = static_cast<uint8_t>(100 + column / 32 % 2 * (i % 2 != 0 ? 30 : 50) + random() % 28);
    }
  }

  std::vector<uint8_t> bytes() const {
    std::vector<uint8_t> all(y.data(), y.data() + y.size());
    all.insert(all.end(), uv.data(), uv.data() + uv.size());
    return all;
  }

  int width;
  int height;
  GuardedPlane<uint8_t> y;
  GuardedPlane<uint8_t> uv;
};

// Tests with a firmware directory of their own and a captured log. Sensor 0 loads what
// `use_tuning` wrote last.
class HandleTest : public ::testing::Test {
 protected:
  void use_tuning(const std::string& object) {
    firmware_.write("vorel_NOTHING.json", "[" + object + "]");
  }

  static vorel* open(int width, int height) { return vorel_init(width, height, 0, 0); }

  static void* run(vorel* handle, TestFrame* frame, int noise_index = 640,
                   uint32_t format = VOREL_FMT_NM21) {
    void* result = vorel_run(handle, frame->y.data(), frame->uv.data(), frame->width, frame->height,
                             static_cast<int>(format), noise_index);
    if (handle != nullptr) vorel_release_frame_buffers(handle);
    return result;
  }

  static vorel_status denoise(vorel* handle, TestFrame* frame, int noise_index = 640,
                              vorel_frame_info* info = nullptr) {
    const vorel_frame given{sizeof(vorel_frame), frame->y.data(),   frame->uv.data(),
                            frame->width,        frame->width,      frame->width,
                            frame->height,       VOREL_LAYOUT_NV21, noise_index};
    return vorel_denoise_frame(handle, &given, info);
  }

  TempDir firmware_;
  ScopedEnv firmware_variable_{"VOREL_FIRMWARE_DIR", firmware_.path().c_str()};
  ScopedEnv debug_variable_{kDebugVariable, nullptr};
  LogCapture log_;
};

// Tuning objects: everything on from noise index 100, and single paths.
inline const std::string kBothPaths = R"({"enableNoiseIndex": 100})";
inline const std::string kSpatialOnly =
    R"({"enableNoiseIndex": 100, "MFD_UV_tuning": {"enable": 0}})";
inline const std::string kWaveletOnly = R"({"enableNoiseIndex": 100, "enable": 0})";

#endif  // VOREL_TESTS_CORE_HANDLE_FIXTURE_H_
