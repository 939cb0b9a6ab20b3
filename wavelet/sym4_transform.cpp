#include "vorel/wavelet/sym4_transform.h"

#include <algorithm>
#include <cstddef>

#include "platform/log.h"
#include "platform/stage_timer.h"
#include "wavelet/kernels/sym4_rows.h"
#include "wavelet/plane_storage.h"
#include "wavelet/sym4_walk.h"

namespace {

constexpr int kTimingLevel = 1;
constexpr uint32_t kTwoDecompositions = 4;

int64_t sample_count(const buffer& plane) {
  return plane.data != nullptr ? int64_t{plane.width} * plane.height : 0;
}

_Float16* samples_of(const buffer& plane) { return static_cast<_Float16*>(plane.data); }

template <typename Sample>
void analyse_plane_rows(const Sample* src, _Float16* lo, _Float16* hi, int width, int row_first,
                        int row_end) {
  const ptrdiff_t half = width / 2;
  for (ptrdiff_t row = row_first; row < row_end; ++row) {
    sym4_analyse_row(src + row * width, lo + row * half, hi + row * half, width);
  }
}

void synthesise_columns(const _Float16* lo, const _Float16* hi, _Float16* out, int width,
                        int height, ptrdiff_t low_pitch) {
  for (ptrdiff_t k = kSym4First; k < sym4_synthesis_end(height); ++k) {
    const _Float16* low[kSym4SynthesisRows];
    const _Float16* high[kSym4SynthesisRows];
    for (int i = 0; i < kSym4SynthesisRows; ++i) {
      low[i] = lo + (k - 2 + i) * low_pitch;
      high[i] = hi + (k - 2 + i) * width;
    }
    sym4_synthesise_rows(low, high, out + (2 * k - 1) * width, out + 2 * k * width, width);
  }
}

sym4_times times_for(int32_t debug) {
  return {PassTime(debug == kTimingLevel), PassTime(debug == kTimingLevel)};
}

void log_refused(const char* name, unsigned level, unsigned width, unsigned height) {
  VOREL_LOGE("%s, level %u has no planes for %u x %u", name, level, width, height);
}

void log_times(int32_t debug, const sym4_times& times, const char* horizontal,
               const char* vertical) {
  if (debug != kTimingLevel) return;
  VOREL_LOGI("%s: elapsed time %lld", horizontal, static_cast<long long>(times.horizontal.usec()));
  VOREL_LOGI("%s: elapsed time %lld", vertical, static_cast<long long>(times.vertical.usec()));
}

}  // namespace

Sym4Transform::Sym4Transform()
    : config_{},
      width_(0),
      height_(0),
      halfWidth_(0),
      quarterHeight_(0),
      debug_(0),
      path_(nullptr),
      pool_(nullptr),
      groups_{} {
  setWtCfg(2, 4, 4);
}

bool Sym4Transform::setup(int width, int height, int halfWidth, int quarterHeight, int debug,
                          char* path, ThreadPool* pool, buffer* scratch) {
  const StageTimer timer(debug);
  width_ = width;
  height_ = height;
  halfWidth_ = halfWidth;
  quarterHeight_ = quarterHeight;
  debug_ = debug;
  path_ = path;
  pool_ = pool;
  setWtCfg(2, 4, 4);
  const auto columns = static_cast<uint32_t>(halfWidth);
  const auto rows = static_cast<uint32_t>(height);
  const auto half_rows = static_cast<uint32_t>(quarterHeight);
  bool taken = true;
  for (int level = 1; level <= 2; ++level) {
    plane_scratch lent = scratch_of(scratch != nullptr ? &scratch[level - 1] : nullptr);
    plane_group& group = groups_[level];
    taken = take_plane(&group.intermediate, &lent, half_rows, columns) && taken;
    taken = take_plane(&group.high, &lent, rows, columns) && taken;
    taken = take_plane(&group.low, &lent, rows, columns) && taken;
  }
  if (!taken) VOREL_LOGE("Sym4Transform::setup, alloc is fail");
  timer.log("Sym4Transform::setup");
  return taken;
}

void Sym4Transform::deallocate() {
  const StageTimer timer(debug_);
  for (plane_group& group : groups_) {
    release_plane(&group.low);
    release_plane(&group.high);
    release_plane(&group.intermediate);
  }
  timer.log("Sym4Transform::deallocate");
}

void Sym4Transform::setWtCfg(int l0, int l1, int l2) { fill_wavelet_config(&config_, l0, l1, l2); }

void Sym4Transform::fwtFirstStep(unsigned char* src, _Float16* lo, _Float16* hi, int width,
                                 int height) {
  analyse_plane_rows(src, lo, hi, width, 0, height);
}

void Sym4Transform::fwt(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  const StageTimer timer(debug_);
  fwt(src, lo, hi, width, 0, height);
  timer.log("Sym4Transform::fwt");
}

void Sym4Transform::fwt(_Float16* src, _Float16* lo, _Float16* hi, int width, int rowFirst,
                        int rowEnd) {
  analyse_plane_rows(src, lo, hi, width, rowFirst, rowEnd);
}

