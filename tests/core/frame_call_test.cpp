#include "tests/core/handle_fixture.h"
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

}  // namespace
