// What a frame's wavelet path needs before it runs: sizes, tables and planes.
#include <algorithm>
#include <bit>
#include <cstddef>

#include "platform/log.h"
#include "platform/stage_timer.h"
#include "wavelet/chroma_process.h"
#include "wavelet/stage_layout.h"

namespace {

constexpr _Float16 kThresholdScale = std::bit_cast<_Float16>(uint16_t{0x508D});  // 36.40625

// Half of `padded`, then half of that, rounded up.
uint32_t quarter_of(uint32_t padded) { return padded / 4 + padded / 2 % 2; }

_Float16 radial_slope(_Float16 mode) {
  if (mode == 0) return 0;
  const float r = static_cast<float>(mode);
  return static_cast<_Float16>(1.0f + (r > 0 ? r : -0.25f * r));
}

_Float16 radial_cap(_Float16 mode) {
  const _Float16 base = mode > 0 ? mode : static_cast<_Float16>(_Float16{-1} - mode);
  return base + _Float16{3};
}

void fill_thresholds(const _Float16* thr, _Float16* table) {
  // Which of the five thresholds a subband takes.
  constexpr int kSource[] = {0, 1, 1, 2, 3, 3, 4};
  std::fill(table, table + kThresholds, kThresholdScale);
  for (int i = 0; i < kSubbands; ++i) table[i] = thr[kSource[i]] * kThresholdScale;
}

void set_sizes(chroma_process* process, int32_t width, int32_t height) {
  const wavelet_size inner = {static_cast<uint32_t>(width) / 2, static_cast<uint32_t>(height) / 2};
  const wavelet_size padded = {padded_size(inner.width), padded_size(inner.height)};
  const wavelet_size level1 = {padded.width / 2, padded.height / 2};
  const wavelet_size level2 = {quarter_of(padded.width), quarter_of(padded.height)};
  process->inner = inner;
  process->padded = padded;
  process->level1 = level1;
  process->level2 = level2;
  VOREL_LOGI(
      "ChromaPostProcess::setup, UVSize %d, %d, UVSizeb %d, %d, UVL1Sizeb %d, %d, UVL2Sizeb %d, %d",
      static_cast<int>(inner.width), static_cast<int>(inner.height), static_cast<int>(padded.width),
      static_cast<int>(padded.height), static_cast<int>(level1.width),
      static_cast<int>(level1.height), static_cast<int>(level2.width),
      static_cast<int>(level2.height));
}

bool reserve_storage(chroma_process* process, const buffer* borrow) {
  plane_scratch lent[kLentPlanes];
  for (int i = 0; i < kLentPlanes; ++i) {
    lent[i] = scratch_of(borrow != nullptr ? &borrow[i] : nullptr);
  }
  // Bands and whole planes never run at once: both may have all of these.
  process->lent[0] = lent[2];
  process->lent[1] = lent[3];
  bool reserved =
      take_plane(&process->staging, &lent[2], process->inner.height, process->inner.width);
  for (int i = 0; i < 2; ++i) {
    buffer& plane = process->planes[i];
    reserved =
        take_plane(&plane, &lent[i], process->padded.height, process->padded.width) && reserved;
    plane.kind = i == 0 ? VOREL_PLANE_FIRST : VOREL_PLANE_SECOND;
    plane.padX = plane.padY = kPlaneBorder;
    plane.innerWidth = process->inner.width;
    plane.innerHeight = process->inner.height;
  }
  for (buffer(&planes)[kSubbands] : process->subbands) {
    for (int i = 0; i < kSubbands; ++i) {
      const wavelet_size size = i < 4 ? process->level2 : process->level1;
      plane_scratch* from = holds_plane(lent[2], size.height, size.width) ? &lent[2] : &lent[3];
      reserved = take_plane(&planes[i], from, size.height, size.width) && reserved;
    }
  }
  process->level_scratch[0] = rest_of(lent[2]);
  process->level_scratch[1] = rest_of(lent[3]);
  return reserved;
}

}  // namespace

bool set_up_chroma(chroma_process* process, const chroma_settings& settings) {
  const StageTimer timer(settings.stage.debug_mode);
  if (process == nullptr) {
    VOREL_LOGE("ChromaPostProcess::setup, alloc is fail");
    return false;
  }
  *process = chroma_process{};
  process->stage = settings.stage;
  process->pool = settings.pool;
  process->workers = settings.workers;
  process->curve = settings.curve;
  process->model = {radial_slope(settings.radial_mode), radial_cap(settings.radial_mode)};
  for (_Float16(&table)[kThresholds] : process->thresholds) {
    fill_thresholds(settings.thresholds, table);
  }
  set_sizes(process, settings.width, settings.height);
  const bool reserved = reserve_storage(process, settings.borrow);
  if (!reserved) VOREL_LOGE("ChromaPostProcess::setup, alloc is fail");
  timer.log("ChromaPostProcess::setup");
  return reserved;
}

void release_chroma(chroma_process* process) {
  const StageTimer timer(process->stage.debug_mode);
  release_plane(&process->staging);
  for (buffer& plane : process->planes) release_plane(&plane);
  for (buffer(&planes)[kSubbands] : process->subbands) {
    for (buffer& plane : planes) release_plane(&plane);
  }
  release_sym4_levels(process->levels, process->stage.debug_mode);
  timer.log("ChromaPostProcess::deallocate");
}
