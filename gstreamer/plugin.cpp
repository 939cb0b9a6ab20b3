#include <android/log.h>
#include <gst/gst.h>

#include "gstreamer/vorel_element.h"

GST_DEBUG_CATEGORY_STATIC(vorel_library_debug);

namespace {

GstDebugLevel level_of(int32_t priority) {
  if (priority >= ANDROID_LOG_ERROR) return GST_LEVEL_ERROR;
  if (priority >= ANDROID_LOG_WARN) return GST_LEVEL_WARNING;
  return priority >= ANDROID_LOG_INFO ? GST_LEVEL_LOG : GST_LEVEL_TRACE;
}

// The library's lines, some twenty a frame, belong to whoever asks with GST_DEBUG=vorel-library:6.
void receive(const __android_logger_data* data, const char* message) {
  GST_CAT_LEVEL_LOG(vorel_library_debug, level_of(data->priority), nullptr, "%s", message);
}

gboolean init_plugin(GstPlugin* plugin) {
  GST_DEBUG_CATEGORY_INIT(vorel_library_debug, "vorel-library", 0, "log lines of libvorel");
  __android_log_set_logger(receive);
  return GST_ELEMENT_REGISTER(vorel, plugin);
}

}  // namespace

#define PACKAGE "libvorel"
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, vorel, "Colour noise removal with libvorel",
                  init_plugin, VOREL_VERSION, "Apache 2.0", "libvorel", "built from source")