void Sym4Transform::fwtVert(_Float16* src, _Float16* lo, _Float16* hi, int width, int height) {
  const StageTimer timer(debug_);
  fwtVert(src, lo, hi, width, height, 0, height / 2);
  timer.log("Sym4Transform::fwtVert");
}

void Sym4Transform::fwtVert(_Float16* src, _Float16* lo, _Float16* hi, int width, int height,
                            int rowFirst, int rowEnd) {
  const ptrdiff_t end = std::min(rowEnd, sym4_analysis_end(height));
  for (ptrdiff_t k = std::max(rowFirst, kSym4First); k < end; ++k) {
    const _Float16* rows[kSym4AnalysisRows];
    for (int i = 0; i < kSym4AnalysisRows; ++i) rows[i] = src + (2 * k - 4 + i) * width;
    sym4_analyse_rows(rows, lo + k * width, hi + k * width, width);
  }
}

void Sym4Transform::iwt(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  for (ptrdiff_t row = 0; row < height; ++row) {
    sym4_synthesise_row(lo + row * width, hi + row * width, out + 2 * row * width, width);
  }
  timer.log("Sym4Transform::iwt");
}

void Sym4Transform::iwtVert(_Float16* lo, _Float16* hi, _Float16* out, int width, int height) {
  const StageTimer timer(debug_);
  synthesise_columns(lo, hi, out, width, height, width);
  timer.log("Sym4Transform::iwtVert");
}

void Sym4Transform::iwtVertPitch(_Float16* lo, _Float16* hi, _Float16* out, int width, int height,
                                 int pitchDiff) {
  synthesise_columns(lo, hi, out, width, height, ptrdiff_t{width} + pitchDiff);
}

// The working planes of a level; without any samples where the level has none.
sym4_work Sym4Transform::workOf(unsigned int level) const {
  if (level >= 3) return {};
  const plane_group& group = groups_[level];
  return {samples_of(group.low), samples_of(group.high), samples_of(group.intermediate),
          std::min(sample_count(group.low), sample_count(group.high)),
          sample_count(group.intermediate)};
}

void Sym4Transform::forwardWtRun(buffer* src, buffer* subbands, unsigned int width,
                                 unsigned int height, unsigned int level, ThreadPool*) {
  const StageTimer timer(debug_);
  const int columns = static_cast<int>(width);
  const int rows = static_cast<int>(height);
  const sym4_work work = workOf(level);
  if (work.outer_samples == 0 || !sym4_can_walk_forward(work, columns, rows)) {
    log_refused("Sym4Transform::forwardWtRun", level, width, height);
    return;
  }
  sym4_times times = times_for(debug_);
  sym4_walk_forward(samples_of(*src), subbands, work, columns, rows,
                    config_.level[level] == kTwoDecompositions, &times);
  log_times(debug_, times, "Sym4Transform::fwt", "Sym4Transform::fwtVert");
  timer.log("Sym4Transform::forwardWtRun");
}

void Sym4Transform::inverseWtDifferentSband0Run(buffer* band0, buffer* subbands, buffer* out,
                                                unsigned int width, unsigned int height,
                                                unsigned int level) {
  const StageTimer timer(debug_);
  const int columns = static_cast<int>(width);
  const int rows = static_cast<int>(height);
  const sym4_work work = workOf(level);
  const bool two_decompositions = level < 3 && config_.level[level] == kTwoDecompositions;
  const int difference = 2 * static_cast<int>(band0->width) - columns / 2;
  const bool ready = work.outer_samples > 0;
  if (ready && two_decompositions && sym4_can_walk_inverse(work, *band0, columns)) {
    if (difference != 0) VOREL_LOGI("iwtVertPitch: %d", difference);
    sym4_times times = times_for(debug_);
    sym4_walk_inverse(*band0, subbands, samples_of(*out), work, columns, rows, &times);
    log_times(debug_, times, "Sym4Transform::iwt", "Sym4Transform::iwtVert");
  } else if (ready && !two_decompositions && work.outer_samples >= int64_t{columns / 2} * rows) {
    iwtVert(samples_of(*band0), samples_of(subbands[4]), work.low, columns / 2, rows / 2);
    iwtVert(samples_of(subbands[5]), samples_of(subbands[6]), work.high, columns / 2, rows / 2);
    iwt(work.low, work.high, samples_of(*out), columns / 2, rows);
  } else {
    log_refused("Sym4Transform::inverseWtDifferentSband0Run", level, width, height);
    return;
  }
  timer.log("Sym4Transform::inverseWtDifferentSband0Run");
}

void* fwtFunc(void* argument) {
  const auto* job = static_cast<sym4_band_job*>(argument);
  job->transform->fwt(job->src, job->lo, job->hi, job->width, job->rowFirst, job->rowEnd);
  return nullptr;
}

void* fwtVertFunc(void* argument) {
  const auto* job = static_cast<sym4_band_job*>(argument);
  job->transform->fwtVert(job->src, job->lo, job->hi, job->width, job->height, job->rowFirst,
                          job->rowEnd);
  return nullptr;
}
