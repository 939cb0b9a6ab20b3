#include "gstreamer/vorel_element.h"

#include <memory>
#include <optional>
#include <string>

#include "gstreamer/denoiser.h"
#include "gstreamer/settings.h"

GST_DEBUG_CATEGORY_STATIC(gst_vorel_debug);
#define GST_CAT_DEFAULT gst_vorel_debug

namespace {

// What C++ keeps for an element. `settings` and `estimate_again` belong to the object lock, the
// rest to the streaming thread.
struct State {
  Settings settings;
  bool estimate_again = false;
  Settings open_settings;
  std::unique_ptr<Denoiser> denoiser;
  vorel_status last_status = VOREL_DONE;
};

enum Property { kNoiseIndex = 1, kAmount, kTuning, kSensor, kSpatial, kWavelet };

constexpr char kCaps[] =
    "video/x-raw, format = (string) { NV12, NV21 }, width = (int) [ 2, 65520 ], "
    "height = (int) [ 2, 65520 ], framerate = (fraction) [ 0, max ]";

}  // namespace

struct _GstVorel {
  GstVideoFilter parent;
  State* state;
};

G_DEFINE_FINAL_TYPE_WITH_CODE(GstVorel, gst_vorel, GST_TYPE_VIDEO_FILTER,
                              GST_DEBUG_CATEGORY_INIT(gst_vorel_debug, "vorel", 0,
                                                      "colour noise removal"))
GST_ELEMENT_REGISTER_DEFINE(vorel, "vorel", GST_RANK_NONE, gst_vorel_get_type())

namespace {

void set_property(GObject* object, guint id, const GValue* value, GParamSpec* pspec) {
  State& state = *GST_VOREL(object)->state;
  GST_OBJECT_LOCK(object);
  Settings& settings = state.settings;
  switch (id) {
    case kNoiseIndex:
      if (!parse_noise_index(g_value_get_string(value), &settings.noise_index)) {
        g_warning(
            "vorel: noise-index '%s' is neither auto nor a whole number from 0; it stays as it was",
            g_value_get_string(value));
      }
      break;
    case kAmount:
      settings.amount = g_value_get_int(value);
      break;
    case kTuning:
      settings.tuning = std::nullopt;
      if (const char* text = g_value_get_string(value)) settings.tuning = text;
      break;
    case kSensor:
      settings.sensor = g_value_get_uint(value);
      break;
    case kSpatial:
      settings.spatial = g_value_get_boolean(value) != FALSE;
      break;
    case kWavelet:
      settings.wavelet = g_value_get_boolean(value) != FALSE;
      break;
    default:
      G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, pspec);
  }
  GST_OBJECT_UNLOCK(object);
}

void get_property(GObject* object, guint id, GValue* value, GParamSpec* pspec) {
  const State& state = *GST_VOREL(object)->state;
  GST_OBJECT_LOCK(object);
  const Settings& settings = state.settings;
  switch (id) {
    case kNoiseIndex:
      g_value_set_string(
          value, settings.noise_index ? std::to_string(*settings.noise_index).c_str() : "auto");
      break;
    case kAmount:
      g_value_set_int(value, settings.amount);
      break;
    case kTuning:
      g_value_set_string(value, settings.tuning ? settings.tuning->c_str() : nullptr);
      break;
    case kSensor:
      g_value_set_uint(value, settings.sensor);
      break;
    case kSpatial:
      g_value_set_boolean(value, settings.spatial);
      break;
    case kWavelet:
      g_value_set_boolean(value, settings.wavelet);
      break;
    default:
      G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, pspec);
  }
  GST_OBJECT_UNLOCK(object);
}

// Takes the settings of the moment; they may change between any two frames.
Settings current_settings(GstVorel* element, bool* estimate_again) {
  GST_OBJECT_LOCK(element);
  Settings settings = element->state->settings;
  *estimate_again = element->state->estimate_again;
  element->state->estimate_again = false;
  GST_OBJECT_UNLOCK(element);
  return settings;
}

