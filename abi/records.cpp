// Records that callers fill and pass as untyped job arguments. No signature names them, so that a
// dump of libvorel.so does not hold them; this function's does. Built for that dump only.
#include "vorel/convert.h"
#include "vorel/export.h"
#include "vorel/filters.h"
#include "vorel/tuning.h"
#include "vorel/wavelet.h"

VOREL_EXPORT void records_of_callers(const cnr_tuning*, const box_filter_job*,
                                     const deinterleave_job*, const upsample_job*,
                                     const interleave_job*, const copy_and_pad_job*,
                                     const denoise_spatial_job*, const shrinkage_job*,
                                     const saturation_job*, const sym4_band_job*) {}
