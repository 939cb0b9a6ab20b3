#include <gst/check/gstharness.h>
#include <gst/video/video.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "gstreamer/sample_tuning.h"
#include "gstreamer/vorel_element.h"
#include "tools/measure/partial_removal.h"
#include "vorel/frame.h"

// The element's calls of the library go through here, so that a test can let a frame fail.
namespace {
vorel_status g_next_status = VOREL_DONE;
}
extern "C" vorel_status __real_vorel_denoise_frame(vorel*, const vorel_frame*, vorel_frame_info*);
extern "C" vorel_status __wrap_vorel_denoise_frame(vorel* handle, const vorel_frame* frame,
                                                   vorel_frame_info* info) {
  if (g_next_status != VOREL_DONE) return g_next_status;
  return __real_vorel_denoise_frame(handle, frame, info);
}

namespace {

constexpr int kNoiseIndex = 3200;

struct Shape {
  GstVideoFormat format;
  int width;
  int height;
  int padding;  // bytes between rows, more than a row has
};

// A frame with rows of its own stride; the bytes between rows are part of the comparison.
struct TestFrame {
  Shape shape;
  int luma_stride;
  int chroma_stride;
  std::vector<uint8_t> bytes;

  explicit TestFrame(const Shape& of) : shape(of) {
    luma_stride = of.width + of.padding;
    chroma_stride = 2 * ((of.width + 1) / 2) + of.padding;
    bytes.resize(chroma_offset() + static_cast<size_t>(chroma_stride) * ((of.height + 1) / 2));
    std::mt19937 random(7);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(100 + random() % 56);
  }
  size_t chroma_offset() const { return static_cast<size_t>(luma_stride) * shape.height; }
};

class Element {
 public:
  explicit Element(const std::string& properties)
      : harness_(gst_harness_new_parse(("vorel " + properties).c_str())) {
    bus_ = gst_bus_new();
    gst_element_set_bus(harness_->element, bus_);
  }
  ~Element() {
    gst_element_set_bus(harness_->element, nullptr);
    gst_harness_teardown(harness_);
    gst_object_unref(bus_);
  }

  void set_caps(const Shape& shape) {
    GstVideoInfo info;
    gst_video_info_set_format(&info, shape.format, static_cast<guint>(shape.width),
                              static_cast<guint>(shape.height));
    gst_harness_set_caps(harness_, gst_video_info_to_caps(&info), gst_video_info_to_caps(&info));
  }

  // Gives back what came out; nothing when nothing did.
  std::vector<uint8_t> push(const TestFrame& frame) {
    GstBuffer* in = gst_buffer_new_memdup(frame.bytes.data(), frame.bytes.size());
    gsize offsets[GST_VIDEO_MAX_PLANES] = {0, frame.chroma_offset()};
    gint strides[GST_VIDEO_MAX_PLANES] = {frame.luma_stride, frame.chroma_stride};
    gst_buffer_add_video_meta_full(in, GST_VIDEO_FRAME_FLAG_NONE, frame.shape.format,
                                   static_cast<guint>(frame.shape.width),
                                   static_cast<guint>(frame.shape.height), 2, offsets, strides);
    GST_BUFFER_PTS(in) = 0;
    if (gst_harness_push(harness_, in) != GST_FLOW_OK) return {};
    GstBuffer* out = gst_harness_pull(harness_);
    std::vector<uint8_t> bytes(gst_buffer_get_size(out));
    gst_buffer_extract(out, 0, bytes.data(), bytes.size());
    gst_buffer_unref(out);
    return bytes;
  }

  int messages(GstMessageType type) {
    int count = 0;
    while (GstMessage* message = gst_bus_pop_filtered(bus_, type)) {
      ++count;
      gst_message_unref(message);
    }
    return count;
  }

  GstHarness* harness() const { return harness_; }