// A handle for frames of this size and these settings; the one that is there when it serves.
bool ensure_denoiser(GstVorel* element, const Settings& settings, int width, int height) {
  State& state = *element->state;
  if (state.denoiser != nullptr && state.open_settings.same_handle(settings)) return true;
  std::string reason;
  state.denoiser = Denoiser::open(settings, width, height, &reason);
  state.open_settings = settings;
  if (state.denoiser != nullptr) return true;
  GST_ELEMENT_ERROR(element, LIBRARY, INIT, ("The noise removal did not start."),
                    ("%s", reason.c_str()));
  return false;
}

// Settings that no handle can have are told once, before there are frames.
gboolean start(GstBaseTransform* transform) {
  GstVorel* element = GST_VOREL(transform);
  constexpr int kSmall = 16;
  bool ignored = false;
  return ensure_denoiser(element, current_settings(element, &ignored), kSmall, kSmall);
}

gboolean set_info(GstVideoFilter* filter, GstCaps*, GstVideoInfo* info, GstCaps*, GstVideoInfo*) {
  GstVorel* element = GST_VOREL(filter);
  bool ignored = false;
  element->state->denoiser.reset();
  return ensure_denoiser(element, current_settings(element, &ignored), GST_VIDEO_INFO_WIDTH(info),
                         GST_VIDEO_INFO_HEIGHT(info));
}

vorel_frame describe(GstVideoFrame* video) {
  vorel_frame frame{};
  frame.size = sizeof(frame);
  frame.luma = static_cast<uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(video, 0));
  frame.chroma = static_cast<uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(video, 1));
  frame.luma_stride = GST_VIDEO_FRAME_PLANE_STRIDE(video, 0);
  frame.chroma_stride = GST_VIDEO_FRAME_PLANE_STRIDE(video, 1);
  frame.width = GST_VIDEO_FRAME_WIDTH(video);
  frame.height = GST_VIDEO_FRAME_HEIGHT(video);
  frame.layout = GST_VIDEO_FRAME_FORMAT(video) == GST_VIDEO_FORMAT_NV12 ? VOREL_LAYOUT_NV12
                                                                        : VOREL_LAYOUT_NV21;
  return frame;
}

// One warning when frames begin to fail, not one a frame.
void report(GstVorel* element, vorel_status status) {
  State& state = *element->state;
  const bool failed = status < 0 || status == VOREL_STAGE_SKIPPED;
  if (failed && status != state.last_status) {
    GST_ELEMENT_WARNING(element, STREAM, FAILED,
                        ("A frame passes without noise removal, or with a part of it only."),
                        ("%s", vorel_status_text(status)));
  }
  state.last_status = status;
}

GstFlowReturn transform_frame_ip(GstVideoFilter* filter, GstVideoFrame* video) {
  GstVorel* element = GST_VOREL(filter);
  GstObject* object = GST_OBJECT(filter);
  const GstClockTime time = gst_segment_to_stream_time(
      &GST_BASE_TRANSFORM(filter)->segment, GST_FORMAT_TIME, GST_BUFFER_TIMESTAMP(video->buffer));
  if (GST_CLOCK_TIME_IS_VALID(time)) gst_object_sync_values(object, time);

  bool estimate_again = false;
  const Settings settings = current_settings(element, &estimate_again);
  if (!ensure_denoiser(element, settings, GST_VIDEO_FRAME_WIDTH(video),
                       GST_VIDEO_FRAME_HEIGHT(video))) {
    return GST_FLOW_ERROR;
  }
  if (estimate_again) element->state->denoiser->forget_estimate();
  vorel_frame_info info{};
  const vorel_status status = element->state->denoiser->process(describe(video), settings, &info);
  GST_LOG_OBJECT(element, "noise index %d, %s, %" G_GINT64_FORMAT " us", info.noise_index,
                 vorel_status_text(status), static_cast<gint64>(info.total_usec));
  report(element, status);
  return GST_FLOW_OK;
}

