// The exported Symlet-4 transform. Nothing inside calls it.
#include <cstddef>
#include <cstdint>

#include "platform/log.h"
#include "platform/stage_timer.h"
#include "vorel/wavelet/sym4_transform.h"
#include "wavelet/sym4_planes.h"

namespace {

constexpr uint32_t kTwoDecompositions = 4;

_Float16* samples_of(const buffer& plane) { return static_cast<_Float16*>(plane.data); }

void log_refused(const char* name, unsigned level, const sym4_run& run) {
  VOREL_LOGE("%s, level %u has no planes for %d x %d", name, level, run.width, run.height);
}

}  // namespace

Sym4Transform::Sym4Transform() : config_{}, debug_(0), levels_{} { setWtCfg(2, 4, 4); }

bool Sym4Transform::setup(int, int height, int halfWidth, int quarterHeight, int debug, char*,
                          ThreadPool*, buffer* scratch) {
  debug_ = debug;
  setWtCfg(2, 4, 4);
  return take_sym4_levels(levels_,
                          {static_cast<uint32_t>(height), static_cast<uint32_t>(halfWidth),
                           static_cast<uint32_t>(quarterHeight)},
                          scratch, debug);
}

void Sym4Transform::deallocate() { release_sym4_levels(levels_, debug_); }

void Sym4Transform::setWtCfg(int l0, int l1, int l2) { fill_wavelet_config(&config_, l0, l1, l2); }

void Sym4Transform::fwtFirstStep(unsigned char* src, _Float16* lo, _Float16* hi, int width,
                                 int height) {
  sym4_analyse_plane_rows<uint8_t>({src, width, width}, {lo, hi}, {0, height});
}

void Sym4Transform::fwt(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  const StageTimer timer(debug_);
  sym4_analyse_plane_rows<_Float16>({src, width, width}, {lo, hi}, {0, height});
  timer.log("Sym4Transform::fwt");
}

void Sym4Transform::fwt(_Float16* src, _Float16* lo, _Float16* hi, int width, int rowFirst,
                        int rowEnd) {
  sym4_analyse_plane_rows<_Float16>({src, width, width}, {lo, hi}, {rowFirst, rowEnd});
}

void Sym4Transform::fwtVert(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  const StageTimer timer(debug_);
  sym4_analyse_plane_columns({src, width, width}, height, {lo, hi}, {0, height / 2});
  timer.log("Sym4Transform::fwtVert");
}

void Sym4Transform::fwtVert(_Float16* src, _Float16* lo, _Float16* hi, int width, int height,
                            int rowFirst, int rowEnd) {
  sym4_analyse_plane_columns({src, width, width}, height, {lo, hi}, {rowFirst, rowEnd});
}

void Sym4Transform::iwt(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  sym4_synthesise_plane_rows({lo, width, width}, hi, out, height);
  timer.log("Sym4Transform::iwt");
}

void Sym4Transform::iwtVert(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  sym4_synthesise_plane_columns({lo, width, width}, hi, out, height);
  timer.log("Sym4Transform::iwtVert");
}

void Sym4Transform::iwtVertPitch(_Float16* lo, _Float16* hi, _Float16* out, int width, int height,
                                 int pitchDiff) {
  sym4_synthesise_plane_columns({lo, width, ptrdiff_t{width} + pitchDiff}, hi, out, height);
}

// A run of a level; without any samples where the level has none.
sym4_run Sym4Transform::runOf(buffer* subbands, unsigned int width, unsigned int height,
                              unsigned int level) const {
  sym4_run run = {subbands, {}, static_cast<int>(width), static_cast<int>(height), false};
  if (level < 1 || level > 2) return run;
  run.work = work_of(levels_[level - 1]);
  run.two_decompositions = config_.level[level] == kTwoDecompositions;
  return run;
}

void Sym4Transform::forwardWtRun(buffer* src, buffer* subbands, unsigned int width,
                                 unsigned int height, unsigned int level, ThreadPool*) {
  PassTimes times(debug_);
  const sym4_run run = runOf(subbands, width, height, level);
  if (!sym4_forward_plane(run, samples_of(*src), &times)) {
    return log_refused("Sym4Transform::forwardWtRun", level, run);
  }
  log_forward_times(times, run.two_decompositions);
}

void Sym4Transform::inverseWtDifferentSband0Run(buffer* band0, buffer* subbands, buffer* out,
                                                unsigned int width, unsigned int height,
                                                unsigned int level) {
  PassTimes times(debug_);
  const sym4_run run = runOf(subbands, width, height, level);
  if (!sym4_inverse_plane(run, *band0, samples_of(*out), &times)) {
    return log_refused("Sym4Transform::inverseWtDifferentSband0Run", level, run);
  }
  log_inverse_times(times, run.two_decompositions, sym4_pitch_difference(run, *band0));
}

void* fwtFunc(void* argument) {
  const auto* job = static_cast<sym4_band_job*>(argument);
  sym4_analyse_plane_rows<_Float16>({job->src, job->width, job->width}, {job->lo, job->hi},
                                    {job->rowFirst, job->rowEnd});
  return nullptr;
}

void* fwtVertFunc(void* argument) {
  const auto* job = static_cast<sym4_band_job*>(argument);
  sym4_analyse_plane_columns({job->src, job->width, job->width}, job->height, {job->lo, job->hi},
                             {job->rowFirst, job->rowEnd});
  return nullptr;
}
