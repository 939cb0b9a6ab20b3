#include "convert/restore_strip.h"
#include "core/frame_size.h"
#include "core/stages.h"
#include "platform/log.h"
#include "platform/stage_timer.h"
#include "threading/run_jobs.h"
#include "wavelet/stage_layout.h"

namespace {

// Kept: strips are multiples of 16 rows, so frames below 1024 rows are one strip, the last.
int32_t strip_rows(const vorel_thread* run) {
  return align_down_16(run->aligned_height / kInterleaveJobs);
}

void place_planar_strip(const vorel_thread* run, restore_strip* job, size_t first_row) {
  const size_t luma = first_row * static_cast<size_t>(run->width);
  const size_t half_width = static_cast<size_t>(run->width) / 2;
  const size_t chroma_row = first_row / 2;
  job->y_in = run->in_address_1 + luma;
  job->y_out = run->out_address_1 + luma;
  job->upsampled_u = run->upsampled_u + chroma_row * half_width;
  job->upsampled_v = run->upsampled_v + chroma_row * half_width;
  job->uv_in = run->in_address_2 + first_row * half_width;
  job->uv_out = run->out_address_2 + first_row * half_width;
  job->mfd_width = run->mfd_width;
  job->mfd_u = nullptr;
  job->mfd_v = nullptr;
  if (run->mfd_u != nullptr && run->mfd_v != nullptr) {
    const size_t inner =
        (kPlaneBorder + chroma_row) * static_cast<size_t>(run->mfd_width) + kPlaneBorder;
    job->mfd_u = run->mfd_u + inner;
    job->mfd_v = run->mfd_v + inner;
  }
  // Strips begin at a row of blocks.
  job->blocks = {};
  if (!run->whole_planes) {
    job->blocks = {run->filtered_y, run->filtered_u,          run->filtered_v,
                   run->width >> 4, run->aligned_height >> 4, static_cast<int32_t>(first_row >> 4)};
  }
  // Chroma goes to the half-precision planes only; the wavelet stage writes the frame's.
  if (restores_to_half_planes(run->tuning)) job->uv_out = nullptr;
}

void place_packed_strip(const vorel_thread* run, restore_strip* job, size_t first_row) {
  const size_t width = static_cast<size_t>(run->width);
  job->upsampled_u = run->upsampled_u + first_row * (width / 2);
  job->upsampled_v = run->upsampled_v + first_row * (width / 2);
  job->packed = run->packed_out + first_row * width * 2;
}

}  // namespace

void fill_interleave_jobs(vorel_thread* run) {
  const int32_t strip = strip_rows(run);
  for (int32_t i = 0; i < kInterleaveJobs; ++i) {
    restore_strip& job = run->interleave_jobs[i];
    const size_t first_row = static_cast<size_t>(i) * static_cast<size_t>(strip);
    job.width = run->width;
    job.rows = i + 1 < kInterleaveJobs ? strip : run->height - i * strip;
    job.y_low = run->y_low + first_row * static_cast<size_t>(run->width);
    job.y_high = run->y_high + first_row * static_cast<size_t>(run->width);
    job.format = run->format;
    if (is_planar_420(run->format)) {
      place_planar_strip(run, &job, first_row);
    } else {
      place_packed_strip(run, &job, first_row);
    }
  }
}

void* vorel_interleave_thread_func(void* argument) {
  const auto& job = *static_cast<const restore_strip*>(argument);
  if (is_packed_422(job.format)) {
    restore_packed_strip(job);
  } else if (is_planar_420(job.format)) {
    restore_planar_strip(job);
  } else {
    VOREL_LOGE("vorel_interleave_thread_func, Not supported format");
  }
  return nullptr;
}

int vorel_interleave(vorel_thread* run) {
  const StageTimer timer(run->debug_mode);
  VOREL_LOGI("vorel_interleave");
  if (!is_planar_420(run->format) && !is_packed_422(run->format)) {
    VOREL_LOGE("vorel_interleave, Not supported format");
    return -1;
  }
  const bool needs_half_planes = is_planar_420(run->format) && restores_to_half_planes(run->tuning);
  if (needs_half_planes && (run->mfd_u == nullptr || run->mfd_v == nullptr)) {
    VOREL_LOGE("vorel_interleave, skipped: no half-precision planes");
    run->report.skip(VOREL_STAGE_INTERLEAVE, true);
    return 0;
  }
  fill_interleave_jobs(run);
  if (ThreadPool* pool = ready_threads(run->pool)) {
    run_jobs(pool, vorel_interleave_thread_func, run->interleave_jobs, kInterleaveJobs,
             "restore strip");
  } else {
    run->report.skip(VOREL_STAGE_INTERLEAVE, false);
  }
  timer.log("vorel_interleave");
  return 0;
}
