// Tuning of a handle.
#ifndef VOREL_CORE_TUNING_PARAMETER_H_
#define VOREL_CORE_TUNING_PARAMETER_H_

#include "vorel/frame.h"

// Writes the defaults, then the file or text that the options name or else the sensor's file, into
// the handle's tuning. Called by init. Returns false when a named one is not usable; a sensor's
// file need not be there.
bool get_tuning_parameter(vorel* handle, const vorel_options& options);

// Selects the handle's current values for a frame. Called under the slot mutex.
void update_tuning_parameter(vorel* handle, int noiseIndex);

#endif  // VOREL_CORE_TUNING_PARAMETER_H_
