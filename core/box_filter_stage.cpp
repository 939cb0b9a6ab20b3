#include "core/stages.h"
#include "filters/box_filter.h"
#include "platform/log.h"
#include "platform/stage_timer.h"
#include "threading/run_jobs.h"

namespace {

// Of the smooth plane only the rows that y_low_downsample reads.
void* filter_strip_job(void* job) {
  box_filter_strip strip = box_strip(*static_cast<const box_filter_job*>(job));
  strip.low_step = 16;
  filter_strip(strip);
  return nullptr;
}

}  // namespace

void fill_box_filter_jobs(vorel_thread* run) {
  const int32_t strip = run->height / kBoxFilterJobs;
  for (int32_t i = 0; i < kBoxFilterJobs; ++i) {
    box_filter_job& job = run->box_jobs[i];
    job.width = run->width;
    job.aligned_height = run->aligned_height;
    job.stride = run->width;
    job.row_limit = is_planar_420(run->format) ? run->height : run->aligned_height;
    job.row_first = i * strip;
    // The last strip takes the remainder.
    job.row_end = i + 1 < kBoxFilterJobs ? (i + 1) * strip : run->height;
    job.src = run->y_source;
    job.low = run->y_low;
    job.high = run->y_high;
  }
}

void y_low_downsample(vorel_thread* run) {
  const int32_t rows = run->aligned_height / 16;
  const int32_t cols = run->width / 16;
  for (int32_t row = 0; row < rows; ++row) {
    const uint8_t* src =
        run->y_low + static_cast<size_t>(row) * 16 * static_cast<size_t>(run->width);
    uint8_t* dst = run->downsampled_y + static_cast<size_t>(row) * static_cast<size_t>(cols);
    for (int32_t col = 0; col < cols; ++col) dst[col] = src[16 * col];
  }
}

int vorel_box_filter(vorel_thread* run) {
  StageTimer timer(run->debug_mode);
  VOREL_LOGI("vorel_box_filter");
  fill_box_filter_jobs(run);
  if (ThreadPool* pool = ready_threads(run->pool)) {
    run_jobs(pool, filter_strip_job, run->box_jobs, kBoxFilterJobs, "box filter strip");
  } else {
    run->report.skip(VOREL_STAGE_BOX_FILTER, false);
  }
  timer.log("vorel_box_filter");
  timer.restart();
  y_low_downsample(run);
  timer.log("y_low_downsample");
  dump_plane(*run, "d_Y_low_", {run->downsampled_y, run->width >> 4, run->aligned_height >> 4});
  dump_plane(*run, "Y_high_", {run->y_high, run->width, run->aligned_height});
  return 0;
}
