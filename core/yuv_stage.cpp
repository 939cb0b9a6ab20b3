#include "convert/upsample.h"
#include "core/stages.h"
#include "filters/bilateral_area.h"
#include "platform/log.h"
#include "platform/stage_timer.h"
#include "threading/run_jobs.h"

namespace {

int32_t block_cols(const vorel_thread* run) { return run->width >> 4; }
int32_t block_rows(const vorel_thread* run) { return run->aligned_height >> 4; }

// One chroma plane: names and planes of the U or the V job.
struct chroma_plane {
  const char* timing_name;
  const char* dump_prefix;
  const uint8_t* downsampled;
  uint8_t* filtered;
  uint8_t* upsampled;
};

// One of the stage's three jobs.
struct plane_job {
  void* (*function)(void*);
  vorel_thread* run;
};

void* run_plane_job(void* argument) {
  const auto* job = static_cast<const plane_job*>(argument);
  return job->function(job->run);
}

void filter_chroma(const vorel_thread* run, const chroma_plane& plane) {
  StageTimer timer(run->debug_mode);
  const struct bilateralfiltering_tuning* tuning = &run->tuning->bilateralfiltering_tuning;
  filter_plane({plane.downsampled, plane.filtered, block_rows(run), block_cols(run),
                tuning->span_UV_row, tuning->span_UV_col, tuning});
  timer.log(plane.timing_name);
  timer.restart();
  dump_plane(*run, plane.dump_prefix, {plane.filtered, block_cols(run), block_rows(run)});
  const upsample_job job{block_cols(run), block_rows(run), plane.filtered, plane.upsampled};
  if (is_packed_422(run->format)) {
    upsample_plane(job, Upsampling::k8x16);
  } else if (!is_planar_420(run->format)) {
    VOREL_LOGE("%s, Not supported format", plane.timing_name);
    return;
  } else if (run->whole_planes) {
    upsample_plane(job, Upsampling::k8x8);
  }
  timer.log("uv_upsample");
}

}  // namespace

void* vorel_y_job(void* argument) {
  const auto* run = static_cast<const vorel_thread*>(argument);
  StageTimer timer(run->debug_mode);
  const struct bilateralfiltering_tuning* tuning = &run->tuning->bilateralfiltering_tuning;
  filter_plane({run->downsampled_y, run->filtered_y, block_rows(run), block_cols(run),
                tuning->span_Y_row, tuning->span_Y_col, tuning});
  timer.log("vorel_y");
  timer.restart();
  dump_plane(*run, "f_Y_low_", {run->filtered_y, block_cols(run), block_rows(run)});
  const upsample_job job{block_cols(run), block_rows(run), run->filtered_y, run->y_low};
  if (run->whole_planes || is_packed_422(run->format)) upsample_plane(job, Upsampling::k16x16);
  timer.log("upsample_y");
  return nullptr;
}

void* vorel_u_job(void* argument) {
  const auto* run = static_cast<const vorel_thread*>(argument);
  filter_chroma(run, {"vorel_u", "f_U_", run->downsampled_u, run->filtered_u, run->upsampled_u});
  return nullptr;
}

void* vorel_v_job(void* argument) {
  const auto* run = static_cast<const vorel_thread*>(argument);
  filter_chroma(run, {"vorel_v", "f_V_", run->downsampled_v, run->filtered_v, run->upsampled_v});
  return nullptr;
}

int vorel_yuv(vorel_thread* run) {
  VOREL_LOGI("vorel_yuv");
  if (ThreadPool* pool = ready_threads(run->pool)) {
    plane_job jobs[] = {{vorel_y_job, run}, {vorel_u_job, run}, {vorel_v_job, run}};
    run_jobs(pool, run_plane_job, jobs, 3, "bilateral plane");
  } else {
    run->report.skip(VOREL_STAGE_YUV, false);
  }
  const int32_t chroma_rows =
      is_packed_422(run->format) ? run->aligned_height : run->aligned_height / 2;
  dump_plane(*run, "u_Y_low_", {run->y_low, run->width, run->aligned_height});
  dump_plane(*run, "u_U_", {run->upsampled_u, run->width / 2, chroma_rows});
  dump_plane(*run, "u_V_", {run->upsampled_v, run->width / 2, chroma_rows});
  return 0;
}