// Another stream, or another place in it: what was estimated before says nothing about it.
gboolean sink_event(GstBaseTransform* transform, GstEvent* event) {
  if (GST_EVENT_TYPE(event) == GST_EVENT_STREAM_START ||
      GST_EVENT_TYPE(event) == GST_EVENT_FLUSH_STOP) {
    GST_OBJECT_LOCK(transform);
    GST_VOREL(transform)->state->estimate_again = true;
    GST_OBJECT_UNLOCK(transform);
  }
  return GST_BASE_TRANSFORM_CLASS(gst_vorel_parent_class)->sink_event(transform, event);
}

gboolean stop(GstBaseTransform* transform) {
  State& state = *GST_VOREL(transform)->state;
  state.denoiser.reset();
  state.last_status = VOREL_DONE;
  return TRUE;
}

void finalize(GObject* object) {
  delete GST_VOREL(object)->state;
  G_OBJECT_CLASS(gst_vorel_parent_class)->finalize(object);
}

void add_properties(GObjectClass* object_class) {
  const auto live = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS |
                                             GST_PARAM_MUTABLE_PLAYING);
  g_object_class_install_property(
      object_class, kNoiseIndex,
      g_param_spec_string("noise-index", "Noise index",
                          "How noisy the frames are, on the scale of the tuning: a whole number "
                          "from 0, or auto to estimate it from the frames",
                          "auto", live));
  g_object_class_install_property(
      object_class, kAmount,
      g_param_spec_int("amount", "Amount",
                       "How much of the change is kept, in percent; 0: as noise-index=auto finds, "
                       "all with a number",
                       0, 100, 0, live));
  g_object_class_install_property(
      object_class, kTuning,
      g_param_spec_string("tuning", "Tuning",
                          "Tuning file (JSON), or none for the library's built-in values. Not set: "
                          "the sensor's file in VOREL_FIRMWARE_DIR when that is set, else the "
                          "sample tuning",
                          nullptr, live));
  g_object_class_install_property(
      object_class, kSensor,
      g_param_spec_uint("sensor", "Sensor", "Id of the image sensor, which chooses its tuning file",
                        0, G_MAXINT, 0, live));
  g_object_class_install_property(
      object_class, kSpatial,
      g_param_spec_boolean("spatial", "Spatial path",
                           "Run the spatial path when the tuning has it on", TRUE, live));
  g_object_class_install_property(
      object_class, kWavelet,
      g_param_spec_boolean("wavelet", "Wavelet path",
                           "Run the wavelet path when the tuning has it on", TRUE, live));
}

void add_pads(GstElementClass* element_class) {
  GstCaps* caps = gst_caps_from_string(kCaps);
  gst_element_class_add_pad_template(
      element_class, gst_pad_template_new("sink", GST_PAD_SINK, GST_PAD_ALWAYS, caps));
  gst_element_class_add_pad_template(
      element_class, gst_pad_template_new("src", GST_PAD_SRC, GST_PAD_ALWAYS, caps));
  gst_caps_unref(caps);
}

}  // namespace

static void gst_vorel_class_init(GstVorelClass* klass) {
  GObjectClass* object_class = G_OBJECT_CLASS(klass);
  object_class->set_property = set_property;
  object_class->get_property = get_property;
  object_class->finalize = finalize;
  add_properties(object_class);

  GstElementClass* element_class = GST_ELEMENT_CLASS(klass);
  gst_element_class_set_static_metadata(
      element_class, "Colour noise removal", "Filter/Effect/Video",
      "Removes colour noise from camera frames, in place", "The libvorel developers");
  add_pads(element_class);

  GstBaseTransformClass* transform_class = GST_BASE_TRANSFORM_CLASS(klass);
  transform_class->sink_event = sink_event;
  transform_class->start = start;
  transform_class->stop = stop;
  GstVideoFilterClass* filter_class = GST_VIDEO_FILTER_CLASS(klass);
  filter_class->set_info = set_info;
  filter_class->transform_frame_ip = transform_frame_ip;
}

static void gst_vorel_init(GstVorel* element) { element->state = new State(); }
