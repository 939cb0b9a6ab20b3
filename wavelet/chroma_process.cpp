#include "wavelet/chroma_process.h"

#include <algorithm>
#include <cstdio>

#include "platform/debug_levels.h"
#include "platform/log.h"
#include "platform/stage_timer.h"
#include "threading/run_jobs.h"
#include "wavelet/border.h"
#include "wavelet/chroma_band.h"
#include "wavelet/chroma_rows.h"
#include "wavelet/pass_times.h"
#include "wavelet/saturation.h"
#include "wavelet/stage_layout.h"

namespace {

constexpr const char* kLetters[] = {"U_", "V_"};

plane_view view_of(const buffer& plane) {
  return {plane.data, static_cast<int32_t>(plane.width), static_cast<int32_t>(plane.height),
          sizeof(_Float16)};
}

// Writes a half-precision plane, whole and without `margin` samples on each side.
void dump_whole_and_cropped(const stage_record& stage, const char* prefix, const buffer& plane,
                            int32_t margin) {
  const plane_view view = view_of(plane);
  dump_plane(stage, prefix, view);
  dump_plane(stage, prefix, view,
             {margin, margin, view.width - 2 * margin, view.height - 2 * margin});
}

void dump_padded(const chroma_process& process, const char* name, const buffer* planes,
                 bool cropped) {
  for (int i = 0; i < 2; ++i) {
    char prefix[16];
    std::snprintf(prefix, sizeof(prefix), "%s%s", name, kLetters[i]);
    if (cropped) {
      dump_plane(process.stage, prefix, view_of(planes[i]),
                 {kPlaneBorder, kPlaneBorder, static_cast<int32_t>(process.inner.width),
                  static_cast<int32_t>(process.inner.height)});
    } else {
      dump_plane(process.stage, prefix, view_of(planes[i]));
    }
  }
}

bool dumps_planes(const chroma_process& process) {
  return process.stage.debug_mode >= kDebugDumpPlanes;
}

// Planes with a border come with their samples inside; pairs are copied. The rows above and below
// are for dumps: bands do not read them.
void fill_padded(const chroma_process& process, const buffer* in, buffer* planes) {
  const StageTimer timer(process.stage.debug_mode);
  const uint32_t first = dumps_planes(process) ? 0 : kPlaneBorder;
  const uint32_t end =
      dumps_planes(process) ? process.padded.height : kPlaneBorder + process.inner.height;
  if (in->kind != VOREL_PLANE_PAIRS) {
    for (int i = 0; i < 2; ++i) {
      planes[i].data = in[i].data;
      pad_plane(planes[i], first, end);
    }
    return timer.log("BorderHandler::runPad");
  }
  pad_pairs(*in, planes, first, end, process.pool);
  timer.log("BorderHandler::runCopyAndPad");
}

saturation saturation_of(const chroma_process& process, const buffer* planes, const buffer& out) {
  return {&planes[0], &planes[1], &out, process.curve};
}

// Whole planes, one step after the other: what dumps need.

struct plane_job {
  chroma_process* process;
  unsigned plane;
  const buffer* io;
  bool done;
};

void* run_plane(void* argument) {
  auto* job = static_cast<plane_job*>(argument);
  job->done = denoise_chroma_plane(job->process, job->plane, *job->io);
  return nullptr;
}

bool run_whole_planes(chroma_process* process, const buffer* planes, const buffer& out) {
  plane_job jobs[2] = {{process, 1, &planes[0], false}, {process, 2, &planes[1], false}};
  run_jobs(process->pool, run_plane, jobs, 2, "denoise plane");
  if (!jobs[0].done || !jobs[1].done) return false;
  dump_padded(*process, "dS_", planes, false);
  dump_padded(*process, "dS_", planes, true);
  const saturation step = saturation_of(*process, planes, out);
  const StageTimer timer(process->stage.debug_mode);
  log_saturation(step);
  saturate_plane(step, process->pool);
  timer.log("Denoise::applySaturation");
  return true;
}

// Bands of rows, each through all steps at once.

struct band_job {
  const chroma_frame* frame;
  span rows;
  buffer memory;
  PassTimes times[2];
};

void* run_band(void* argument) {
  auto* job = static_cast<band_job*>(argument);
  denoise_chroma_band(*job->frame, job->rows, job->memory.data, job->times);
  return nullptr;
}

bool take_band_memory(chroma_process* process, const chroma_frame& frame, band_job* jobs,
                      int count) {
  const auto samples = static_cast<uint32_t>(chroma_band_samples(frame));
  plane_scratch lent[2] = {process->lent[0], process->lent[1]};
  bool taken = true;
  for (int i = 0; i < count; ++i) {
    plane_scratch* from = holds_plane(lent[0], 1, samples) ? &lent[0] : &lent[1];
    taken = take_plane(&jobs[i].memory, from, 1, samples) && taken;
  }
  return taken;
}

// The lines that whole planes would have, one plane after the other.
void log_bands(const chroma_frame& frame, const saturation& step, const band_job* jobs, int count) {
  PassTimes sums[2] = {jobs[0].times[0], jobs[0].times[1]};
  for (int i = 1; i < count; ++i) {
    for (int plane = 0; plane < 2; ++plane) sums[plane].add(jobs[i].times[plane]);
  }
  const subband_sizes sizes = subband_sizes_of(frame.planes[0]);
  for (const PassTimes& plane : sums) {
    log_plane_times(plane, 2 * sizes.quarter_columns - sizes.half_columns);
  }
  log_saturation(step);
  log_saturation_times(sums[0]);
}

bool run_bands(chroma_process* process, const buffer* planes, const buffer& out) {
  for (_Float16(&table)[kThresholds] : process->thresholds) {
    if (table[0] < 0) table[0] = -table[0];
  }
  const chroma_frame frame = {planes,
                              &out,
                              {process->thresholds[0], process->thresholds[1]},
                              process->model,
                              process->curve};
  const int rows = static_cast<int>(std::min(process->inner.height, out.height));
  const int count = chroma_bands(process->workers, rows);
  band_job jobs[kMostChromaBands];
  for (int i = 0; i < count; ++i) {
    const PassTimes times(process->stage.debug_mode);
    jobs[i] = {&frame, {rows * i / count, rows * (i + 1) / count}, {}, {times, times}};
  }
  const bool taken = take_band_memory(process, frame, jobs, count);
  if (taken) {
    run_jobs(process->pool, run_band, jobs, count, "denoise band");
    log_bands(frame, saturation_of(*process, planes, out), jobs, count);
  }
  for (int i = 0; i < count; ++i) release_plane(&jobs[i].memory);
  return taken;
}

}  // namespace

