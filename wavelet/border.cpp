#include "wavelet/border.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "threading/run_jobs.h"
#include "wavelet/kernels/border_rows.h"
#include "wavelet/stage_layout.h"

namespace {

border_cut cut_of(const buffer& plane) { return {plane.padX, plane.innerWidth, plane.width}; }

// The inner row that a bordered row repeats.
size_t inner_row_of(const buffer& plane, uint32_t row) {
  const uint32_t distance = row > plane.padY ? row - plane.padY : 0;
  return std::min(distance, plane.innerHeight - 1);
}

_Float16* row_of(const buffer& plane, size_t row) {
  return static_cast<_Float16*>(plane.data) + row * plane.width;
}

// An empty inner area has no sample that the border could repeat.
bool is_empty(const buffer& plane) { return plane.innerWidth == 0 || plane.innerHeight == 0; }

struct pad_pairs_job {
  const buffer* pairs;
  const buffer* planes;
  uint32_t row_begin;
  uint32_t row_end;
};

void* run_pad_pairs(void* argument) {
  const auto* job = static_cast<const pad_pairs_job*>(argument);
  pad_pairs_rows(*job->pairs, job->planes[0], job->planes[1], job->row_begin, job->row_end);
  return nullptr;
}

}  // namespace

void pad_plane(const buffer& plane, uint32_t row_begin, uint32_t row_end) {
  if (is_empty(plane)) return;
  const border_cut cut = cut_of(plane);
  for (uint32_t row = row_begin; row < row_end; ++row) {
    const size_t source = inner_row_of(plane, row) + plane.padY;
    pad_row(row_of(plane, source) + plane.padX, row_of(plane, row), cut);
  }
}

void pad_pairs_rows(const buffer& pairs, const buffer& first, const buffer& second,
                    uint32_t row_begin, uint32_t row_end) {
  if (is_empty(first)) return;
  const border_cut cut = cut_of(first);
  const auto* bytes = static_cast<const uint8_t*>(pairs.data);
  for (uint32_t row = row_begin; row < row_end; ++row) {
    pad_pairs_row(bytes + inner_row_of(first, row) * pairs.width, row_of(first, row),
                  row_of(second, row), cut);
  }
}

void pad_pairs(const buffer& pairs, const buffer* planes, uint32_t row_begin, uint32_t row_end,
               ThreadPool* pool) {
  const uint32_t band = (row_end - row_begin) / kCopyAndPadJobs;
  pad_pairs_job jobs[kCopyAndPadJobs];
  for (uint32_t i = 0; i < kCopyAndPadJobs; ++i) {
    const uint32_t first = row_begin + i * band;
    const bool last = i + 1 == kCopyAndPadJobs;  // takes the remainder
    jobs[i] = {&pairs, planes, first, last ? row_end : first + band};
  }
  run_jobs(pool, run_pad_pairs, jobs, kCopyAndPadJobs, "pad band");
}

void copy_inner(const _Float16* padded, const inner_area& area, _Float16* out) {
  const _Float16* src = padded + ptrdiff_t{area.row_first} * area.stride + area.col_first;
  for (ptrdiff_t row = 0; row < area.rows; ++row) {
    std::memcpy(out + row * area.cols, src + row * area.stride,
                static_cast<size_t>(area.cols) * sizeof(_Float16));
  }
}

void mean_3x3_plane(const buffer& in, const buffer& out) {
  if (in.width == 0) return;
  for (size_t row = 0; row < in.height; ++row) {
    const size_t above = row > 0 ? row - 1 : 0;
    const size_t below = std::min<size_t>(row + 1, in.height - 1);
    mean_3x3_row(row_of(in, above), row_of(in, row), row_of(in, below), row_of(out, row), in.width);
  }
}
