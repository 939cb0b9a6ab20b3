#include <algorithm>

#include "core/handle.h"
#include "core/stages.h"
#include "platform/cpu.h"
#include "platform/log.h"
#include "platform/plane_dump.h"
#include "platform/stage_timer.h"
#include "wavelet/chroma_process.h"

namespace {

// The stage's parameters in half precision.
struct mfd_uv_parameters {
  _Float16 thresholds[5];
  _Float16 radial_mode;
  saturation_curve curve;
};

mfd_uv_parameters round_parameters(const struct mfd_uv_tuning& tuning) {
  mfd_uv_parameters rounded;
  for (int i = 0; i < 5; ++i) {
    rounded.thresholds[i] = static_cast<_Float16>(tuning.denoiseThrChroma[i]);
  }
  rounded.radial_mode = static_cast<_Float16>(tuning.radialMode);
  rounded.curve = {static_cast<_Float16>(tuning.CSatParam1),
                   static_cast<_Float16>(tuning.CSatParam2), static_cast<_Float16>(tuning.CSatThr1),
                   static_cast<_Float16>(tuning.CSatThr2)};
  return rounded;
}

void log_parameters(const vorel_thread* run, const mfd_uv_parameters& p) {
  VOREL_LOGI(
      "MFD_UV, inW %d, inH %d, radialMode %.1f, denoiseThrChroma %.1f, %.1f, %.1f, %.1f, %.1f, "
      "CSatParam1 %.1f, CSatParam2 %.1f, CSatThr1 %.1f, CSatThr2 %.1f",
      run->width, run->height, static_cast<double>(p.radial_mode),
      static_cast<double>(p.thresholds[0]), static_cast<double>(p.thresholds[1]),
      static_cast<double>(p.thresholds[2]), static_cast<double>(p.thresholds[3]),
      static_cast<double>(p.thresholds[4]), static_cast<double>(p.curve.param1),
      static_cast<double>(p.curve.param2), static_cast<double>(p.curve.thr1),
      static_cast<double>(p.curve.thr2));
}

// A plane of `rows` x `cols` elements, described for the post-process.
buffer describe_plane(void* data, int32_t rows, int32_t cols, uint32_t kind) {
  buffer plane{};
  plane.data = data;
  plane.height = static_cast<uint32_t>(rows);
  plane.width = static_cast<uint32_t>(cols);
  plane.kind = kind;
  plane.borrowed = true;
  return plane;
}

// The frame's interleaved chroma: height / 2 rows of `width` bytes.
buffer describe_frame_chroma(const vorel_thread* run, uint8_t* chroma) {
  buffer plane = describe_plane(chroma, run->height / 2, run->width, VOREL_PLANE_PAIRS);
  plane.innerWidth = plane.width / 2;
  plane.innerHeight = plane.height;
  return plane;
}

void dump_chroma(const vorel_thread* run, const char* prefix, const uint8_t* chroma) {
  dump_plane(*run, prefix, {chroma, run->width, run->height / 2});
}

// Returns false when memory was short; the frame then keeps its chroma.
bool process_chroma(vorel_thread* run, chroma_process* process) {
  buffer input[2];
  if (run->tuning->enable == 0 || !restores_to_half_planes(run->tuning)) {
    input[0] = describe_frame_chroma(run, run->in_address_2);
    dump_chroma(run, "VOREL_UV_", run->in_address_2);
  } else {
    input[0] = describe_plane(run->mfd_u, run->mfd_height, run->mfd_width, VOREL_PLANE_FIRST);
    input[1] = describe_plane(run->mfd_v, run->mfd_height, run->mfd_width, VOREL_PLANE_SECOND);
  }
  buffer output = describe_frame_chroma(run, run->out_address_2);
  const bool ran = run_chroma(process, input, &output) == 0;
  dump_chroma(run, "MFD_UV_", run->out_address_2);
  return ran;
}

}  // namespace

int MFD_UV(vorel_thread* run) {
  const StageTimer timer(run->debug_mode);
  const mfd_uv_parameters p = round_parameters(run->tuning->mfd_uv_tuning);
  log_parameters(run, p);
  if (run->mfd_u == nullptr || run->mfd_v == nullptr) {
    VOREL_LOGE("MFD_UV, skipped: no half-precision planes");
    run->report.skip(VOREL_STAGE_MFD_UV, true);
    return 0;
  }
  ThreadPool* pool = ready_threads(run->pool);
  if (pool == nullptr) {
    VOREL_LOGE("MFD_UV, skipped: no worker threads");
    run->report.skip(VOREL_STAGE_MFD_UV, false);
    return 0;
  }
  // Two bytes a sample: twice the rows. The full-size working planes are free by now.
  buffer borrow[4] = {
      describe_plane(run->mfd_u, 2 * run->mfd_height, run->mfd_width, VOREL_PLANE_FIRST),
      describe_plane(run->mfd_v, 2 * run->mfd_height, run->mfd_width, VOREL_PLANE_SECOND),
      describe_plane(run->y_low, run->aligned_height, run->width, 0),
      describe_plane(run->y_high, run->aligned_height, run->width, 0),
  };
  chroma_process process;
  const bool ready =
      set_up_chroma(&process, {run->width, run->height, p.thresholds, p.radial_mode, p.curve, *run,
                               pool, std::min(run->pool->worker_count, usable_cpus()), borrow});
  if (!ready || !process_chroma(run, &process)) {
    run->report.skip(VOREL_STAGE_MFD_UV, true);
  }
  release_chroma(&process);
  timer.log("MFD_UV");
  return 0;
}