 private:
  GstHarness* harness_;
  GstBus* bus_;
};

// What the library makes of the frame by itself.
std::vector<uint8_t> denoised(TestFrame frame, int noise_index) {
  vorel_options options = vorel_default_options(frame.shape.width, frame.shape.height);
  options.tuning_text = kSampleTuning;
  options.tuning_text_bytes = std::strlen(kSampleTuning);
  vorel* handle = vorel_open(&options, nullptr);
  vorel_frame record{};
  record.size = sizeof(record);
  record.luma = frame.bytes.data();
  record.chroma = frame.bytes.data() + frame.chroma_offset();
  record.luma_stride = frame.luma_stride;
  record.chroma_stride = frame.chroma_stride;
  record.width = frame.shape.width;
  record.height = frame.shape.height;
  record.layout =
      frame.shape.format == GST_VIDEO_FORMAT_NV12 ? VOREL_LAYOUT_NV12 : VOREL_LAYOUT_NV21;
  record.noise_index = noise_index;
  EXPECT_EQ(__real_vorel_denoise_frame(handle, &record, nullptr), VOREL_DONE);
  vorel_deinit(handle);
  return frame.bytes;
}

constexpr Shape kShapes[] = {{GST_VIDEO_FORMAT_NV21, 64, 48, 0},
                             {GST_VIDEO_FORMAT_NV12, 64, 48, 0},
                             {GST_VIDEO_FORMAT_NV12, 70, 46, 26},
                             {GST_VIDEO_FORMAT_NV21, 51, 33, 13},
                             {GST_VIDEO_FORMAT_NV21, 2, 2, 2}};

TEST(GStreamerElement, GivesTheLibrarysBytesForEverySizeAndStride) {
  Element element("noise-index=" + std::to_string(kNoiseIndex));
  for (const Shape& shape : kShapes) {  // one element: each size is a change in mid-stream
    SCOPED_TRACE(shape.width);
    const TestFrame frame(shape);
    element.set_caps(shape);
    const std::vector<uint8_t> expected = denoised(frame, kNoiseIndex);
    EXPECT_EQ(element.push(frame), expected);
    EXPECT_EQ(element.push(frame), expected);
    if (shape.width > 2) EXPECT_NE(expected, frame.bytes);
  }
}

TEST(GStreamerElement, PassesAFailedFrameUnchangedAndWarnsOnce) {
  Element element("noise-index=3200");
  const TestFrame frame(kShapes[0]);
  element.set_caps(frame.shape);
  g_next_status = VOREL_NO_MEMORY;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(element.push(frame), frame.bytes);
  g_next_status = VOREL_DONE;
  EXPECT_EQ(element.messages(GST_MESSAGE_WARNING), 1);
  EXPECT_EQ(element.push(frame), denoised(frame, kNoiseIndex));
  EXPECT_EQ(element.messages(GST_MESSAGE_ANY), 0);
}

TEST(GStreamerElement, TakesPropertiesBetweenFrames) {
  Element element("noise-index=3200");
  const TestFrame frame(kShapes[1]);
  element.set_caps(frame.shape);
  EXPECT_EQ(element.push(frame), denoised(frame, 3200));
  gst_harness_set(element.harness(), "vorel", "noise-index", "800", nullptr);
  EXPECT_EQ(element.push(frame), denoised(frame, 800));
  gst_harness_set(element.harness(), "vorel", "spatial", FALSE, "wavelet", FALSE, nullptr);
  EXPECT_EQ(element.push(frame), frame.bytes);
  gst_harness_set(element.harness(), "vorel", "spatial", TRUE, "wavelet", TRUE, nullptr);
  EXPECT_EQ(element.push(frame), denoised(frame, 800));
  gst_harness_set(element.harness(), "vorel", "amount", 50, nullptr);
  std::vector<uint8_t> half = denoised(frame, 800);
  tool::keep_part_of_change(frame.bytes.data(), half.size(), 50,
                            {half.data(), half.size(), half.size(), 1});
  EXPECT_EQ(element.push(frame), half);
  gst_harness_set(element.harness(), "vorel", "noise-index", "0", nullptr);  // below the gate
  EXPECT_EQ(element.push(frame), frame.bytes);
  EXPECT_EQ(element.messages(GST_MESSAGE_ANY), 0);
}

TEST(GStreamerElement, RefusesATuningThatIsNoneBeforeItPlays) {
  GstElement* element = gst_element_factory_make("vorel", nullptr);
  GstBus* bus = gst_bus_new();
  gst_element_set_bus(element, bus);
  g_object_set(element, "tuning", "/nowhere/tuning.json", nullptr);
  EXPECT_EQ(gst_element_set_state(element, GST_STATE_PAUSED), GST_STATE_CHANGE_FAILURE);
  GstMessage* message = gst_bus_pop_filtered(bus, GST_MESSAGE_ERROR);
  ASSERT_NE(message, nullptr);
  gchar* details = nullptr;
  gst_message_parse_error(message, nullptr, &details);
  EXPECT_NE(std::string(details).find("/nowhere/tuning.json"), std::string::npos) << details;
  g_free(details);
  gst_message_unref(message);
  EXPECT_EQ(gst_bus_pop_filtered(bus, GST_MESSAGE_ERROR), nullptr);
  gst_element_set_state(element, GST_STATE_NULL);
  gst_object_unref(element);
  gst_object_unref(bus);
}

TEST(GStreamerElement, GoesOnAfterAFlush) {
  Element element("noise-index=3200");
  const TestFrame frame(kShapes[2]);
  element.set_caps(frame.shape);
  const std::vector<uint8_t> first = element.push(frame);
  EXPECT_TRUE(gst_harness_push_event(element.harness(), gst_event_new_flush_start()));
  EXPECT_TRUE(gst_harness_push_event(element.harness(), gst_event_new_flush_stop(TRUE)));
  GstSegment segment;
  gst_segment_init(&segment, GST_FORMAT_TIME);
  EXPECT_TRUE(gst_harness_push_event(element.harness(), gst_event_new_segment(&segment)));
  EXPECT_EQ(element.push(frame), first);
}

TEST(GStreamerElement, RunsBesideOthers) {
  std::vector<std::thread> threads;
  for (const Shape& shape : {kShapes[0], kShapes[2], kShapes[3]}) {
    threads.emplace_back([shape] {
      const TestFrame frame(shape);
      const std::vector<uint8_t> expected = denoised(frame, kNoiseIndex);
      Element element("noise-index=3200");
      element.set_caps(shape);
      for (int i = 0; i < 5; ++i) EXPECT_EQ(element.push(frame), expected);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(GStreamerElement, EstimatesTheNoiseIndexItself) {
  Element element("");
  const TestFrame frame({GST_VIDEO_FORMAT_NV12, 320, 240, 0});
  element.set_caps(frame.shape);
  EXPECT_NE(element.push(frame), frame.bytes);  // strong noise
  TestFrame flat = frame;
  std::fill(flat.bytes.begin(), flat.bytes.end(), uint8_t{120});
  Element other("");
  other.set_caps(flat.shape);
  EXPECT_EQ(other.push(flat), flat.bytes);
}

}  // namespace

int main(int argc, char** argv) {
  gst_init(&argc, &argv);
  testing::InitGoogleTest(&argc, argv);
  GST_ELEMENT_REGISTER(vorel, nullptr);
  return RUN_ALL_TESTS();
}
