// The exported denoise operators. Nothing inside calls them.

#include "platform/stage_timer.h"
#include "vorel/wavelet/denoise.h"
#include "wavelet/pass_times.h"
#include "wavelet/saturation.h"
#include "wavelet/shrinkage.h"

Denoise::Denoise() : debug_(0), pool_(nullptr) {}

void Denoise::setup(int, int, int, int) {}

void Denoise::setup(int, int, int, int, int debug, char*, ThreadPool* pool) {
  debug_ = debug;
  pool_ = pool;
}

void Denoise::deallocate() { pool_ = nullptr; }

void Denoise::denoiseChroma1And2HaarRun(buffer* subbands, buffer* scratch, _Float16* thr,
                                        _Float16 A, _Float16 B, ThreadPool*) {
  PassTimes times(debug_);
  plane_scratch area = scratch_of(scratch);
  static_cast<void>(denoise_subbands(subbands, &area, thr, {A, B}, &times));
  log_denoise_times(times);
}

void Denoise::haarL2Denoise(buffer* band, buffer* scratch, _Float16 thr, _Float16 A, _Float16 B,
                            ThreadPool*) {
  PassTimes times(debug_);
  plane_scratch area = scratch_of(scratch);
  static_cast<void>(denoise_low_band(*band, &area, thr, {A, B}, &times));
  log_haar_times(times);
}

void Denoise::shrinkage1(_Float16* data, _Float16 thr, _Float16 A, _Float16 B, int rows, int cols,
                         int step, int, _Float16 S) {
  const shrink_band band = {data, make_shrink_gain(thr, S)};
  shrink_bands(&band, 1, make_radial_noise(A, B, rows, cols, step), rows, cols);
}

void Denoise::radialNoiseEStimateChroma1(int x, int y, _Float16* out, _Float16 A, _Float16 B,
                                         int cx, int cy) {
  *out = radial_multiplier_at(x, y, A, B, cx, cy);
}

int Denoise::applySaturation(buffer* first, buffer* second, buffer* out, buffer*,
                             _Float16 CSatParam1, _Float16 CSatParam2, _Float16 CSatThr1,
                             _Float16 CSatThr2) {
  const StageTimer timer(debug_);
  const saturation planes = {first, second, out, {CSatParam1, CSatParam2, CSatThr1, CSatThr2}};
  log_saturation(planes);
  saturate_plane(planes, pool_);
  timer.log("Denoise::applySaturation");
  return 0;
}

int Denoise::applySaturation(buffer* first, buffer* second, buffer* out, buffer*,
                             _Float16 CSatParam1, _Float16 CSatParam2, _Float16 CSatThr1,
                             _Float16 CSatThr2, unsigned rowBegin, unsigned rowEnd) {
  saturate_rows({first, second, out, {CSatParam1, CSatParam2, CSatThr1, CSatThr2}}, rowBegin,
                rowEnd);
  return 0;
}

void Denoise::applySaturationRegion(buffer* first, buffer* second, buffer* out, buffer*,
                                    _Float16 CSatParam1, _Float16 CSatParam2, _Float16 CSatThr1,
                                    _Float16 CSatThr2, unsigned rowBegin, unsigned rowEnd) {
  saturate_rows({first, second, out, {CSatParam1, CSatParam2, CSatThr1, CSatThr2}}, rowBegin,
                rowEnd);
}

void Denoise::AddPoint5(buffer* first, buffer* second, unsigned rowBegin, unsigned rowEnd) {
  add_half_rows(*first, rowBegin, rowEnd);
  add_half_rows(*second, rowBegin, rowEnd);
}

void* shrkFunc(void* job) {
  const auto* record = static_cast<shrinkage_job*>(job);
  record->denoise->shrinkage1(record->data, record->thr, record->A, record->B, record->rows,
                              record->cols, record->step, record->unused, record->S);
  return nullptr;
}

void* applySaturationRegionFunc(void* job) {
  const auto* record = static_cast<saturation_job*>(job);
  const saturation_curve curve = {record->CSatParam1, record->CSatParam2, record->CSatThr1,
                                  record->CSatThr2};
  saturate_rows({record->first, record->second, record->out, curve}, record->rowBegin,
                record->rowEnd);
  return nullptr;
}
