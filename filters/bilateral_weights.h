// The table of range weights that the tuning record holds.
#ifndef VOREL_FILTERS_BILATERAL_WEIGHTS_H_
#define VOREL_FILTERS_BILATERAL_WEIGHTS_H_

#include "vorel/tuning.h"

// Fills `val_weight` from the polynomial; see update_bilateral_filter_tuning().
void build_stored_weights(bilateralfiltering_tuning* tuning);

#endif  // VOREL_FILTERS_BILATERAL_WEIGHTS_H_
