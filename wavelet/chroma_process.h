// The wavelet path of one frame's chroma: set up, run once, released.
#ifndef VOREL_WAVELET_CHROMA_PROCESS_H_
#define VOREL_WAVELET_CHROMA_PROCESS_H_

#include <cstdint>

#include "platform/plane_dump.h"
#include "vorel/thread_pool.h"
#include "vorel/wavelet/buffer.h"
#include "wavelet/kernels/saturation_rows.h"
#include "wavelet/plane_storage.h"
#include "wavelet/shrinkage.h"
#include "wavelet/sym4_planes.h"

inline constexpr int kThresholds = 16;
inline constexpr int kLentPlanes = 4;

// Columns and rows.
struct wavelet_size {
  uint32_t width;
  uint32_t height;
};

struct chroma_settings {
  int32_t width;  // of the frame
  int32_t height;
  const _Float16* thresholds;  // five
  _Float16 radial_mode;
  saturation_curve curve;
  stage_record stage;
  ThreadPool* pool;      // null: the calling thread does all
  int32_t workers;       // that run at once
  const buffer* borrow;  // kLentPlanes planes that may be used as storage, or null
};

struct chroma_process {
  stage_record stage;
  ThreadPool* pool;
  int32_t workers;
  wavelet_size inner;
  wavelet_size padded;
  wavelet_size level1;  // subbands
  wavelet_size level2;
  _Float16 thresholds[2][kThresholds];
  radial_model model;
  saturation_curve curve;
  buffer planes[2];  // bordered
  buffer subbands[2][kSubbands];
  buffer staging;
  sym4_level levels[2];     // of the transform, one per plane
  buffer level_scratch[2];  // what is lent to them
  plane_scratch lent[2];    // whole working planes, free for the bands
};

// Sizes, threshold tables and planes. Returns false (logged) when memory is short, as it was when
// `process` is null; then only `release_chroma` may follow.
[[nodiscard]] bool set_up_chroma(chroma_process* process, const chroma_settings& settings);

// `in`: one VOREL_PLANE_PAIRS plane, or two bordered half-precision planes, whose borders are
// filled. `out`: VOREL_PLANE_PAIRS; may be `in`. Returns 0, or -1 (logged) when memory is short and
// `out` stays as it was.
int run_chroma(chroma_process* process, const buffer* in, const buffer* out);

// Denoises one bordered plane, 1 or 2, in place and as a whole, with dumps between the steps. The
// two planes may run at once. Returns false (logged) when memory is short; `io` is then undefined.
[[nodiscard]] bool denoise_chroma_plane(chroma_process* process, unsigned plane, const buffer& io);

void release_chroma(chroma_process* process);

#endif  // VOREL_WAVELET_CHROMA_PROCESS_H_
