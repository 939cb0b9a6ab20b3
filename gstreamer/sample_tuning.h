// The sample tuning that the plugin carries.
#ifndef VOREL_GSTREAMER_SAMPLE_TUNING_H_
#define VOREL_GSTREAMER_SAMPLE_TUNING_H_

extern const char kSampleTuning[];

#endif  // VOREL_GSTREAMER_SAMPLE_TUNING_H_
