#include "convert/deinterleave.h"
#include "core/stages.h"
#include "platform/log.h"
#include "platform/stage_timer.h"

int vorel_deinterleave(vorel_thread* run) {
  const StageTimer timer(run->debug_mode);
  VOREL_LOGI("vorel_deinterleave");
  deinterleave_job job{};
  job.width = run->width;
  job.height = run->height;
  job.u = run->downsampled_u;
  job.v = run->downsampled_v;
  int32_t luma_rows = run->height;
  if (is_planar_420(run->format)) {
    run->y_source = run->in_address_1;
    job.uv_in = run->in_address_2;
    deinterleave_planar(job);
  } else if (is_packed_422(run->format)) {
    job.y = run->y_source;
    job.packed_in = run->in_address_1;
    deinterleave_packed(job);
    luma_rows = run->aligned_height;
  } else {
    VOREL_LOGE("vorel_run, Not supported format");
    return -1;
  }
  timer.log("vorel_deinterleave");
  dump_plane(*run, "d_U_", {run->downsampled_u, run->width >> 4, run->aligned_height >> 4});
  dump_plane(*run, "d_V_", {run->downsampled_v, run->width >> 4, run->aligned_height >> 4});
  dump_plane(*run, "Y_", {run->y_source, run->width, luma_rows});
  return 0;
}
