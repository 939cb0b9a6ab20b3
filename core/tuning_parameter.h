// Tuning of a handle.
#ifndef VOREL_CORE_TUNING_PARAMETER_H_
#define VOREL_CORE_TUNING_PARAMETER_H_

#include "vorel/vorel.h"

// Writes the defaults, then the sensor's tuning file, into the handle's tuning. Called by init.
void get_tuning_parameter(vorel* handle, int sensorId);

// Selects the handle's current values for a frame. Called under the slot mutex.
void update_tuning_parameter(vorel* handle, int noiseIndex);

#endif  // VOREL_CORE_TUNING_PARAMETER_H_