int run_chroma(chroma_process* process, const buffer* in, const buffer* out) {
  const stage_record stage = process->stage;
  const StageTimer timer(stage.debug_mode);
  const sym4_plane_sizes sizes = {process->padded.height, process->level1.width,
                                  process->level1.height};
  const bool taken =
      take_sym4_levels(process->levels, sizes, process->level_scratch, stage.debug_mode);
  buffer planes[2] = {process->planes[0], process->planes[1]};
  bool done = taken;
  if (taken) {
    fill_padded(*process, in, planes);
    dump_padded(*process, "p_", planes, false);
    done = dumps_planes(*process) ? run_whole_planes(process, planes, *out)
                                  : run_bands(process, planes, *out);
  }
  // Without memory the frame keeps its chroma.
  if (!done) VOREL_LOGE("ChromaPostProcess::chromaPostProcess, alloc is fail");
  if (!done) return -1;
  timer.log("ChromaPostProcess::chromaPostProcess");
  return 0;
}

bool denoise_chroma_plane(chroma_process* process, unsigned plane, const buffer& io) {
  const stage_record stage = process->stage;
  const StageTimer timer(stage.debug_mode);
  const unsigned index = plane - 1;
  const char* letter = kLetters[index];
  const buffer* subbands = process->subbands[index];
  PassTimes times(stage.debug_mode);
  char prefix[16];
  const auto columns = static_cast<int>(process->padded.width);
  const auto rows = static_cast<int>(process->padded.height);
  const sym4_run run = {subbands, work_of(process->levels[index]), columns, rows, true};
  const int difference = sym4_pitch_difference(run, subbands[0]);
  if (!sym4_forward_plane(run, static_cast<const _Float16*>(io.data), &times)) {
    VOREL_LOGE("ChromaPostProcess::denoiseSpatial, no planes");
    return false;
  }
  log_forward_times(times, true);
  for (int i = 0; i < kSubbands; ++i) {
    std::snprintf(prefix, sizeof(prefix), "fW_%d_%s", i, letter);
    dump_whole_and_cropped(stage, prefix, subbands[i], i < 4 ? 8 : 16);
  }
  const bool shrunk =
      denoise_subbands(subbands, nullptr, process->thresholds[index], process->model, &times);
  log_denoise_times(times);
  std::snprintf(prefix, sizeof(prefix), "dH_%s", letter);
  dump_whole_and_cropped(stage, prefix, subbands[0], 8);
  if (!sym4_inverse_plane(run, subbands[0], static_cast<_Float16*>(io.data), &times)) return false;
  log_inverse_times(times, true, difference);
  timer.log("ChromaPostProcess::denoiseSpatial");
  return shrunk;
}
