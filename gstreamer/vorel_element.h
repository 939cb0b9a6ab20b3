// The GStreamer element `vorel`: removes colour noise from NV21 and NV12 frames, in place.
#ifndef VOREL_GSTREAMER_VOREL_ELEMENT_H_
#define VOREL_GSTREAMER_VOREL_ELEMENT_H_

#include <gst/video/gstvideofilter.h>

G_DECLARE_FINAL_TYPE(GstVorel, gst_vorel, GST, VOREL, GstVideoFilter)

// Registers the element with its plugin.
GST_ELEMENT_REGISTER_DECLARE(vorel)

#endif  // VOREL_GSTREAMER_VOREL_ELEMENT_H_
