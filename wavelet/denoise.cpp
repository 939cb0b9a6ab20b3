#include "vorel/wavelet/denoise.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "platform/log.h"
#include "platform/stage_timer.h"
#include "threading/run_jobs.h"
#include "vorel/wavelet/haar_transform.h"
#include "wavelet/kernels/saturation_rows.h"
#include "wavelet/kernels/shrinkage_rows.h"
#include "wavelet/plane_storage.h"
#include "wavelet/stage_layout.h"

namespace {

constexpr int kHaarBands = 7;
constexpr int kDetailBands = 3;  // of one Symlet level

constexpr _Float16 kSymletScale = static_cast<_Float16>(5.83984375f);  // 0x45D7
constexpr _Float16 kHaarScale = static_cast<_Float16>(11.6796875f);    // 0x49D7
constexpr _Float16 kHaarLowScale = static_cast<_Float16>(31.359375f);  // 0x4FD7

// Spacing of the coefficients of each Symlet level in frame pixels; the Haar bands have level 2's.
constexpr int kLevel1Step = 4;
constexpr int kLevel2Step = 8;

_Float16* samples_of(const buffer& plane) { return static_cast<_Float16*>(plane.data); }

// Row `row` of the inner area.
const _Float16* inner_row(const buffer* plane, uint32_t row) {
  return samples_of(*plane) + size_t{plane->padY + row} * plane->width + plane->padX;
}

// Shrinks the three detail bands of one level. Neighbours of one size, ordinarily all of them,
// share their noise multipliers.
void shrink_details(const buffer* details, const _Float16* thr, _Float16 A, _Float16 B, int step) {
  shrink_band bands[kDetailBands];
  for (int i = 0; i < kDetailBands; ++i) {
    bands[i] = {samples_of(details[i]), make_shrink_gain(thr[i], kSymletScale)};
  }
  for (int first = 0, end = 0; first < kDetailBands; first = end) {
    const buffer& size = details[first];
    while (end < kDetailBands && details[end].height == size.height &&
           details[end].width == size.width) {
      ++end;
    }
    const int rows = static_cast<int>(size.height);
    const int cols = static_cast<int>(size.width);
    shrink_bands(&bands[first], end - first, make_radial_noise(A, B, rows, cols, step), rows, cols);
  }
}

void shrink_haar_bands(const buffer* bands, _Float16 thr, _Float16 A, _Float16 B) {
  shrink_band records[kHaarBands];
  for (int i = 0; i < kHaarBands; ++i) {
    const _Float16 scale = i == 0 ? kHaarLowScale : kHaarScale;
    records[i] = {samples_of(bands[i]), make_shrink_gain(thr, scale)};
  }
  const int rows = static_cast<int>(bands[0].height);
  const int cols = static_cast<int>(bands[0].width);
  shrink_bands(records, kHaarBands, make_radial_noise(A, B, rows, cols, kLevel2Step), rows, cols);
}

// The decomposition leaves the last row of a directional band alone, of a plane with fewer than
// three rows everything.
void clear_unwritten(const buffer& band) {
  const uint32_t first = band.height < 3 ? 0 : band.height - 1;
  std::memset(samples_of(band) + size_t{first} * band.width, 0,
              size_t{band.height - first} * band.width * sizeof(_Float16));
}

bool take_bands(buffer* bands, plane_scratch* scratch, uint32_t rows, uint32_t cols) {
  for (int i = 0; i < kHaarBands; ++i) {
    if (!take_plane(&bands[i], scratch, rows, cols)) return false;
    clear_unwritten(bands[i]);
  }
  return true;
}

}  // namespace

Denoise::Denoise() : debug_(0), size_{}, paddedSize_{}, path_(nullptr), pool_(nullptr) {}

void Denoise::setup(int width, int height, int paddedWidth, int paddedHeight) {
  size_[0] = static_cast<uint32_t>(width);
  size_[1] = static_cast<uint32_t>(height);
  paddedSize_[0] = static_cast<uint32_t>(paddedWidth);
  paddedSize_[1] = static_cast<uint32_t>(paddedHeight);
}

void Denoise::setup(int width, int height, int paddedWidth, int paddedHeight, int debug, char* path,
                    ThreadPool* pool) {
  setup(width, height, paddedWidth, paddedHeight);
  debug_ = debug;
  path_ = path;
  pool_ = pool;
}

void Denoise::deallocate() { pool_ = nullptr; }

void Denoise::denoiseChroma1And2HaarRun(buffer* subbands, buffer* scratch, _Float16* thr,
                                        _Float16 A, _Float16 B, ThreadPool* pool) {
  const StageTimer timer(debug_);
  if (thr[0] < 0) thr[0] = -thr[0];
  haarL2Denoise(&subbands[0], scratch, thr[0], A, B, pool);
  shrink_details(&subbands[1], &thr[1], A, B, kLevel2Step);
  shrink_details(&subbands[4], &thr[4], A, B, kLevel1Step);
  timer.log("Denoise::denoiseChroma1And2HaarRun");
}

