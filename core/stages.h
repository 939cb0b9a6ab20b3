// The stages of the spatial path, and the wavelet stage, in the order in which the driver thread
// calls them. Each returns 0, or -1 for a format that it does not know. A stage hands its jobs to
// the frame's workers and waits for them; without running workers it leaves the planes alone, and
// the frame's report says so.
#ifndef VOREL_CORE_STAGES_H_
#define VOREL_CORE_STAGES_H_

#include <cstdint>

#include "core/formats.h"
#include "core/handle.h"
#include "vorel/export.h"

// Chroma at 1/16 x 1/16.
int vorel_deinterleave(vorel_thread* run);

// Luma split into y_low and y_high, and luma at 1/16 x 1/16.
int vorel_box_filter(vorel_thread* run);

// The three 1/16 planes bilateral-filtered and brought back to size.
int vorel_yuv(vorel_thread* run);

// Filtered planes restored into the frame.
int vorel_interleave(vorel_thread* run);

// Chroma through the wavelet decomposition, into the frame. Needs running workers and the
// half-precision planes; else it is skipped, logged. Exported. Returns 0.
VOREL_EXPORT int MFD_UV(vorel_thread* run);

// Point sampling of the top-left luma pixel of every 16 x 16 block of y_low.
void y_low_downsample(vorel_thread* run);

// Cut the frame into strips; pure functions of the record's sizes and pointers.
void fill_box_filter_jobs(vorel_thread* run);
void fill_interleave_jobs(vorel_thread* run);

// Pool jobs of vorel_yuv; the argument is the vorel_thread. Return null.
void* vorel_y_job(void* run);
void* vorel_u_job(void* run);
void* vorel_v_job(void* run);

// Pool job of vorel_interleave; the argument is an interleave_job. Returns null.
void* vorel_interleave_thread_func(void* job);

// Whether the restore step writes chroma to the half-precision planes, from which the wavelet stage
// goes on. With either threshold 0 it writes nothing, and the wavelet stage reads the frame.
[[nodiscard]] inline bool restores_to_half_planes(const cnr_tuning* tuning) {
  return tuning->mfd_uv_tuning.enable != 0 && tuning->interleaving_tuning.d_UV_thresh != 0 &&
         tuning->interleaving_tuning.d_Y_upper_thresh != 0;
}

#endif  // VOREL_CORE_STAGES_H_
