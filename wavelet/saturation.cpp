#include "wavelet/saturation.h"

#include <algorithm>
#include <cstddef>

#include "platform/log.h"
#include "threading/run_jobs.h"
#include "wavelet/stage_layout.h"

namespace {

struct saturation_rows {
  const saturation* planes;
  uint32_t row_begin;
  uint32_t row_end;
};

void* run_saturation(void* argument) {
  const auto* rows = static_cast<const saturation_rows*>(argument);
  saturate_rows(*rows->planes, rows->row_begin, rows->row_end);
  return nullptr;
}

// Row `row` of the inner area.
const _Float16* inner_row(const buffer* plane, uint32_t row) {
  return static_cast<const _Float16*>(plane->data) + size_t{plane->padY + row} * plane->width +
         plane->padX;
}

}  // namespace

void saturate_rows(const saturation& planes, uint32_t row_begin, uint32_t row_end) {
  const buffer& out = *planes.out;
  const uint32_t pairs = std::min(planes.first->innerWidth, out.width / 2);
  const uint32_t end = std::min({row_end, planes.first->innerHeight, out.height});
  for (uint32_t row = row_begin; row < end; ++row) {
    uint8_t* dst = static_cast<uint8_t*>(out.data) + size_t{row} * out.width;
    saturate_row(planes.curve, inner_row(planes.first, row), inner_row(planes.second, row), dst,
                 static_cast<int>(pairs));
  }
}

void saturate_plane(const saturation& planes, ThreadPool* pool) {
  const uint32_t band = planes.out->height / kSaturationJobs;
  saturation_rows jobs[kSaturationJobs];
  for (uint32_t i = 0; i < kSaturationJobs; ++i) {
    const bool last = i + 1 == kSaturationJobs;  // takes the remainder
    jobs[i] = {&planes, i * band, last ? planes.out->height : (i + 1) * band};
  }
  run_jobs(pool, run_saturation, jobs, kSaturationJobs, "saturation band");
}

void add_half_rows(const buffer& plane, uint32_t row_begin, uint32_t row_end) {
  auto* samples = static_cast<_Float16*>(plane.data);
  const uint32_t end = std::min(row_end, plane.height);
  for (uint32_t row = row_begin; row < end; ++row) {
    add_half_row(samples + size_t{row} * plane.width, static_cast<int>(plane.width));
  }
}

void log_saturation(const saturation& planes) {
  const buffer& plane = *planes.first;
  VOREL_LOGI("outRoiX %d, outRoiY %d, outRoiW %d, outRoiH %d, outW %d, outH %d",
             static_cast<int>(plane.padX), static_cast<int>(plane.padY),
             static_cast<int>(plane.innerWidth), static_cast<int>(plane.innerHeight),
             static_cast<int>(planes.out->width), static_cast<int>(planes.out->height));
}