void Denoise::haarL2Denoise(buffer* band, buffer* scratch, _Float16 thr, _Float16 A, _Float16 B,
                            ThreadPool*) {
  plane_scratch area = scratch_of(scratch);
  HaarTransform haar;
  buffer bands[kHaarBands] = {};
  if (haar.setup(static_cast<int>(band->width), static_cast<int>(band->height), debug_, path_,
                 &area) &&
      take_bands(bands, &area, band->height, band->width)) {
    haar.forwardUnHaarRun(band, bands, band->width, band->height, false, false);
    shrink_haar_bands(bands, thr, A, B);
    haar.inverseUnHaarRunAllSubbands(bands, band, band->width, band->height);
  } else {
    VOREL_LOGE("Denoise::haarL2Denoise, alloc is fail");
  }
  for (buffer& plane : bands) release_plane(&plane);
  haar.deallocate();
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

int Denoise::applySaturation(buffer* first, buffer* second, buffer* out, buffer* staging,
                             _Float16 CSatParam1, _Float16 CSatParam2, _Float16 CSatThr1,
                             _Float16 CSatThr2) {
  const StageTimer timer(debug_);
  VOREL_LOGI("outRoiX %d, outRoiY %d, outRoiW %d, outRoiH %d, outW %d, outH %d",
             static_cast<int>(first->padX), static_cast<int>(first->padY),
             static_cast<int>(first->innerWidth), static_cast<int>(first->innerHeight),
             static_cast<int>(out->width), static_cast<int>(out->height));
  const uint32_t band = out->height / kSaturationJobs;
  saturation_job jobs[kSaturationJobs];
  for (uint32_t i = 0; i < kSaturationJobs; ++i) {
    const bool last = i + 1 == kSaturationJobs;
    const uint32_t end = last ? out->height : (i + 1) * band;  // the last band takes the remainder
    jobs[i] = {this,       first,    second,   out,      staging, CSatParam1,
               CSatParam2, CSatThr1, CSatThr2, i * band, end};
  }
  run_jobs(pool_, applySaturationRegionFunc, jobs, kSaturationJobs);
  timer.log("Denoise::applySaturation");
  return 0;
}

int Denoise::applySaturation(buffer* first, buffer* second, buffer* out, buffer* staging,
                             _Float16 CSatParam1, _Float16 CSatParam2, _Float16 CSatThr1,
                             _Float16 CSatThr2, unsigned rowBegin, unsigned rowEnd) {
  applySaturationRegion(first, second, out, staging, CSatParam1, CSatParam2, CSatThr1, CSatThr2,
                        rowBegin, rowEnd);
  return 0;
}

void Denoise::applySaturationRegion(buffer* first, buffer* second, buffer* out, buffer*,
                                    _Float16 CSatParam1, _Float16 CSatParam2, _Float16 CSatThr1,
                                    _Float16 CSatThr2, unsigned rowBegin, unsigned rowEnd) {
  const saturation_curve curve = {CSatParam1, CSatParam2, CSatThr1, CSatThr2};
  const uint32_t pairs = std::min(first->innerWidth, out->width / 2);
  const uint32_t end = std::min({rowEnd, first->innerHeight, out->height});
  for (uint32_t row = rowBegin; row < end; ++row) {
    uint8_t* dst = static_cast<uint8_t*>(out->data) + size_t{row} * out->width;
    saturate_row(curve, inner_row(first, row), inner_row(second, row), dst,
                 static_cast<int>(pairs));
  }
}

void Denoise::AddPoint5(buffer* first, buffer* second, unsigned rowBegin, unsigned rowEnd) {
  for (buffer* plane : {first, second}) {
    const uint32_t end = std::min(rowEnd, plane->height);
    for (uint32_t row = rowBegin; row < end; ++row) {
      add_half_row(samples_of(*plane) + size_t{row} * plane->width, static_cast<int>(plane->width));
    }
  }
}

void* shrkFunc(void* job) {
  const auto* record = static_cast<shrinkage_job*>(job);
  record->denoise->shrinkage1(record->data, record->thr, record->A, record->B, record->rows,
                              record->cols, record->step, record->unused, record->S);
  return nullptr;
}

void* applySaturationRegionFunc(void* job) {
  const auto* record = static_cast<saturation_job*>(job);
  record->denoise->applySaturationRegion(
      record->first, record->second, record->out, record->staging, record->CSatParam1,
      record->CSatParam2, record->CSatThr1, record->CSatThr2, record->rowBegin, record->rowEnd);
  return nullptr;
}
